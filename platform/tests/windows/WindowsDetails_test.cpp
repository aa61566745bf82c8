// What files, programs and libraries are on Windows: shares and devices, rights, names of their own.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>
#include <sddl.h>

#include <filesystem>

#include "OwnedHandle.h"
#include "ScopedVariable.h"
#include "SecurityAttributes.h"
#include "TestProcess.h"
#include "WideText.h"
#include "platform/Autostart.h"
#include "platform/BecomeProgram.h"
#include "platform/Folders.h"
#include "support/Launch.h"

TEST(Paths, AShareIsARootBehindWhichFoldersAreMade) {
    EXPECT_EQ(platform::AbsolutePath(R"(\\server\share\a\..\für)"), R"(\\server\share\für)");
    EXPECT_EQ(platform::AbsolutePath("//server/share/./x"), R"(\\server\share\x)");
    EXPECT_EQ(platform::FullPath(R"(\\server\share\x\)"), R"(\\server\share\x)");
    EXPECT_EQ(platform::AbsolutePath(R"(\\?\C:\a\x)"), R"(\\?\C:\a\x)");
    const TemporaryFolder folder;
    for (const char* device : {R"(\\?\)", R"(\\.\)"}) {
        const std::string made = platform::AbsolutePath(folder / (device[2] == '?' ? "a/字" : "b/c"));
        EXPECT_FALSE(platform::MakeFolders(device + made));
        EXPECT_TRUE(std::filesystem::is_directory(platform::Utf8Path(made)));
    }
}

TEST(Rights, WhatIsWrittenIsClosedToEveryone) {
    const TemporaryFolder folder;
    ASSERT_FALSE(platform::WriteWholeFile(folder / "file", "x"));
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    char* text = nullptr;
    GetNamedSecurityInfoW(platform::Utf8Path(folder / "file").c_str(), SE_FILE_OBJECT,
                          DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr, &descriptor);
    ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1,
                                                         DACL_SECURITY_INFORMATION, &text, nullptr);
    const std::string rights = text != nullptr ? text : "";
    LocalFree(text);
    LocalFree(descriptor);
    EXPECT_NE(rights.find("(A;"), std::string::npos) << rights;
    for (const char* others : {";WD)", ";BU)"})
        EXPECT_EQ(rights.find(others), std::string::npos) << rights;
}

TEST(BecomeProgram, LetsNoWordOfABatchFileBecomeACommand) {
    const TemporaryFolder folder;
    const std::string batch = folder.Write("tool.CMD", "@exit 7\r\n");
    int status = 0;
    EXPECT_FALSE(platform::BecomeProgram({batch, "a b.ai", "(1).ai"}, status));
    EXPECT_EQ(status, 7);
    for (const char* word : {"a&calc.ai", "\"", "50%.ai", "a\nb"})
        EXPECT_EQ(platform::BecomeProgram({batch, word}, status).code, ERROR_BAD_ARGUMENTS) << word;
}

TEST(Autostart, TheEntryIsOneThatWindowsStartsUntilTheUserOrWeSwitchItOff) {
    const std::string name = "PluginCoreTest" + std::to_string(GetCurrentProcessId());
    const std::string program = R"(C:\Programs für 字\Pellwick.exe)";
    EXPECT_TRUE(platform::SetAutostart(name, std::string(260, 'x'), "serve"))
        << "Windows starts none so long";
    EXPECT_FALSE(platform::HasAutostart(name));
    ASSERT_FALSE(platform::SetAutostart(name, program, "serve"));
    wchar_t command[261];
    DWORD size = sizeof command;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, LR"(Software\Microsoft\Windows\CurrentVersion\Run)",
                           platform::ToWide(name).c_str(), RRF_RT_REG_SZ, nullptr, command, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(platform::ToUtf8(command), '"' + program + "\" serve");
    EXPECT_TRUE(platform::HasAutostart(name));
    const unsigned char switchedOff[12] = {3};  // as the Task Manager notes it
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER,
                              LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\StartupApproved\Run)",
                              platform::ToWide(name).c_str(), REG_BINARY, switchedOff, sizeof switchedOff),
              ERROR_SUCCESS);
    EXPECT_FALSE(platform::HasAutostart(name));
    ASSERT_FALSE(platform::SetAutostart(name, program, "serve"));
    EXPECT_TRUE(platform::HasAutostart(name)) << "asked for anew";
    EXPECT_FALSE(platform::ClearAutostart(name));
    EXPECT_FALSE(platform::ClearAutostart(name));
    EXPECT_FALSE(platform::HasAutostart(name));
}

TEST(Processes, OneThatMayNotBeOpenedIsThereUntilItIsGone) {
    using platform::ProcessState;
    const auto child = Launch("sleep");
    uint64_t startTime = 0;
    ASSERT_EQ(platform::LookAtProcess(child->Id(), startTime), ProcessState::kAlive);
    const platform::OwnedHandle process(
        OpenProcess(WRITE_DAC | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(child->Id())));
    ACL nobody{};
    ASSERT_TRUE(InitializeAcl(&nobody, sizeof nobody, ACL_REVISION));
    ASSERT_EQ(SetSecurityInfo(process.Get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                              &nobody, nullptr),
              DWORD{ERROR_SUCCESS});
    uint64_t found = 1;
    EXPECT_EQ(platform::LookAtProcess(child->Id(), found), ProcessState::kAlive);
    EXPECT_EQ(found, 0u);
    EXPECT_EQ(platform::StateOfProcess(child->Id(), 0), ProcessState::kAlive);
    EXPECT_EQ(platform::StateOfProcess(child->Id(), startTime), ProcessState::kCannotBeTold);
    ASSERT_TRUE(TerminateProcess(process.Get(), 0));
    WaitForExit(*child);
}

TEST(Rights, FontsAreReadByTheFontCacheAndStoreProgramsToo) {
    platform::PrivateToUser rights(platform::PrivateToUser::Kind::kFont);
    ASSERT_NE(rights.Attributes(), nullptr);
    const auto rightsOf = [&](WELL_KNOWN_SID_TYPE who) {
        unsigned char sid[SECURITY_MAX_SID_SIZE];
        DWORD size = sizeof sid;
        EXPECT_TRUE(CreateWellKnownSid(who, nullptr, sid, &size));
        BOOL isPresent = FALSE;
        BOOL isDefaulted = FALSE;
        PACL list = nullptr;
        ACCESS_MASK granted = 0;
        GetSecurityDescriptorDacl(rights.Attributes()->lpSecurityDescriptor, &isPresent, &list, &isDefaulted);
        for (DWORD index = 0; index < list->AceCount; ++index) {
            void* entry = nullptr;
            EXPECT_TRUE(GetAce(list, index, &entry));
            auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
            if (EqualSid(&allowed->SidStart, sid))
                granted |= allowed->Mask;
        }
        return granted;
    };
    EXPECT_EQ(rightsOf(WinLocalServiceSid), ACCESS_MASK{GENERIC_READ});
    EXPECT_EQ(rightsOf(WinBuiltinAnyPackageSid), ACCESS_MASK{GENERIC_READ});
    EXPECT_EQ(rightsOf(WinWorldSid) | rightsOf(WinBuiltinUsersSid), ACCESS_MASK{0});
}

TEST(Programs, AProgramOutlivesTheJobOfTheOneThatStartsIt) {
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_BREAKAWAY_OK;
    ASSERT_TRUE(SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits));
    ASSERT_TRUE(AssignProcessToJobObject(job, GetCurrentProcess()));
    const auto child = Launch("be-ready");
    ASSERT_TRUE(child && child->WaitUntilIdle(std::chrono::seconds(10)));
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, static_cast<DWORD>(child->Id()));
    BOOL isInJob = TRUE;
    EXPECT_TRUE(IsProcessInJob(process, job, &isInJob));
    EXPECT_FALSE(isInJob);
    KillProcess(child->Id());
    CloseHandle(process);
    CloseHandle(job);
}

TEST(Programs, ThatOneBecomesAreNotWaitedForWithWhatTheyLeaveRunning) {
    const TemporaryFolder folder;
    const std::string program = BuiltFile(CHILD_PROGRAM);
    const auto child = Launch("become \"" + program + "\" start \"" + folder / "id" + "\"");
    ASSERT_TRUE(child);
    EXPECT_EQ(WaitForExit(*child), 0) << "while the one that was left sleeps";
    KillProcess(std::stoll(ContentOf(folder / "id")));
}

TEST(Language, IsThatOfTheSystemWhateverOtherSystemsTellByVariables) {
    const ScopedVariable language("LC_ALL", "xx_XX.UTF-8");
    EXPECT_EQ(platform::UserLanguage(), "xx") << "in a portable installation";
    const ScopedVariable installed("PLUGINCORE_PORTABLE", "");
    EXPECT_NE(platform::UserLanguage(), "xx");
}

TEST(Devices, AreNoFiles) {
    platform::ReadOnlyFile file;
    const std::string name = R"(\\.\pipe\plugincore-test-)" + std::to_string(GetCurrentProcessId());
    HANDLE pipe = CreateNamedPipeA(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    for (const std::string& path : {name, std::string("NUL"), std::string(".")})
        EXPECT_TRUE(file.Open(path)) << path;
    CloseHandle(pipe);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(platform::IsExistingFile("."));
}

TEST(Programs, AProgramHasTheNameOfItsFileAndWorksInItsFolder) {
    const TemporaryFolder folder;
    CopyOfChild(folder, "Photoshop");
    const std::string program = platform::AbsolutePath(folder / "PHOTOshop.EXE");
    WaitForExit(*Launch("tell \"" + folder / "told" + "\"", program));
    EXPECT_EQ(ContentOf(folder / "told"),
              "Photoshop|" + platform::AbsolutePath(platform::Utf8Text(folder.Path())));
}
