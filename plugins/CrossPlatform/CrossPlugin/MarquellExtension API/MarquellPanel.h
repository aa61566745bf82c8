// One panel that the plug-in shows inside the host: it answers the panel's requests and tells it what changes
// in the font manager. How messages travel is left to the class that derives from it.
//
// Main thread. Every message is a JSON object (see PanelMessages.h); failures are reported where they arise.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "FontListFiles.h"
#include "GJSONUtils.h"
#include "VPILoader.h"

class MarquellPanel {
public:
    virtual ~MarquellPanel() = default;

    /// Answers one request. A code tells that the message was none; what becomes of a request does not reach
    /// the caller.
    virtual ErrorCode CallMethodForMessage(const std::string& message);
    /// The plug-in became available, or is not any more; told at once.
    virtual ErrorCode SetEnabled(bool enabled);

    /// Sends what was pushed since the last call, a message for each kind of notification. What could not be
    /// sent, and everything while the font manager is not connected, waits for the next call; so does what is
    /// pushed from within the sending. A call from there sends nothing.
    virtual ErrorCode PopNotifications();

    // What is to be told at the next PopNotifications. Always 0. Font events and switches of the web fonts
    // are dropped while the font manager is not connected. `details` stays with the caller.
    virtual ErrorCode PushLoggedInStateChangedNotification(int32_t serverType);
    virtual ErrorCode PushOnlineStateChangedNotification(bool isOnline);
    virtual ErrorCode PushGoogleWebFontsEnabledNotificaton(bool enabled);
    virtual ErrorCode PushFontActivatedNotification(uint32_t fontID);
    virtual ErrorCode PushFontDeactivatedNotification(uint32_t fontID);
    virtual ErrorCode PushFontMissingNotification(uint32_t fontID);
    virtual ErrorCode PushFontNonCompliantNotification(uint32_t fontID);
    virtual ErrorCode PushBulkReplicationProgressNotification(CFDictionaryRef details);
    virtual ErrorCode PushBulkReplicationStoppedNotification();
    virtual ErrorCode PushIncrementalReplicationProgressNotification(CFDictionaryRef details);
    virtual ErrorCode PushIncrementalReplicationStoppedNotification();
    virtual ErrorCode PushGoogleReplicationProgressNotification(CFDictionaryRef details);
    virtual ErrorCode PushGoogleReplicationStoppedNotification();
    virtual ErrorCode PushFontServerReplicationProgressNotification(CFDictionaryRef details);
    virtual ErrorCode PushFontServerReplicationStoppedNotification();
    virtual ErrorCode PushDataChangedNotification();
    virtual ErrorCode PushSmartListsChangedNotification();
    virtual ErrorCode PushOfflineDownloadFinishedNotification();
    virtual ErrorCode PushServicesEnabledNotification(bool enabled);

    // ---- Transport

    /// Serves the panel's socket, if it has one; closes what it listens on when told to.
    virtual ErrorCode SelectSocket(bool closeListeningSocket) = 0;
    /// The port that the panel listens on, 0 for none.
    virtual uint32_t GetSocketPort() = 0;
    /// Sends one JSON text to the panel.
    virtual ErrorCode SendMessage(const std::string& message) = 0;
    /// Sends where the images of fonts are: by CFNumber font ID, a dictionary with kGS_PNGFilenameKey and
    /// kGS_2xPNGFilenameKey.
    virtual ErrorCode SendFontImages(CFDictionaryRef fontPNGs) = 0;

    /// The host quits: from now on requests are dropped and nothing is sent. The files that the panel was
    /// given are removed.
    virtual void Close();

    // ---- Reports that belong to no request

    /// How far a long piece of work has come, under the message ID of that work.
    ErrorCode SendProgress(int messageID, const std::string& text, int stepIndex, int numSteps);
    /// A font could not be activated; `conflictID` is the font that is in its way, 0 when that is not the
    /// reason.
    ErrorCode FontActivationError(uint32_t fontID, uint32_t conflictID);

protected:
    /// An empty JSON object in `document`.
    static JSONValue NewMessage(JSONObject& document);
    static ErrorCode GetMessageFromJSONValue(const JSONValue& root, std::string& message);
    static ErrorCode GetJSONValueFromMessage(const std::string& message, JSONValue& jsonValue,
                                             JSONObject& document);

private:
    using Handler = ErrorCode (MarquellPanel::*)(const JSONValue& jsonValue);

    /// What a smart list is made of, as messages and the font manager's functions carry it.
    struct SmartListQuery {
        std::vector<int32_t> workgroupIDs;
        std::vector<int32_t> setIDs;
        std::vector<int32_t> smartSetIDs;
    };

    static Handler HandlerOf(int64_t operatorID);
    ErrorCode SendReply(const JSONValue& root);
    ErrorCode SendReturnCode(int messageID, ErrorCode returnCode);

    // Requests about the panel and the web fonts.
    ErrorCode IgnoreMessage(const JSONValue& jsonValue);
    ErrorCode StartPanelInfo(const JSONValue& jsonValue);
    ErrorCode IsWindows(const JSONValue& jsonValue);
    ErrorCode GetDimensions(const JSONValue& jsonValue);
    ErrorCode SetDimensions(const JSONValue& jsonValue);
    ErrorCode SetDropDownSelection(const JSONValue& jsonValue);
    ErrorCode GetDropDownSelection(const JSONValue& jsonValue);
    ErrorCode SendHostAppKeyPress(const JSONValue& jsonValue);
    ErrorCode CanAccessGoogleFonts(const JSONValue& jsonValue);
    ErrorCode GoogleEnableWebFonts(const JSONValue& jsonValue);
    ErrorCode IsGoogleWebFontsEnabled(const JSONValue& jsonValue);

    // Requests about fonts.
    ErrorCode DesignActivateFamilyForFont(const JSONValue& jsonValue);
    ErrorCode GetFontPNGs(const JSONValue& jsonValue);
    ErrorCode SetFontVersion(const JSONValue& jsonValue);

    // Requests about smart lists.
    ErrorCode RenameSmartList(const JSONValue& jsonValue);
    ErrorCode RenameSmartListByName(const JSONValue& jsonValue);
    ErrorCode DeleteSmartList(const JSONValue& jsonValue);
    ErrorCode QuerySmartListFonts(const JSONValue& jsonValue);
    ErrorCode SetSmartListQuery(const JSONValue& jsonValue);
    ErrorCode CreateSmartList(const JSONValue& jsonValue);
    ErrorCode SendCreatedSmartList(int32_t smartListID, const std::string& smartListName);
    ErrorCode GetSmartList(const JSONValue& request);
    ErrorCode GetPanelSmartListTree(const JSONValue& request);
    ErrorCode GetAllSmartLists(const JSONValue& jsonValue);
    ErrorCode RequestSmartListFonts(const JSONValue& jsonValue);
    ErrorCode ReleaseFontListFile(const JSONValue& jsonValue);
    ErrorCode GetSmartListFonts(int32_t smartListID);
    ErrorCode SendFontList(CFArrayRef fonts);
    using SmartListQueryFunction = uint32_t (*PluginFunctionTable::*)(PluginFacadeRef, int32_t, CFArrayRef,
                                                                      CFArrayRef, CFArrayRef);
    /// Calls the function with the smart list and the query that the request holds.
    static ErrorCode CallWithQuery(const JSONValue& jsonValue, SmartListQueryFunction function);
    static ErrorCode GetQuery(const JSONValue& jsonValue, SmartListQuery& query);
    static ErrorCode ReadSmartList(const JSONValue& jsonValue, int32_t& smartListID,
                                   CFRef<CFDictionaryRef>& smartList);
    static ErrorCode AddIDs(const char* key, CFArrayRef ids, JSONValue& root);

    // Notifications.
    ErrorCode Queue(int notificationID);
    ErrorCode QueueFontEvent(uint32_t fontID, int notificationID);
    std::set<uint32_t>* FontIDsOf(int notificationID);
    ErrorCode SendNotification(int notificationID);

    bool mIsClosed = false;
    FontListFiles mFontListFiles;
    bool mIsPopping = false;
    std::set<int> mPendingNotifications;
    std::set<uint32_t> mActivatedFonts;
    std::set<uint32_t> mDeactivatedFonts;
    std::set<uint32_t> mMissingFonts;
    std::set<uint32_t> mNonCompliantFonts;
};
