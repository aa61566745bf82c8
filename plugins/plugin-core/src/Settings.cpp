#include "Settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "TraceLog.h"

namespace {

// In the order in which GetSettings writes them.
constexpr std::array<const char*, 31> kPreferenceKeys{"EnablePlugin",
                                                      "EnableGlyphscan",
                                                      "PickBestMatch",
                                                      "SupportEmbeddedObjects",
                                                      "CloseFontsOnHostAppQuit",
                                                      "CloseFontsOnDocClose",
                                                      "ActivateEntireFamilies",
                                                      "ActivateGlobally",
                                                      "ActivateLocally",
                                                      "CurrentWorkgroup",
                                                      "DialogSuppression",
                                                      "GWFHaveEverBeenEnabled",
                                                      "LastCFOFolder",
                                                      "RMF4",
                                                      "RMF5",
                                                      "RMF6",
                                                      "RMF7",
                                                      "NotificationDelay",
                                                      "SuppressPanelLaunch",
                                                      "CS5PanelWidth",
                                                      "CS5PanelHeight",
                                                      "CS6PanelWidth",
                                                      "CS6PanelHeight",
                                                      "CS7PanelWidth",
                                                      "CS7PanelHeight",
                                                      "DropDownSelection",
                                                      "DropDownSelectionSavesSmartLists",
                                                      "EnableLogging",
                                                      "LastAddress",
                                                      "LastPort",
                                                      "LastUsername"};

struct BoolDefault {
    const char* key;
    bool value;
};
struct IntDefault {
    const char* key;
    int value;
};

constexpr std::array<BoolDefault, 8> kBoolDefaults{{{"EnablePlugin", true},
                                                    {"EnableGlyphscan", true},
                                                    {"DialogSuppression", true},
                                                    {"PickBestMatch", true},
                                                    {"SupportEmbeddedObjects", true},
                                                    {"CloseFontsOnHostAppQuit", true},
                                                    {"CloseFontsOnDocClose", false},
                                                    {"ActivateEntireFamilies", false}}};
constexpr std::array<IntDefault, 2> kPanelSizeDefaults{{{"CS5PanelWidth", 260}, {"CS5PanelHeight", 350}}};
constexpr BoolDefault kLastDefault{"DropDownSelection", false};

bool IsKnownKey(std::string_view key) {
    return std::find(kPreferenceKeys.begin(), kPreferenceKeys.end(), key) != kPreferenceKeys.end();
}

bool HoldsString(std::string_view key) {
    return key == "LastCFOFolder" || key == "LastUsername";
}

std::optional<int64_t> NumberFromText(std::string_view text) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// A text that grows in the caller's buffer, always terminated; what does not fit is cut.
class BoundedText {
public:
    BoundedText(char* buffer, size_t size) : mBuffer(buffer), mSize(size) {}

    /// Whether the whole piece was taken.
    bool Append(std::string_view piece) {
        const size_t room = mSize > mLength ? mSize - mLength - 1 : 0;
        const size_t taken = std::min(piece.size(), room);
        if (mSize == 0)
            return false;
        std::memcpy(mBuffer + mLength, piece.data(), taken);
        mLength += taken;
        mBuffer[mLength] = '\0';
        return taken == piece.size();
    }

private:
    char* mBuffer;
    size_t mSize;
    size_t mLength = 0;
};

std::optional<int64_t> NumberFromValue(const char* key, const char* value) {
    const std::optional<int64_t> number = NumberFromText(value);
    if (!number && std::strcmp(key, "CurrentWorkgroup") == 0)
        return FontManagerInterface::GetSharedInstance().FindWorkgroupID(value);
    return number;
}

/// A value that the framework could not store durably.
ErrorCode ReportNotStored(const char* key) {
    LogMessage(0, "ERROR:  the preference '%s' could not be stored", key);
    return CoreErrorCodes::kUnknownError;
}

}  // namespace

void Settings::RegisterDefaults() {
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    VantorixPluginFramework* framework = preferences->Framework();
    if (framework == nullptr || framework->AreDefaultsRegistered())
        return;
    const CFRef<CFMutableDictionaryRef> defaults = cf::MutableDictionary();
    for (const BoolDefault& each : kBoolDefaults)
        cf::Set(defaults, each.key, each.value);
    for (const IntDefault& each : kPanelSizeDefaults)
        cf::Set(defaults, each.key, each.value);
    cf::Set(defaults, kLastDefault.key, kLastDefault.value);
    if (!framework->RegisterDefaults(defaults.get()))
        LogMessage(0, "ERROR:  the default preferences could not be stored");
}

ErrorCode Settings::GetSettings(char* buffer, const size_t* bufferSize) {
    if (!MarquellGlobals::IsPluginFunctional())
        return CoreErrorCodes::kNotInitialized;
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    if (!preferences->IsMade() || buffer == nullptr || bufferSize == nullptr)
        return CoreErrorCodes::kInvalidParam;
    BoundedText text(buffer, *bufferSize);
    bool isWhole = text.Append("{");
    for (const char* key : kPreferenceKeys) {
        char piece[256];
        std::snprintf(piece, sizeof piece, "\"%s\":\"%ld\"", key,
                      static_cast<long>(preferences->GetIntPreference(key)));
        isWhole = isWhole && text.Append(piece);
        if (isWhole && key != kPreferenceKeys.back())
            isWhole = text.Append(",");
        if (!isWhole)
            break;
    }
    isWhole = text.Append("}") && isWhole;
    return isWhole ? CoreErrorCodes::kSuccess : CoreErrorCodes::kIndexOutOfRange;
}

ErrorCode Settings::SetPreference(const char* key, const char* value) {
    if (!MarquellGlobals::IsPluginFunctional())
        return CoreErrorCodes::kNotInitialized;
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    if (!preferences->IsMade() || key == nullptr || value == nullptr || !IsKnownKey(key))
        return CoreErrorCodes::kInvalidParam;
    if (HoldsString(key)) {
        if (!preferences->SetStringPreference(key, value))
            ReportNotStored(key);
        return CoreErrorCodes::kInvalidParam;  // hosts know this answer
    }
    const std::optional<int64_t> number = NumberFromValue(key, value);
    if (!number)
        return CoreErrorCodes::kInvalidParam;
    return preferences->SetIntPreference(key, *number) ? CoreErrorCodes::kSuccess : ReportNotStored(key);
}
