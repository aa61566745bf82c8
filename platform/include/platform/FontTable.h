// The fonts that the system offers to programs.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Service.h"

namespace platform {

/// What a program that looks now is offered.
struct VisibleFonts {
    std::set<std::string> files;            ///< UTF-8 paths, where the system tells them (Linux)
    std::set<std::string> postScriptNames;  ///< where it does not (Windows)

    bool Offers(const std::string& file, const std::string& postScriptName) const {
        return files.count(file) != 0 || postScriptNames.count(postScriptName) != 0;
    }
};

class FontTable {
public:
    virtual ~FontTable() = default;

    /// Linux: true; fontconfig finds the fonts that stand in the user's folder for them, and nobody adds any.
    /// Windows: false; the fonts in use in a session are those that were added to its table. Under Wine each
    /// process has a table of its own: only the one that adds a font sees it.
    virtual bool IsFilledFromFolders() = 0;
    /// Adds the fonts of the file at the full path for every program of the session, until the session ends.
    /// Adding a file twice calls for removing it twice. Others may not be able to delete or replace the file
    /// meanwhile. False when the system does not take it.
    virtual bool Add(const std::string& path) = 0;
    /// Takes one Add back, whichever process it was; false when the file is not in the table.
    virtual bool Remove(const std::string& path) = 0;
    /// How often each file is in the table by Add, whichever process it was, by its path.
    virtual std::map<std::string, int> Added() = 0;
    /// Tells all programs that the table has changed, without waiting for any of them.
    virtual void AnnounceChange() = 0;

    /// What this process is offered. Takes its time: all fonts are looked at.
    virtual VisibleFonts Visible() = 0;
};

template <>
FontTable& SystemDefault<FontTable>();

/// Why the system shows the fonts of a file with that extension (with its dot, lower case) to no program, for people;
/// empty where it does show them.
std::string WhyNeverShown(std::string_view extension);

/// The font files that the system offers to every program, by being in a folder or a list of the system's or
/// the user's. Full paths, UTF-8.
struct InstalledFonts {
    std::vector<std::string> files;
    std::vector<std::string> folders;  ///< which they come from, also those that are not there yet
};

/// What is installed; nothing where that cannot be told. Linux: what fontconfig finds, which reads fonts in
/// this process where it has not kept what is in a folder. Windows: the lists in the registry.
std::optional<InstalledFonts> FindInstalledFonts();

}  // namespace platform
