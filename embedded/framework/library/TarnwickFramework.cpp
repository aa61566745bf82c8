#include "library/TarnwickFramework.h"

#include <CoreFoundation++/CFRef.h>

#include <nlohmann/json.hpp>

#include "JSONConversion.h"
#include "TraceLog.h"
#include "library/DialogContents.h"
#include "library/PreferencesDialog.h"
#include "library/ResolveFontsDialog.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "strings/StringTables.h"

namespace {

/// What `action` answers, or `fallback` and a log line when it throws.
template <class Result, class Action>
Result Guarded(const char* function, Result fallback, Action action) noexcept {
    try {
        return action();
    } catch (const std::exception& failure) {
        LogMessage(0, "ERROR:  %s failed: %s", function, failure.what());
    } catch (...) {
        LogMessage(0, "ERROR:  %s failed", function);
    }
    return fallback;
}

std::string PreferencesFolder() {
    const std::string folder =
        platform::Current<platform::Folders>().PathOf(platform::KnownFolder::kConfiguration);
    return folder.empty() ? std::string() : folder + platform::kPathSeparator + "Vantorix";
}

/// Without what no preference can hold.
nlohmann::json PreferenceValues(CFDictionaryRef dictionary) {
    nlohmann::json preferences = nlohmann::json::object();
    const nlohmann::json all = JSONFromCF(dictionary, 1, WholeNumbers::kAsIntegers);
    for (const auto& [key, value] : all.items()) {
        if (value.is_primitive() && !value.is_null())
            preferences[key] = value;
    }
    return preferences;
}

}  // namespace

TarnwickFramework::TarnwickFramework(const Identity& identity, const std::string& preferencesFolder,
                                     std::string language, std::unique_ptr<Presenter> presenter)
    : mPluginVersion(identity.pluginVersion),
      mLanguage(std::move(language)),
      mPreferencesFolder(preferencesFolder),
      mPreferences(preferencesFolder, identity.bundleIdentifier, identity.hostApp),
      mPresenter(std::move(presenter)) {}

VantorixPluginFramework* TarnwickFramework::Create(const char* bundleIdentifier,
                                                   CFDictionaryRef identification) noexcept {
    return Guarded<VantorixPluginFramework*>(__func__, nullptr, [=]() {
        const Identity identity{bundleIdentifier != nullptr ? bundleIdentifier : "",
                                cf::GetString(identification, plugin_identity::kHostApp),
                                cf::GetString(identification, plugin_identity::kPluginVersion)};
        const std::string language = platform::UserLanguage();
        return std::make_unique<TarnwickFramework>(identity, PreferencesFolder(), language,
                                                   ChoosePresenter(language))
            .release();
    });
}

void TarnwickFramework::Release() {
    const std::unique_ptr<TarnwickFramework> last(this);
}

bool TarnwickFramework::GetBoolPreference(const char* key) {
    return Guarded(__func__, false, [=, this] { return key != nullptr && mPreferences.GetBool(key); });
}

int64_t TarnwickFramework::GetIntPreference(const char* key) {
    return Guarded(__func__, int64_t{0}, [=, this] { return key != nullptr ? mPreferences.GetInt(key) : 0; });
}

CFStringRef TarnwickFramework::CopyStringPreference(const char* key) {
    const CFStringRef text = Guarded<CFStringRef>(__func__, nullptr, [=, this] {
        return key != nullptr ? cf::String(mPreferences.GetString(key)).release() : nullptr;
    });
    return text != nullptr ? text : static_cast<CFStringRef>(CFRetain(CFSTR("")));
}

bool TarnwickFramework::Store(const char* key, const nlohmann::json& value) {
    return key != nullptr && mPreferences.Set(key, value);
}

bool TarnwickFramework::SetBoolPreference(const char* key, bool value) {
    return Guarded(__func__, false, [=, this] { return Store(key, value); });
}

bool TarnwickFramework::SetIntPreference(const char* key, int64_t value) {
    return Guarded(__func__, false, [=, this] { return Store(key, value); });
}

bool TarnwickFramework::SetStringPreference(const char* key, CFStringRef value) {
    return Guarded(__func__, false, [=, this] { return value != nullptr && Store(key, cf::ToUtf8(value)); });
}

bool TarnwickFramework::AreDefaultsRegistered() {
    return Guarded(__func__, false, [this] { return mPreferences.AreDefaultsRegistered(); });
}

bool TarnwickFramework::RegisterDefaults(CFDictionaryRef defaults) {
    return Guarded(__func__, false, [=, this] {
        const nlohmann::json values = PreferenceValues(defaults);
        const bool isUnderstood = values.size() == static_cast<size_t>(cf::Count(defaults));
        return isUnderstood && mPreferences.RegisterDefaults(values);
    });
}

bool TarnwickFramework::IsPreferenceStoreUsable() {
    return Guarded(__func__, false, [this] { return mPreferences.IsUsable(); });
}

CFStringRef TarnwickFramework::CopyLocalizedString(uint32_t stringID) {
    return Guarded<CFStringRef>(__func__, nullptr, [=, this]() -> CFStringRef {
        const char* text = FindLocalizedString(mLanguage, stringID);
        return text != nullptr ? cf::String(text).release() : nullptr;
    });
}

std::string TarnwickFramework::Text(uint32_t stringID) const {
    return LocalizedText(mLanguage, stringID);
}

int32_t TarnwickFramework::ShowMessageBox(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons) {
    MessageBoxQuestion question{titleID, textID, buttons, {}, {}};
    return Guarded(__func__, DefaultAnswer(question), [&] {
        question.title = Text(titleID);
        question.text = Text(textID);
        return mPresenter->AskMessageBox(question);
    });
}

void TarnwickFramework::Tell(uint32_t titleID, uint32_t textID, const std::string& subject) {
    mPresenter->AskMessageBox(
        {titleID, textID, MessageBoxButtons::kOk, Text(titleID), FillIn(Text(textID), subject)});
}

void TarnwickFramework::ShowMessageAbout(uint32_t titleID, uint32_t textID, CFStringRef subject) {
    Guarded(__func__, false, [=, this] {
        Tell(titleID, textID, cf::ToUtf8(subject));
        return true;
    });
}

bool TarnwickFramework::ShowProgress(uint32_t titleID, int32_t done, int32_t total) {
    return Guarded(__func__, true, [=, this] {
        return total <= 0 || mPresenter->ShowProgress({titleID, Text(titleID), done, total});
    });
}

template <class AnyDialog>
std::optional<AnyDialog> TarnwickFramework::Ask(AnyDialog dialog) {
    Dialog asked = std::move(dialog);
    return mPresenter->AskDialog(asked) ? std::optional(std::get<AnyDialog>(std::move(asked))) : std::nullopt;
}

bool TarnwickFramework::ShowAbout() {
    return Guarded(__func__, false, [this] { return Ask(AboutDialog{mPluginVersion}).has_value(); });
}

bool TarnwickFramework::ShowPreferences() {
    return Guarded(__func__, false, [this] {
        const PreferencesDialog shown = MakePreferencesDialog(mPreferences, mLanguage);
        const auto chosen = Ask(shown);
        if (!chosen)
            return false;
        const bool areStored = mPreferences.SetAll(ChangedPreferences(shown, *chosen));
        if (!areStored)
            Tell(localized::kPreferences, localized::kPreferencesNotStored, mPreferencesFolder);
        return areStored;
    });
}

bool TarnwickFramework::ShowSelectWorkgroup(CFArrayRef workgroups, int32_t* workgroupID) {
    return Guarded(__func__, false, [=, this] {
        if (workgroups == nullptr || workgroupID == nullptr)
            return false;
        const auto chosen = Ask(MakeSelectWorkgroupDialog(workgroups, *workgroupID));
        if (chosen)
            *workgroupID = chosen->workgroupID;
        return chosen.has_value();
    });
}

bool TarnwickFramework::ShowCommandBox(CFDictionaryRef state, int32_t* command) {
    return Guarded(__func__, false, [=, this] {
        if (command == nullptr)
            return false;
        const auto chosen = Ask(MakeCommandBoxDialog(state, mLanguage));
        if (chosen)
            *command = chosen->command;
        return chosen.has_value();
    });
}

// Whatever happens to the dialog, the host gets back every font that it asked about.
bool TarnwickFramework::ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                                         CFMutableArrayRef skippedFonts) {
    if (fonts == nullptr || resolvedFonts == nullptr || skippedFonts == nullptr)
        return false;
    const auto chosen = Guarded(__func__, std::optional<ResolveFontsDialog>(),
                                [=, this] { return Ask(MakeResolveFontsDialog(fonts)); });
    return Guarded(__func__, false, [&] {
        SortOutFonts(fonts, chosen.value_or(ResolveFontsDialog()).replacements, resolvedFonts, skippedFonts);
        return chosen.has_value();
    });
}

bool TarnwickFramework::ShowRestrictedFonts(CFArrayRef fonts, bool onlyNew) {
    return Guarded(__func__, false,
                   [=, this] { return Ask(MakeRestrictedFontsDialog(fonts, onlyNew)).has_value(); });
}

bool TarnwickFramework::ShowChooseFolder(CFStringRef prompt, CFStringRef initialFolder,
                                         CFStringRef* outNewFolder) {
    return Guarded(__func__, false, [=, this] {
        if (outNewFolder == nullptr)
            return false;
        const auto chosen = Ask(MakeChooseFolderDialog(prompt, initialFolder));
        const auto folder = chosen ? ChosenFolder(*chosen) : std::nullopt;
        if (folder)
            *outNewFolder = cf::String(*folder).release();
        return folder.has_value();
    });
}
