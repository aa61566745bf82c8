// The plug-in framework as the core uses it: preferences, localized strings, message boxes, dialogs.
//
// The framework is a library of its own, found beside the core at run time. Without it everything here still
// answers: preferences read as 0 and empty, and questions get the answer of a user who is not there.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <optional>
#include <string>

#include "FontManagerAccess.h"
#include "MessageBoxIDs.h"
#include "VantorixPluginFramework.h"

class VPFInterface : public PreferenceAccess {
public:
    enum FrameworkState : int32_t {
        kNotMade = -1,  ///< stands for an interface that there was no memory for
        kBound = 0,
        kIdentityUnknown = 1,  ///< made before the plug-in said who it is
        kLibraryNotFound = 2,
        kFactoryUnusable = 3,  ///< no factory, or one of another version
        kPreferencesUnusable = 4
    };

    /// Who the preferences are kept for. A value that is not known is left out.
    struct Identity {
        std::optional<std::string> hostApp;
        std::optional<std::string> pluginVersion;
        std::optional<std::string> pluginBundleIdentifier;
        std::optional<std::string> pluginInterfaceVersion;
    };

    /// In the state kNotMade.
    VPFInterface() = default;
    explicit VPFInterface(const Identity& identity);
    /// For a framework that is bound already; it is released in the end. Null stands for a missing library.
    VPFInterface(const Identity& identity, VantorixPluginFramework* framework);
    ~VPFInterface() override;
    VPFInterface(const VPFInterface&) = delete;
    VPFInterface& operator=(const VPFInterface&) = delete;

    bool IsMade() const { return mState != kNotMade; }
    /// Always true: without a framework the interface still answers, so callers need no case of their own for
    /// it.
    bool IsValid() const { return true; }
    FrameworkState GetFrameworkState() const { return mState; }
    /// Null unless the state is kBound or kPreferencesUnusable.
    VantorixPluginFramework* Framework() const { return mFramework; }
    /// Full path of the framework's library; empty when there is none.
    const std::string& FrameworkPath() const { return mFrameworkPath; }

    bool GetBoolPreference(const char* key) override;
    int64_t GetIntPreference(const char* key);
    std::string GetStringPreference(const char* key);
    bool SetBoolPreference(const char* key, bool value);
    bool SetIntPreference(const char* key, int64_t value);
    bool SetStringPreference(const char* key, const std::string& value);

    /// The text with that identifier in the user's language; empty when there is none.
    std::string LocalizedString(uint32_t stringID);

    /// Shows a message with one button.
    void ShowMessageBox(MessageBoxStrings strings);
    /// Shows a message with two buttons; true for the first.
    bool AskYesNo(MessageBoxStrings strings);
    /// Shows a message with one button whose text names `subject`.
    void ShowMessageAbout(MessageBoxAbout strings, const std::string& subject);
    /// Shows that `done` of `total` steps are done, under that title; false when the user wants to stop.
    bool ShowProgress(uint32_t titleID, int done, int total);
    void SetParentWindowForUi(void* window);

    // Dialogs. Each answers whether it was confirmed; what is not confirmed leaves its outputs alone.
    bool ShowAbout();
    bool ShowPreferences();
    /// `workgroupID` goes in as the current one of the workgroup records and comes out as chosen.
    bool ShowSelectWorkgroup(CFArrayRef workgroups, int32_t& workgroupID);
    /// See VantorixPluginFramework::ShowCommandBox.
    bool ShowCommandBox(CFDictionaryRef state, int32_t& command);
    /// See VantorixPluginFramework::ShowResolveFonts.
    bool ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts, CFMutableArrayRef skippedFonts);
    /// See VantorixPluginFramework::ShowRestrictedFonts.
    bool ShowRestrictedFonts(CFArrayRef fonts, bool onlyNew);
    /// `folder`: a full path, UTF-8.
    bool ChooseFolder(const char* prompt, const std::string& initialFolder, std::string& folder);

private:
    /// What the framework's function answers; 0, false or null without a framework.
    template <class Result, class... Parameters, class... Arguments>
    Result Call(Result (VantorixPluginFramework::*function)(Parameters...), Arguments... arguments) {
        return mFramework != nullptr ? (mFramework->*function)(arguments...) : Result();
    }

    void Identify(const Identity& identity);
    FrameworkState BindFramework(const Identity& identity);

    FrameworkState mState = kNotMade;
    std::string mFrameworkPath;
    VantorixPluginFramework* mFramework = nullptr;  ///< released in the destructor
    /// Members of plugin_identity, as far as they are known.
    CFRef<CFMutableDictionaryRef> mIdentification;
};
