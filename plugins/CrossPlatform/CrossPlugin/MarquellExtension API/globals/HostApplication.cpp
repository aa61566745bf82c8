#include "HostApplication.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string_view>

#include "HostApplications.h"
#include "TraceLog.h"
#include "platform/System.h"

namespace {

bool BeginsWith(const std::string& text, std::string_view prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// The host application of this system for which that holds; null for none.
template <class Condition>
const HostApplication* FindServed(Condition&& isMeant) {
    const auto served = ServedHostApplications(platform::kIsLinux);
    const auto found = std::find_if(served.begin(), served.end(), isMeant);
    return found != served.end() ? &*found : nullptr;
}

struct NamedKind {
    const char* prefix;
    HostKind kind;
};

constexpr std::array<NamedKind, 5> kNamedKinds{{{"InDesign", HostKind::kInDesign},
                                                {"InCopy", HostKind::kInCopy},
                                                {"Illustrator", HostKind::kIllustrator},
                                                {"Photoshop", HostKind::kPhotoshop},
                                                {"After", HostKind::kAfterEffects}}};

/// The value of the version component at `position`, which is moved past it and its dot. Characters are not
/// checked for being digits. Unsigned, so that an absurd number wraps around.
unsigned NextComponent(const std::string& version, size_t& position) {
    unsigned value = 0;
    while (position < version.size() && version[position] != '.')
        value = value * 10 + static_cast<unsigned>(version[position++] - '0');
    ++position;
    return value;
}

}  // namespace

HostKind HostKindFromName(const std::string& hostApp) {
    for (const NamedKind& each : kNamedKinds) {
        if (BeginsWith(hostApp, each.prefix))
            return each.kind;
    }
    return HostKind::kOther;
}

bool IsAfterEffectsName(const std::string& hostApp) {
    return Contains(hostApp, "AECC") || BeginsWith(hostApp, "After");
}

bool IsSketchName(const std::string& hostApp) {
    return Contains(hostApp, "Sketch") || BeginsWith(hostApp, "sketch");
}

std::string HostShortCode(const std::string& hostApp) {
    switch (HostKindFromName(hostApp)) {
        case HostKind::kInCopy:
        case HostKind::kInDesign:
            return "id";
        case HostKind::kPhotoshop:
            return "ps";
        case HostKind::kIllustrator:
            return "ai";
        default:
            break;
    }
    if (IsAfterEffectsName(hostApp))
        return "ae";
    if (IsSketchName(hostApp))
        return "sk";
    assert(false);
    return {};
}

std::string HostWindowName(const std::string& hostApp) {
    if (IsAfterEffectsName(hostApp))
        return "After Effects";
    switch (HostKindFromName(hostApp)) {
        case HostKind::kInDesign:
            return "indesign";
        case HostKind::kInCopy:
            return "incopy";
        case HostKind::kIllustrator:
            return "illustrator";
        case HostKind::kPhotoshop:
            return "Photoshop";
        default:
            break;
    }
    if (FindServed([&](const auto& each) { return each.isOnLinuxAlone && each.name == hostApp; }))
        return hostApp;
    LogMessage(
        0,
        "Host app ('%s') is not After Effects, InDesign, InCopy, Illustrator, Photoshop, or Quark! Setting "
        "window name to '?\?\?'",
        hostApp.c_str());
    return "???";
}

std::string MapBundleIDtoHostApp(const std::string& bundleID) {
    const HostApplication* host = FindServed([&](const auto& each) {
        return bundleID == std::string(kPluginIdentifierPrefix).append(each.identifierEnd);
    });
    if (host != nullptr)
        return std::string(host->name);
    LogMessage(0, "Unknown bundleID in %s(%s)", "MapBundleIDtoHostApp", bundleID.c_str());
    return {};
}

bool NamesAHostProcess(const std::string& processName) {
    return FindServed([&](const auto& each) {
               return processName.find(each.processWord) != std::string::npos ||
                      processName.find(each.name) != std::string::npos;
           }) != nullptr;
}

int CompareVersions(const std::string& a, const std::string& b) {
    size_t positionA = 0;
    size_t positionB = 0;
    while (positionA < a.size() || positionB < b.size()) {
        const int valueA = static_cast<int>(NextComponent(a, positionA));
        const int valueB = static_cast<int>(NextComponent(b, positionB));
        if (valueA != valueB)
            return valueA > valueB ? 1 : -1;
    }
    return 0;
}
