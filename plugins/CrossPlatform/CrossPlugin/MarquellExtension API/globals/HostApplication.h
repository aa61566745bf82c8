// Host applications by their names: kinds, short names, windows, versions.
#pragma once

#include <string>

enum class HostKind : int {
    kOther = 0,
    kPhotoshop = 2,
    kIllustrator = 3,
    kInDesign = 4,
    kInCopy = 5,
    kAfterEffects = 7
};

/// By the beginning of the host application's name, case-sensitive: "Illustrator2025" is kIllustrator.
HostKind HostKindFromName(const std::string& hostApp);
/// Also true for the names of older versions, which hold "AECC".
bool IsAfterEffectsName(const std::string& hostApp);
bool IsSketchName(const std::string& hostApp);

/// "id", "ps", "ai", "ae" or "sk"; empty for another host, which is a programming error.
std::string HostShortCode(const std::string& hostApp);

/// The name by which the main window of that host is found; "???" for a host that is none of ours, and Sketch.
std::string HostWindowName(const std::string& hostApp);

/// The host application that a plug-in with this bundle identifier serves; empty for an unknown identifier.
std::string MapBundleIDtoHostApp(const std::string& bundleID);

/// Whether a process of that name is one of a host application of this system.
bool NamesAHostProcess(const std::string& processName);

/// 1 when version `a` is greater, -1 when `b` is, 0 when they are equal. Dot-separated numbers; a missing
/// component counts as 0.
int CompareVersions(const std::string& a, const std::string& b);
