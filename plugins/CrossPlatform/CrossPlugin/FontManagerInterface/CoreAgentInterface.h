// The gateway to the running font-manager agent. Each operation calls one function of the interface library
// and copes with the one failure that matters to a plug-in: the agent has gone away.
//
// An agent that can be reached again is simply asked again. Otherwise the first loss of the agent within a
// call is healed silently: the agent is started again and the call repeated. A second loss in the same call
// disables the plug-in's services, tells the user, and asks before each further try. After a "no" nothing
// asks until the user does something, and a host that quits is not asked at all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "FontManagerAccess.h"
#include "HostCall.h"
#include "VPILoader.h"
#include "Workgroup.h"

/// Main thread; the dialogs that it may show are modal. Codes that are not about a lost agent are the
/// interface library's own.
class CoreAgentInterface {
public:
    virtual ~CoreAgentInterface() = default;

    /// The user does something in the host: if an agent is lost for it, there may be a question again.
    /// Services that went off with the agent come on again if it can be reached: true when they did.
    bool OnUserAction();
    /// From now on nothing is asked, and a dead agent started once at most.
    void BeginQuitting() { mIsQuitting = true; }

    /// Whether the agent was reachable when last asked; when it was not, it is asked now.
    bool IsReachable();
    /// Asks now. Does not start an agent.
    bool CanReachAgent();
    /// Whether a call with that code did not come to the agent, or its answer did not come back in time.
    static bool IsUndelivered(ErrorCode code);
    /// Nothing is offered until the agent is back.
    void LoseServices();
    /// Everything is offered again.
    void ServicesAreBack() { mHasLostServices = mHasGivenUp = false; }
    /// Whether a lost agent is being brought back, perhaps behind a dialog.
    bool IsRecovering() const { return mRecovery.IsTaken(); }

    /// Starts the interface library for this process. On success plug-in services are enabled and the core
    /// counts as connected; on failure the user is told and both are off.
    void InitializeCoreAgent();
    /// 0, or 2 when no agent was found.
    int LaunchZephyrinAgentIfNeeded();
    /// The same, and drops the connection to the agent that is gone.
    int RelaunchZephyrinAgent();

    [[nodiscard]] ErrorCode ActivateDocumentFontsByPath(const std::string& documentPath,
                                                        const DocumentFontLists& lists);
    /// Activates the one font of the record. Nothing calls it yet: documents activate lists.
    [[nodiscard]] ErrorCode ActivateFontByID(CFDictionaryRef font, const std::string& documentIdentifier,
                                             CFMutableArrayRef matchedFonts);
    [[nodiscard]] ErrorCode ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                              CFMutableArrayRef matchedFonts);
    /// Leaves the documents' fonts active when this process has ended.
    [[nodiscard]] ErrorCode KeepFonts();
    [[nodiscard]] ErrorCode DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                            CFMutableArrayRef deactivatedFonts);
    [[nodiscard]] ErrorCode GetClientFontActivationStates(const std::vector<uint32_t>& databaseIDs,
                                                          PluginActivationStates& states);
    [[nodiscard]] ErrorCode SaveDocumentFonts(const std::string& documentPath, bool replace,
                                              CFStringRef fontUsage);

    /// Called before each font and after the last with the number of fonts done and of all fonts; false stops
    /// the collecting. Must not be empty.
    using CollectingProgress = std::function<bool(int done, int total)>;
    /// Copies the files of the fonts into the folder, which is made if it is missing. A file of the same name
    /// is never replaced. Fonts whose files cannot be read are passed over, and kFontUnavailableToExport is
    /// answered in the end; kTaskStopped when `progress` said so.
    [[nodiscard]] ErrorCode CollectFontsUsedByCurrentDocument(const std::string& documentPath,
                                                              const std::string& destinationFolder,
                                                              CFArrayRef fonts,
                                                              const CollectingProgress& progress);
    [[nodiscard]] ErrorCode CreateTopLevelSet(const std::string& name, int32_t workgroupID, int32_t& setID);
    /// Adds the fonts of the records to the set.
    [[nodiscard]] ErrorCode AddFontsToSet(CFArrayRef fonts, int32_t setID);

    /// Appends the records of the fonts with that PostScript name in the workgroup, best match first.
    [[nodiscard]] ErrorCode GetFontsByPostscriptName(const std::string& name, int32_t workgroupID,
                                                     CFMutableArrayRef fonts);
    /// The fingerprint of a font as XML; empty when it has none.
    [[nodiscard]] ErrorCode GetGlyphscanInfo(uint32_t databaseID, std::string& xml);
    /// Appends the records of the active fonts that a host may take for one of these.
    [[nodiscard]] ErrorCode GetFontConflicts(const std::vector<uint32_t>& databaseIDs,
                                             CFMutableArrayRef conflicts);
    /// The workgroup of the system's own fonts. Asked for once; kWorkgroupID_Unknown when it cannot be told.
    /// Nothing asks yet.
    int32_t GetSystemWorkgroupID();

    bool IsLoggedIn();
    bool IsRunningStandalone();
    bool CanExportFromWorkgroup(CFArrayRef fonts);
    /// Whether the user may be shown missing fonts to choose replacements for.
    bool canShowPostscriptReplacements();
    /// Nothing asks yet: the font manager refuses by itself what its database cannot take.
    bool AreSchemaVersionsInSync();

    /// Appends the user's workgroups that the filter lets through, with the names to show.
    [[nodiscard]] ErrorCode GetAllWorkgroupsForUser(const WorkgroupFilter& filter,
                                                    std::vector<Workgroup>& workgroups);

    /// Has the agent report to the notification queue. Does nothing when it does so already.
    void ListenForNotifications();
    /// Reacts to what the agent reported since the last call; to be called when the host is idle. The status
    /// of those who were told.
    ErrorCode ProcessNotifications();

    /// Lets the interface library release what it holds for this process. An agent that is dead is started
    /// for it, once, if it has activated fonts for this process: it takes them away when the process has
    /// ended.
    void CleanUpOnShutdown();

    /// Calls one function of the table; `arguments` follow the facade. kNotImplemented when the library does
    /// not have it; GIPCClient::kReplyTimeout, without a call, when the host has waited for long already.
    template <class Function, class... Arguments>
    ErrorCode Call(Function PluginFunctionTable::*function, Arguments... arguments) {
        return CallAgent(CallOf(function, arguments...));
    }

private:
    /// A call to the interface library with a fresh facade.
    using AgentCall = std::function<ErrorCode(PluginFacadeRef facade)>;

    /// Makes the call, and makes it again for as long as the agent is lost and comes back.
    ErrorCode CallAgent(const AgentCall& call);
    ErrorCode CallOnce(const AgentCall& call);
    bool RelaunchWithUserRetry();
    bool MayLaunch();
    void OnAgentBack();
    void DisableAndNotify();
    ErrorCode GiveUp(ErrorCode code);

    /// A call of one function of the table; `arguments` follow the facade.
    template <class Function, class... Arguments>
    static AgentCall CallOf(Function PluginFunctionTable::*function, Arguments... arguments) {
        return [=](PluginFacadeRef facade) -> ErrorCode {
            const Function bound = VPILoader::GetSharedInstance()->*function;
            return bound != nullptr ? bound(facade, arguments...) : CoreErrorCodes::kNotImplemented;
        };
    }
    /// The agent's answer to a yes-or-no question; `otherwise` when the call fails.
    bool Ask(uint32_t (*PluginFunctionTable::*function)(PluginFacadeRef, bool*), bool otherwise);

    /// As the preference "ActivateGlobally" has it.
    ErrorCode Activate(CFArrayRef fonts, const std::string& documentIdentifier,
                       CFMutableArrayRef matchedFonts);
    ErrorCode CollectFonts(const std::string& destinationFolder, CFArrayRef fonts,
                           const CollectingProgress& progress);
    static ErrorCode MakeEmptyFolder(const std::string& path);
    ErrorCode InitializeSdk();
    void ReportInitializationFailure(ErrorCode code);
    bool IsAgentProcessRunning();

    Turn mRecovery;                 ///< a lost agent is being brought back; dialogs may show
    bool mIsReachable = true;       ///< when last asked
    bool mHasGivenUp = false;       ///< since the user last did something
    bool mHasLostServices = false;  ///< they went off with the agent
    bool mHasActivatedFonts = false;
    bool mIsQuitting = false;
    bool mHasLaunchedWhileQuitting = false;
};
