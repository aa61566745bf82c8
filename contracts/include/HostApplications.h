// The host applications: how a plug-in without a file of its own names the one that it serves, and by what the
// processes of each are known.
#pragma once

#include <algorithm>
#include <span>
#include <string_view>

inline constexpr std::string_view kPluginIdentifierPrefix = "com.vantorix.AutoActivationPlugin.";

struct HostApplication {
    std::string_view identifierEnd;  ///< what follows the prefix
    std::string_view name;
    std::string_view processWord;  ///< what the names of its processes hold, in this spelling
    bool isOnLinuxAlone = false;   ///< served there alone; its windows are known by its name
};

/// Those of Linux alone stand last.
inline constexpr HostApplication kHostApplications[] = {
    {"AI27", "Illustrator2023", "Illustrator"},
    {"AI28", "Illustrator2024", "Illustrator"},
    {"AI29", "Illustrator2025", "Illustrator"},
    {"AI30", "Illustrator2026", "Illustrator"},
    {"AE230", "AfterEffects2023", "After"},
    {"AE240", "AfterEffects2024", "After"},
    {"AE250", "AfterEffects2025", "After"},
    {"AE260", "AfterEffects2026", "After"},
    // The plug-ins of these are files that name them; by these identifiers others pass for them.
    {"InCopy2023", "InCopy2023", "InCopy"},
    {"InCopy2024", "InCopy2024", "InCopy"},
    {"InCopy2025", "InCopy2025", "InCopy"},
    {"InCopy2026", "InCopy2026", "InCopy"},
    {"InDesign2023", "InDesign2023", "InDesign"},
    {"InDesign2024", "InDesign2024", "InDesign"},
    {"InDesign2025", "InDesign2025", "InDesign"},
    {"InDesign2026", "InDesign2026", "InDesign"},
    {"Photoshop2023", "Photoshop2023", "Photoshop"},
    {"Photoshop2024", "Photoshop2024", "Photoshop"},
    {"Photoshop2025", "Photoshop2025", "Photoshop"},
    {"Photoshop2026", "Photoshop2026", "Photoshop"},
    {"Sketch", "Sketch", "Sketch"},
    {"LibreOffice", "LibreOffice", "soffice", true},
    {"GIMP", "GIMP", "gimp", true},
    {"Inkscape", "Inkscape", "inkscape", true},
    {"Scribus", "Scribus", "scribus", true},
    {"Evince", "Evince", "evince", true}};

static_assert(std::is_partitioned(std::begin(kHostApplications), std::end(kHostApplications),
                                  [](const HostApplication& each) { return !each.isOnLinuxAlone; }));

/// The host applications that are served on this system.
constexpr std::span<const HostApplication> ServedHostApplications(bool isLinux) {
    const std::span<const HostApplication> all(kHostApplications);
    return all.first(static_cast<size_t>(std::count_if(
        all.begin(), all.end(), [=](const auto& each) { return isLinux || !each.isOnLinuxAlone; })));
}
