// Whose files are obeyed, by their access lists as Windows has them.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <sddl.h>

#include <filesystem>

#include "AccessRules.h"
#include "TemporaryFolder.h"
#include "platform/FileTrust.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

constexpr char kOthers[] = "can be written to by others";
constexpr char kStranger[] = "belongs to somebody else";

/// For a user "S-1-5-21-1-2-3-1001". Entries of the kind `type` take the place of plain ones that allow with condition.
std::string Judge(const std::string& text, Guarded kind, bool isUserTrusted = true,
                  BYTE type = ACCESS_ALLOWED_ACE_TYPE) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    PSID user = nullptr;
    EXPECT_TRUE(ConvertStringSidToSidA("S-1-5-21-1-2-3-1001", &user));
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(text.c_str(), SDDL_REVISION_1,
                                                                     &descriptor, nullptr))
        << text;
    BOOL isPresent = FALSE;
    BOOL isDefaulted = FALSE;
    PACL list = nullptr;
    void* entry = nullptr;
    if (type != ACCESS_ALLOWED_ACE_TYPE &&
        GetSecurityDescriptorDacl(descriptor, &isPresent, &list, &isDefaulted) && GetAce(list, 0, &entry))
        static_cast<ACE_HEADER*>(entry)->AceType = type;
    const auto* bytes = static_cast<const unsigned char*>(user);
    const std::string fault(
        FaultOf(descriptor, kind, isUserTrusted ? UserId(bytes, bytes + GetLengthSid(user)) : UserId()));
    LocalFree(user);
    LocalFree(descriptor);
    return fault;
}

TEST(AccessRules, FoldersAreJudgedByWhatOthersMayDoToWhatIsInThem) {
    // As the system gives them.
    const std::string programData =
        "O:SYD:PAI(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICIIO;GA;;;CO)(A;OICI;0x1200a9;;;BU)(A;CI;0x116;;;BU)";
    const std::string programFiles =
        "O:S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464D:PAI"
        "(A;;FA;;;S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464)"
        "(A;CIIO;GA;;;S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464)"
        "(A;;0x1301bf;;;SY)(A;OICIIO;GA;;;SY)(A;;0x1301bf;;;BA)(A;OICIIO;GA;;;BA)(A;;0x1200a9;;;BU)"
        "(A;OICIIO;GXGR;;;BU)(A;OICIIO;GA;;;CO)(A;;0x1200a9;;;AC)";
    const std::string belowDrive =
        "O:BAD:AI(A;OICIID;FA;;;BA)(A;OICIID;FA;;;SY)(A;OICIID;0x1200a9;;;BU)(A;ID;0x1301bf;;;AU)"
        "(A;OICIIOID;SDGXGWGR;;;AU)";
    EXPECT_EQ(Judge(programData, Guarded::kFolder), "");
    EXPECT_EQ(Judge(programData, Guarded::kProgramFolder), kOthers) << "libraries beside the program";
    EXPECT_EQ(Judge(programFiles, Guarded::kProgramFolder), "");
    for (const Guarded kind : {Guarded::kFolder, Guarded::kProgramFolder, Guarded::kFile})
        EXPECT_EQ(Judge(belowDrive, kind), kOthers);
}

TEST(AccessRules, OnlyTheSystemAdministratorsAndATrustedUserMayOwnAndChange) {
    for (const char* safe : {"O:BAD:(A;;FA;;;BA)(A;;FR;;;WD)", "O:SYD:(A;;FA;;;CO)(A;;FA;;;OW)(D;;FA;;;WD)",
                             "O:BAD:(A;IO;FA;;;WD)", "O:BAD:"})
        EXPECT_EQ(Judge(safe, Guarded::kFile, false), "") << safe;
    for (const char* open : {"O:BA", "O:BAD:(A;;GW;;;WD)", "O:BAD:(A;;WD;;;AU)", "O:BAD:(A;;WO;;;BU)",
                             "O:BAD:(A;;SD;;;BU)", "O:BAD:(A;;0x4;;;IU)"})
        EXPECT_EQ(Judge(open, Guarded::kFile), kOthers) << open;
    EXPECT_EQ(Judge("O:BAD:(A;;DT;;;BU)", Guarded::kFolder), kOthers) << "what is in it can be removed";
    const std::string users = "O:S-1-5-21-1-2-3-1001D:(A;;FA;;;S-1-5-21-1-2-3-1001)";
    EXPECT_EQ(Judge(users, Guarded::kFile), "");
    EXPECT_EQ(Judge(users, Guarded::kFile, false), kStranger);
    EXPECT_EQ(Judge("O:BAD:(A;;FA;;;S-1-5-21-1-2-3-1001)", Guarded::kFile, false), kOthers);
    EXPECT_EQ(Judge("O:S-1-5-21-1-2-3-1002D:(A;;FA;;;BA)", Guarded::kFile), kStranger);
    EXPECT_EQ(Judge("D:(A;;FA;;;BA)", Guarded::kFile), kStranger) << "nobody's";
    SECURITY_DESCRIPTOR withNullList{};
    SID system{SID_REVISION, 1, SECURITY_NT_AUTHORITY, {SECURITY_LOCAL_SYSTEM_RID}};
    InitializeSecurityDescriptor(&withNullList, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorOwner(&withNullList, &system, FALSE);
    SetSecurityDescriptorDacl(&withNullList, TRUE, nullptr, FALSE);
    EXPECT_EQ(FaultOf(&withNullList, Guarded::kFile, {}), kOthers);
}

TEST(AccessRules, AConditionMayBeMetAndWhatIsUnknownMayAllow) {
    EXPECT_EQ(Judge("O:BAD:(A;;FA;;;WD)", Guarded::kFile, true, ACCESS_ALLOWED_CALLBACK_ACE_TYPE), kOthers);
    EXPECT_EQ(Judge("O:BAD:(A;;FR;;;WD)", Guarded::kFile, true, ACCESS_ALLOWED_CALLBACK_ACE_TYPE), "");
    EXPECT_EQ(Judge("O:BAD:(A;;FR;;;BA)", Guarded::kFile, true, ACCESS_ALLOWED_COMPOUND_ACE_TYPE), kOthers);
    EXPECT_EQ(Judge("O:BAD:(A;;FA;;;WD)", Guarded::kFile, true, ACCESS_DENIED_CALLBACK_ACE_TYPE), "");
}

TEST(JudgedFile, IsReadAsItWasJudgedAndItsFolderStaysInPlace) {
    const TemporaryFolder folder;
    const std::filesystem::path inner = Utf8Path(folder / "字");
    const std::string path = folder.Write("字/file", "content");
    std::string fault;
    std::string content;
    std::error_code failure;
    {
        JudgedFile judged;
        ASSERT_FALSE(judged.Open(path, FileUse::kContent, fault));
        std::filesystem::rename(inner, Utf8Path(folder / "taken"), failure);
        EXPECT_TRUE(failure);
        EXPECT_FALSE(judged.Read(content, 7));
        EXPECT_EQ(content, "content");
        JudgedFile program;
        ASSERT_FALSE(program.Open(path, FileUse::kProgram, fault));
        EXPECT_FALSE(std::filesystem::remove(Utf8Path(path), failure));
    }
    EXPECT_TRUE(JudgedFile().Open(folder / "字", FileUse::kContent, fault)) << "a folder";
    std::filesystem::rename(inner, Utf8Path(folder / "taken"), failure);
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_TRUE(JudgedFile().Open(path, FileUse::kContent, fault).IsNotFound());
    EXPECT_EQ(fault, path + " cannot be looked at");
}

}  // namespace
}  // namespace platform
