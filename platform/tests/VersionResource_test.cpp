#include "platform/VersionResource.h"

#include <gtest/gtest.h>

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
