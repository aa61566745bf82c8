// The plug-in framework: preferences, localized strings, message boxes and dialogs.
//
// The shared library "TarnwickPluginFramework" stands beside the core, which loads it at run time and calls
// its factory. Calls come one at a time, each on the thread of the host's call. Strings are UTF-8. Nothing is
// thrown across this border; what a function returns is the only truth.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

/// Kinds of message box.
enum class MessageBoxButtons : int32_t { kOk = 0, kYesNo = 2 };

/// Members of the state that ShowCommandBox takes.
namespace command_box {
inline constexpr char kIsLocalPersonal[] = "IsLocalPersonal";  ///< boolean: there is no server
inline constexpr char kButtonsEnabled[] = "ButtonsEnabled";    ///< boolean: document commands are offered
inline constexpr char kIsOnline[] = "IsOnline";                ///< boolean
inline constexpr char kWorkgroups[] = "Workgroups";            ///< array of workgroup records
inline constexpr char kCurrentWorkgroupID[] = "CurrentWorkgroupID";  ///< number; missing where there is none
}  // namespace command_box

/// Members of the identification that the factory takes: texts, each of which may be missing.
namespace plugin_identity {
inline constexpr char kHostApp[] = "HostApp";
inline constexpr char kPluginVersion[] = "PluginVersion";
inline constexpr char kVantorixPluginInterfaceVersion[] = "VantorixPluginInterfaceVersion";
}  // namespace plugin_identity

class VantorixPluginFramework {
public:
    static constexpr uint32_t kInterfaceVersion = 2;

    /// Destroys the object; it was made by CreateVantorixPluginFramework.
    virtual void Release() = 0;

    // Preferences, kept per host application and plug-in bundle identifier. A key that was never stored reads
    // as 0, false or the empty string. Setters answer false when the value could not be stored durably.
    virtual bool GetBoolPreference(const char* key) = 0;
    virtual int64_t GetIntPreference(const char* key) = 0;
    /// Owned by the caller; never null.
    virtual CFStringRef CopyStringPreference(const char* key) = 0;
    virtual bool SetBoolPreference(const char* key, bool value) = 0;
    virtual bool SetIntPreference(const char* key, int64_t value) = 0;
    virtual bool SetStringPreference(const char* key, CFStringRef value) = 0;
    /// Whether default values were registered for this host application and plug-in at any time.
    virtual bool AreDefaultsRegistered() = 0;
    /// Stores the defaults in one step, except for keys that have a value, and remembers that it was done.
    /// `defaults`: CFString keys, CFBoolean or CFNumber values.
    virtual bool RegisterDefaults(CFDictionaryRef defaults) = 0;
    /// False when the preference store cannot be used: no folder to keep it in, or no right to write there.
    virtual bool IsPreferenceStoreUsable() = 0;

    /// The text with that identifier in the user's language, else in English; null when there is none. Owned
    /// by the caller.
    virtual CFStringRef CopyLocalizedString(uint32_t stringID) = 0;

    /// The host's main window, parent of the dialogs; may be null.
    virtual void SetParentWindowForUi(void* window) = 0;
    /// Shows a message; answers with the button, counted from 1. Without anyone to ask, the answer is 1 for
    /// one button and 2 (no) for two.
    virtual int32_t ShowMessageBox(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons) = 0;

    /// Shows a message with one button whose text names `subject` where the localized text holds "%s".
    virtual void ShowMessageAbout(uint32_t titleID, uint32_t textID, CFStringRef subject) = 0;
    /// Shows how far a long work has come: `done` of `total` steps (total > 0). The first call is with 0; the
    /// one in which both are equal ends it. False when the user wants the work to stop.
    virtual bool ShowProgress(uint32_t titleID, int32_t done, int32_t total) = 0;

    // Dialogs. Each answers whether it was confirmed; without anyone to ask it was not. What is not confirmed
    // leaves its outputs alone.
    virtual bool ShowAbout() = 0;
    /// Lets the user change preferences, and stores them.
    virtual bool ShowPreferences() = 0;
    /// `workgroups`: array of workgroup records. `*workgroupID` goes in as the current one and comes out as
    /// chosen.
    virtual bool ShowSelectWorkgroup(CFArrayRef workgroups, int32_t* workgroupID) = 0;
    /// `state`: members of command_box. `*command` comes out as the label of the menu item chosen (MenuItems.h): a
    /// document command where buttons are enabled, or the place of a workgroup in the array above kFirstWorkgroup.
    virtual bool ShowCommandBox(CFDictionaryRef state, int32_t* command) = 0;
    /// `fonts`: font records, those that can be replaced with their candidates under
    /// kGS_PossibleReplacementsKey. Appended to `resolvedFonts`: the record of each font that got a
    /// replacement, with the record of this under kGS_MatchedFontKey; to `skippedFonts`: the records of all
    /// others. When not confirmed, every font is skipped.
    virtual bool ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                                  CFMutableArrayRef skippedFonts) = 0;
    virtual bool ShowRestrictedFonts(CFArrayRef fonts, bool onlyNew) = 0;
    /// Asks for an existing folder or one to be made. `initialFolder` may be null. `*outNewFolder` is a full
    /// path, owned by the caller; empty when what was chosen is not a folder of a file system.
    virtual bool ShowChooseFolder(CFStringRef prompt, CFStringRef initialFolder,
                                  CFStringRef* outNewFolder) = 0;

protected:
    ~VantorixPluginFramework() = default;
};

/// Name and type of the factory. `identification`: members of plugin_identity. The result is null when
/// `interfaceVersion` is not the library's own, or when there is no memory.
inline constexpr char kCreateVantorixPluginFramework[] = "CreateVantorixPluginFramework";
using CreateVantorixPluginFrameworkFunction = VantorixPluginFramework* (*)(uint32_t interfaceVersion,
                                                                           const char* pluginBundleIdentifier,
                                                                           CFDictionaryRef identification);
