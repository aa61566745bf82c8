#include "store/SettingsStore.h"

#include <cstdlib>

#include "platform/Environment.h"
#include "store/Database.h"

namespace pellwick {
namespace {

constexpr char kUserName[] = "userName";
constexpr char kStandalone[] = "standalone";
constexpr char kGoogleWebFonts[] = "googleWebFonts";
constexpr char kCurrentWorkgroup[] = "currentWorkgroup";
constexpr char kLastCheckedFile[] = "lastCheckedFile";
constexpr char kEra[] = "processEra";
constexpr char kYes[] = "1";
constexpr char kNo[] = "0";

std::string LocalUser() {
    for (const char* variable : {"USER", "USERNAME"}) {  // by the custom of POSIX, and of Windows
        std::string name = platform::EnvironmentVariable(variable);
        if (!name.empty())
            return name;
    }
    return "local user";
}

}  // namespace

bool SettingsStore::IsLoggedIn() {
    return !UserName().empty();
}

std::string SettingsStore::UserName() {
    return Get(kUserName, LocalUser());
}

void SettingsStore::LogIn(const std::string& userName) {
    Set(kUserName, userName);
}

void SettingsStore::LogOut() {
    Set(kUserName, "");
}

bool SettingsStore::IsStandalone() {
    return Get(kStandalone, kYes) == kYes;
}

void SettingsStore::SetStandalone(bool isStandalone) {
    Set(kStandalone, isStandalone ? kYes : kNo);
}

bool SettingsStore::AreGoogleWebFontsEnabled() {
    return Get(kGoogleWebFonts, kNo) == kYes;
}

void SettingsStore::EnableGoogleWebFonts(bool isEnabled) {
    Set(kGoogleWebFonts, isEnabled ? kYes : kNo);
}

int32_t SettingsStore::CurrentWorkgroup() {
    return static_cast<int32_t>(std::strtol(Get(kCurrentWorkgroup, "0").c_str(), nullptr, 10));
}

void SettingsStore::SetCurrentWorkgroup(int32_t workgroupID) {
    Set(kCurrentWorkgroup, std::to_string(workgroupID));
}

int64_t SettingsStore::LastCheckedFile() {
    return std::strtoll(Get(kLastCheckedFile, "0").c_str(), nullptr, 10);
}

void SettingsStore::SetLastCheckedFile(int64_t fileID) {
    Set(kLastCheckedFile, std::to_string(fileID));
}

std::string SettingsStore::Era() {
    return Get(kEra, "");
}

void SettingsStore::NoteEra(const std::string& era) {
    Set(kEra, era);
}

std::string SettingsStore::Get(const char* name, const std::string& missing) {
    Statement query = mDatabase.Prepare("SELECT value FROM settings WHERE name = ?");
    return query.Bind(name).Step() ? query.Text(0) : missing;
}

void SettingsStore::Set(const char* name, const std::string& value) {
    mDatabase.Prepare("INSERT OR REPLACE INTO settings (name, value) VALUES (?, ?)").Bind(name, value).Run();
}

}  // namespace pellwick
