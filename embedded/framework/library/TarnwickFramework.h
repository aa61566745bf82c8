// The framework that the library's factory makes: preferences, strings and questions in one object.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VantorixPluginFramework.h"
#include "preferences/PreferenceStore.h"
#include "presenters/Presenter.h"

class TarnwickFramework final : public VantorixPluginFramework {
public:
    /// Who uses the framework; empty texts where it is not known.
    struct Identity {
        std::string bundleIdentifier;
        std::string hostApp;
        std::string pluginVersion;
    };

    /// `language` is a two-letter code, `preferencesFolder` as for PreferenceFile.
    TarnwickFramework(const Identity& identity, const std::string& preferencesFolder, std::string language,
                      std::unique_ptr<Presenter> presenter);

    /// One for this user: folder, language and presenter as the surroundings of the process say. Null when
    /// there is no memory.
    static VantorixPluginFramework* Create(const char* bundleIdentifier,
                                           CFDictionaryRef identification) noexcept;

    void Release() override;

    bool GetBoolPreference(const char* key) override;
    int64_t GetIntPreference(const char* key) override;
    CFStringRef CopyStringPreference(const char* key) override;
    bool SetBoolPreference(const char* key, bool value) override;
    bool SetIntPreference(const char* key, int64_t value) override;
    bool SetStringPreference(const char* key, CFStringRef value) override;
    bool AreDefaultsRegistered() override;
    bool RegisterDefaults(CFDictionaryRef defaults) override;
    bool IsPreferenceStoreUsable() override;

    CFStringRef CopyLocalizedString(uint32_t stringID) override;

    void SetParentWindowForUi(void* window) override { mPresenter->SetParentWindow(window); }
    int32_t ShowMessageBox(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons) override;

    void ShowMessageAbout(uint32_t titleID, uint32_t textID, CFStringRef subject) override;
    bool ShowProgress(uint32_t titleID, int32_t done, int32_t total) override;

    bool ShowAbout() override;
    bool ShowPreferences() override;
    bool ShowSelectWorkgroup(CFArrayRef workgroups, int32_t* workgroupID) override;
    bool ShowCommandBox(CFDictionaryRef state, int32_t* command) override;
    bool ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                          CFMutableArrayRef skippedFonts) override;
    bool ShowRestrictedFonts(CFArrayRef fonts, bool onlyNew) override;
    bool ShowChooseFolder(CFStringRef prompt, CFStringRef initialFolder, CFStringRef* outNewFolder) override;

private:
    bool Store(const char* key, const nlohmann::json& value);
    /// What the user made of the dialog; nothing when it was not confirmed.
    template <class AnyDialog>
    std::optional<AnyDialog> Ask(AnyDialog dialog);
    void Tell(uint32_t titleID, uint32_t textID, const std::string& subject);
    std::string Text(uint32_t stringID) const;

    const std::string mPluginVersion;
    const std::string mLanguage;
    const std::string mPreferencesFolder;
    PreferenceStore mPreferences;
    const std::unique_ptr<Presenter> mPresenter;
};
