// What libraries are on a POSIX system: files that the dynamic linker would also look for in the working
// folder.
#include <gmock/gmock.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"

namespace fs = std::filesystem;

TEST(Libraries, NothingIsLoadedFromAPlaceThatTheWorkingFolderDecides) {
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    platform::SystemError error;
    const std::string installed = libraries.PathOf(libraries.LoadByName("libm.so.6", error));
    const TemporaryFolder folder;
    ASSERT_FALSE(platform::MakeFolders(folder / "sub"));
    for (const char* copy : {"planted.so", "sub/planted.so"})
        ASSERT_FALSE(platform::CopyToNewFile(installed, folder / copy)) << installed;
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    const std::string cutOff = (folder / "planted.so") + std::string("\0.so", 4);
    for (const std::string& path :
         {std::string("planted.so"), std::string("./planted.so"), std::string("sub/planted.so"),
          std::string("sub/../planted.so"), std::string("~/planted.so"), std::string(), cutOff}) {
        error = {};
        EXPECT_EQ(libraries.LoadFromPath(path, error), nullptr) << path;
        EXPECT_TRUE(error) << path;
        EXPECT_THAT(libraries.LastLoadFailure(), testing::EndsWith(": not a full path"));
    }
    fs::current_path(before);
    EXPECT_NE(libraries.LoadFromPath(folder / "sub/planted.so", error), nullptr)
        << libraries.LastLoadFailure();
}
