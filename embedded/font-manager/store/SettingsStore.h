// The font manager's own settings and who is logged in.
#pragma once

#include <cstdint>
#include <string>

namespace pellwick {

class Database;

/// Throws DatabaseError.
class SettingsStore {
public:
    explicit SettingsStore(Database& database) : mDatabase(database) {}

    /// Whether anybody is logged in. A fresh font manager is: as the user of this machine.
    bool IsLoggedIn();
    /// Empty when nobody is.
    std::string UserName();
    void LogIn(const std::string& userName);
    void LogOut();

    /// Whether the agent runs without a server; a fresh one does.
    bool IsStandalone();
    void SetStandalone(bool isStandalone);

    bool AreGoogleWebFontsEnabled();
    void EnableGoogleWebFonts(bool isEnabled);

    /// The workgroup that new fonts go to; 0 when none was chosen.
    int32_t CurrentWorkgroup();
    void SetCurrentWorkgroup(int32_t workgroupID);

    /// The ID of the file of the vault that was compared with its checksum last.
    int64_t LastCheckedFile();
    void SetLastCheckedFile(int64_t fileID);

    /// What platform::ProcessEra said when leases were looked at last; empty when it never did.
    std::string Era();
    void NoteEra(const std::string& era);

private:
    std::string Get(const char* name, const std::string& missing);
    void Set(const char* name, const std::string& value);

    Database& mDatabase;
};

}  // namespace pellwick
