#include "Settings.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>

#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
#include "TraceLog.h"

namespace {

using preferences::Preference;

/// Null for a key that is none.
const Preference* FindPreference(std::string_view key) {
    const auto found = std::find_if(std::begin(preferences::kAll), std::end(preferences::kAll),
                                    [&](const Preference& each) { return key == each.key; });
    return found != std::end(preferences::kAll) ? &*found : nullptr;
}

/// Numbers of preferences have 32 bits with sign. One of them is what hosts pass for a text that is not a number.
std::optional<int32_t> NumberFromText(std::string_view text) {
    constexpr auto kNoNumber = static_cast<int32_t>(0x80000001);
    constexpr std::string_view kBlanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && number != kNoNumber;
    return isNumber ? std::optional(number) : std::nullopt;
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

std::optional<int32_t> NumberFromValue(const char* key, const char* value) {
    const std::optional<int32_t> number = NumberFromText(value);
    if (!number && std::strcmp(key, preferences::CurrentWorkgroup) == 0)
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
    VantorixPluginFramework* framework = MarquellGlobals::GetSharedVPFInterface()->Framework();
    if (framework == nullptr || framework->AreDefaultsRegistered())
        return;
    const CFRef<CFMutableDictionaryRef> defaults = cf::MutableDictionary();
    for (const Preference& each : preferences::kAll) {
        if (!each.defaultValue)
            continue;
        if (each.kind == preferences::Kind::kSwitch)
            cf::Set(defaults, each.key, *each.defaultValue != 0);
        else
            cf::Set(defaults, each.key, *each.defaultValue);
    }
    if (!framework->RegisterDefaults(defaults.get()))
        LogMessage(0, "ERROR:  the default preferences could not be stored");
}

ErrorCode Settings::GetSettings(char* buffer, const size_t* bufferSize) {
    if (!MarquellGlobals::IsPluginFunctional())
        return CoreErrorCodes::kNotInitialized;
    VPFInterface* store = MarquellGlobals::GetSharedVPFInterface();
    if (!store->IsMade() || buffer == nullptr || bufferSize == nullptr)
        return CoreErrorCodes::kInvalidParam;
    BoundedText text(buffer, *bufferSize);
    bool isWhole = text.Append("{");
    for (const Preference& each : preferences::kAll) {
        char piece[256];
        std::snprintf(piece, sizeof piece, "\"%s\":\"%ld\"", each.key,
                      static_cast<long>(store->GetIntPreference(each.key)));
        isWhole = isWhole && text.Append(piece);
        if (isWhole && &each != std::end(preferences::kAll) - 1)
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
    VPFInterface* store = MarquellGlobals::GetSharedVPFInterface();
    if (!store->IsMade() || key == nullptr || value == nullptr)
        return CoreErrorCodes::kInvalidParam;
    const Preference* preference = FindPreference(key);
    if (preference == nullptr)
        return CoreErrorCodes::kInvalidParam;
    if (preference->kind == preferences::Kind::kText) {
        if (!store->SetStringPreference(key, value))
            ReportNotStored(key);
        return CoreErrorCodes::kInvalidParam;  // hosts know this answer
    }
    const std::optional<int32_t> number = NumberFromValue(key, value);
    if (!number)
        return CoreErrorCodes::kInvalidParam;
    return store->SetIntPreference(key, *number) ? CoreErrorCodes::kSuccess : ReportNotStored(key);
}
