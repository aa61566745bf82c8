#include "platform/VersionResource.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "TemporaryFolder.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace {

std::string OwnPath() {
    return platform::Current<platform::Processes>().CurrentExecutablePath();
}

std::optional<std::string> Read(const std::string& path, const char* key, platform::SystemError& error) {
    return platform::Current<platform::VersionResources>().FromFile(path, key, error);
}

}  // namespace

TEST(VersionResource, ABinaryCarriesItsPairsAndOtherFilesSayWhyTheyDoNot) {
    const TemporaryFolder folder;
    platform::SystemError error;
    EXPECT_EQ(Read(OwnPath(), "FileVersion", error), "1.2.3.4");
    EXPECT_EQ(Read(OwnPath(), "PrivateBuild", error), "5.6.7.8");
    for (const char* absent : {"InternalName", "Private"})
        EXPECT_EQ(Read(OwnPath(), absent, error), std::nullopt);
    EXPECT_FALSE(error);
    EXPECT_EQ(Read(folder.Write("text", "no binary"), "FileVersion", error), std::nullopt);
    EXPECT_TRUE(error);
    EXPECT_EQ(Read(folder / "missing", "FileVersion", error), std::nullopt);
    EXPECT_TRUE(error.IsNotFound());
}

TEST(VersionResource, ADamagedBinaryIsSafeToRead) {
    std::stringstream content;
    content << std::ifstream(platform::Utf8Path(OwnPath()), std::ios::binary).rdbuf();
    const std::string binary = content.str();
    const TemporaryFolder folder;
    platform::SystemError error;
    for (const size_t length : {size_t{3}, size_t{63}, size_t{64}, binary.size() / 2, binary.size() - 1})
        Read(folder.Write("cut", binary.substr(0, length)), "FileVersion", error);
    for (size_t offset = 0; offset < 64; ++offset) {  // the header
        std::string damaged = binary;
        damaged[offset] = static_cast<char>(0xFF);
        Read(folder.Write("damaged", damaged), "FileVersion", error);
    }
}
