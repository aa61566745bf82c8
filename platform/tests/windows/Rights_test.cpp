// Who gets at what this process makes, and what it does not take for a file.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>
#include <sddl.h>

#include "TemporaryFolder.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

std::string RightsOf(const std::string& path) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    PACL list = nullptr;
    GetNamedSecurityInfoW(platform::Utf8Path(path).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                          nullptr, nullptr, &list, nullptr, &descriptor);
    char* text = nullptr;
    ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1,
                                                         DACL_SECURITY_INFORMATION, &text, nullptr);
    std::string rights = text != nullptr ? text : "";
    LocalFree(text);
    LocalFree(descriptor);
    return rights;
}

}  // namespace

TEST(Rights, WhatIsWrittenIsClosedToEveryone) {
    const TemporaryFolder folder;
    ASSERT_FALSE(platform::WriteWholeFile(folder / "file", "x"));
    const std::string rights = RightsOf(folder / "file");
    EXPECT_NE(rights.find("(A;"), std::string::npos) << rights;
    EXPECT_EQ(rights.find(";WD)"), std::string::npos) << rights;
    EXPECT_EQ(rights.find(";BU)"), std::string::npos) << rights;
}

TEST(Rights, PipesAndDevicesAreNoFiles) {
    platform::ReadOnlyFile file;
    const std::string name = R"(\\.\pipe\plugincore-test-)" + std::to_string(GetCurrentProcessId());
    HANDLE pipe = CreateNamedPipeA(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(file.Open(name));
    CloseHandle(pipe);
    EXPECT_TRUE(file.Open("NUL"));
    EXPECT_TRUE(file.Open("."));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(platform::IsExistingFile("."));
}
