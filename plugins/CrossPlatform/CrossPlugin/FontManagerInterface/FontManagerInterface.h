// What the rest of the plug-in core sees of the font manager.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CoreAgentInterface.h"
#include "FontManagerAccess.h"
#include "GMutex.h"
#include "HostCall.h"
#include "NoDestructor.h"

/// One process-wide object. Main thread; the creation and the shutting down of the font-manager object are
/// locked.
class FontManagerInterface : public FontManagerAccess {
public:
    static FontManagerInterface& GetSharedInstance();

    /// True when the interface library is fully loaded and of a version that goes with the plug-in's. Makes
    /// the font-manager object when it is not there yet.
    bool CompatibleFontManagerIsRunning();
    /// The font-manager object; null until a font manager was found, and again after the host said that it
    /// quits.
    CoreAgentInterface* GetFontManager() { return sm_pFontManager; }

    /// A version value of the core's own module; "x.x.x.x" when it has none.
    static std::string StringValueFromVersionResourceCopy(const char* fieldName);

    // ---- Workgroups

    /// Enables plug-in functionality and makes sure that there is a workgroup to work in: if none was chosen
    /// in this process and the plug-in is usable, runs HandleSelectWorkgroup.
    void InitializeDefaultWorkgroup();
    /// Has a workgroup chosen: the one chosen last time while the user still has it, the only one there is,
    /// else by the Select Workgroup dialog. Plug-in services are disabled until one was chosen. Where the
    /// list cannot be had, the one that was chosen in this process stays.
    void HandleSelectWorkgroup();
    /// Whether the user has a workgroup to work in.
    bool IsWorkgroupAvailable();
    /// The workgroup to work in; nothing while none was chosen.
    std::optional<int32_t> GetDefaultWorkgroupID() const { return mDefaultWorkgroupID; }
    void SetDefaultWorkgroupID(int32_t workgroupID);
    /// Forgets the workgroup if the user does not have it any more.
    void ForgetWorkgroupThatIsGone();
    /// Works in that workgroup from now on, also after the next start. Enables plug-in services if the agent
    /// is connected and the user logged in.
    void SetCurrentWorkgroup(int32_t workgroupID);
    /// The same for a name as shown to the user; kNotFound when the user has no workgroup of that name.
    ErrorCode SetCurrentWorkgroup(CFStringRef name);
    /// The first workgroup with that name among those to choose from.
    std::optional<int32_t> FindWorkgroupID(const std::string& name);
    /// What the user can choose from: the own workgroups and the entry for all of them together.
    std::vector<Workgroup> WorkgroupsToChooseFrom();

    // Lookups to which no export leads yet.

    /// The name to show for a workgroup; empty when the user does not have it.
    std::string GetWorkgroupNameFromID(int32_t inWorkgroupID);
    bool IsValidWorkgroupForUser(int32_t workgroupID);
    /// Gives each font record that names a workgroup the name to show for it.
    void AddWorkgroupNamesToFonts(CFMutableArrayRef fonts);

    // ---- Fingerprints, to which no export leads yet

    /// The fingerprints (dictionaries) of the fonts with that PostScript name, best match first.
    CFRef<CFArrayRef> GetGlyphscanData(const std::string& name, int32_t workgroupID);

    // ---- Others

    /// Asks for the folder to collect fonts in. `inOutSavePath` comes out as a full path; false, and it is
    /// left alone, when the user chose none.
    bool ShowSaveFolderDialog(const std::string& initialPath, std::string& inOutSavePath);
    /// The user does something in the host. See CoreAgentInterface::OnUserAction.
    void OnUserAction();
    /// To be called when the host is idle: reacts to the agent's reports, and makes up for what could not be
    /// done while it was out of reach. The status of the receiver of notifications.
    ErrorCode OnIdle();
    /// Whether fonts may be asked for: a compatible font manager was found, the plug-in is functional, and
    /// the user has not switched it off.
    bool IsUsable();
    /// The host is about to quit and to close its documents: from now on the user is asked nothing.
    void OnHostAppQuitting();
    /// The host quits: closes the documents' fonts if "CloseFontsOnHostAppQuit" is on and the user is logged
    /// in, and lets go of the font manager.
    void OnHostAppShuttingDown();

    /// Whether the agent was reachable when last asked.
    bool IsRunning() override { return sm_pFontManager != nullptr && sm_pFontManager->IsReachable(); }
    /// Always: every font manager that the core binds takes lists.
    bool IsBatchMode() override { return true; }
    bool IsLoggedIn() override;
    ErrorCode ActivateDocumentFonts(const std::string& documentPath, const DocumentFontLists& lists) override;
    ErrorCode ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                CFMutableArrayRef matchedFonts) override;
    PluginActivationStates GetPluginActivationStates(const std::vector<uint32_t>& databaseIDs) override;
    int16_t XTDeactivateFont(CFDictionaryRef font, uint64_t context) override;
    ErrorCode DeactivateFonts(CFArrayRef fonts, uint64_t context,
                              CFMutableArrayRef deactivatedFonts) override;
    bool SaveDocumentFonts(const std::string& documentPath, bool replace, CFStringRef hint) override;

private:
    friend class NoDestructor<FontManagerInterface>;
    FontManagerInterface() = default;

    /// True when it made the font-manager object.
    bool CreateFontManager();
    void ReleaseFontManager();
    /// Deactivates the fonts that the agent could not be told of before, if it can be reached now. False when
    /// some are left.
    bool CatchUp();
    void OpenSelectWorkgroupDialog();
    ErrorCode ListWorkgroups(std::vector<Workgroup>& workgroups);
    std::optional<int32_t> ChooseWorkgroup();
    static std::string FindWorkgroupIDGetName(int32_t inWorkgroupID,
                                              const std::vector<Workgroup>& workgroups);

    /// A font's record and its fingerprint.
    struct Fingerprint {
        CFRef<CFDictionaryRef> font;
        CFRef<CFDictionaryRef> data;
    };
    static CFRef<CFDictionaryRef> FingerprintOf(CoreAgentInterface& agent, CFDictionaryRef font);
    std::vector<Fingerprint> GetGlyphscanDataForFontName(const std::string& name, int32_t workgroupID);

    GMutex mFontManagerLock;  ///< guards the creation and destruction of sm_pFontManager
    CoreAgentInterface* sm_pFontManager = nullptr;
    /// Every one that was made, since a call that waits behind a dialog may still be in one that was let go.
    std::vector<std::unique_ptr<CoreAgentInterface>> mFontManagers;
    /// Records of fonts that no document needs any more, and that the agent could not be told of.
    CFRef<CFMutableArrayRef> mFontsToLetGo = cf::MutableArray();
    /// In milliseconds. Hosts are idle many times a second, and an agent that hangs costs a moment each time.
    static constexpr uint32_t kFirstCatchUpInterval = 500;
    uint32_t mCatchUpInterval = kFirstCatchUpInterval;
    uint32_t mLastCatchUpTick = 0;
    std::optional<int32_t> mDefaultWorkgroupID;
    Turn mSelectWorkgroupDialog;
};
