// One panel that the plug-in shows inside the host: it answers the panel's requests and tells it what changes
// in the font manager. How messages travel is left to the class that derives from it.
//
// Main thread. Every message is a JSON object (see PanelMessages.h); failures are reported where they arise.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "FontListFiles.h"
#include "GJSONUtils.h"
#include "HostCall.h"
#include "PanelMessage.h"
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
    /// Nothing pushes this yet: SetEnabled tells panels whether the plug-in is available.
    virtual ErrorCode PushServicesEnabledNotification(bool enabled);
#define DECLARE_FONT_PUSH(what, id, report) virtual ErrorCode Push##what##Notification(uint32_t fontID);
#define DECLARE_PROGRESS_PUSH(what, id, report) \
    virtual ErrorCode Push##what##Notification(CFDictionaryRef details);
#define DECLARE_PUSH(what, id, report) virtual ErrorCode Push##what##Notification();
    PANEL_FONT_NOTIFICATIONS(DECLARE_FONT_PUSH)
    PANEL_PROGRESS_NOTIFICATIONS(DECLARE_PROGRESS_PUSH)
    PANEL_PLAIN_NOTIFICATIONS(DECLARE_PUSH)
#undef DECLARE_FONT_PUSH
#undef DECLARE_PROGRESS_PUSH
#undef DECLARE_PUSH

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

    /// How far a long piece of work has come, under the message ID of that work. Nothing reports it yet: panels start
    /// none of the font manager's tasks.
    ErrorCode SendProgress(int messageID, const std::string& text, int stepIndex, int numSteps);
    /// A font could not be activated; `conflictID` is the font that is in its way, 0 when that is not the
    /// reason.
    ErrorCode FontActivationError(uint32_t fontID, uint32_t conflictID);

protected:
    /// Writes the message and sends it, unless it has failed.
    ErrorCode Send(const PanelMessage& message);

private:
    using Handler = ErrorCode (MarquellPanel::*)(const JSONValue& jsonValue);

    /// What a smart list is made of, as the font manager's functions take it.
    struct SmartListQuery {
        CFRef<CFArrayRef> workgroupIDs;
        CFRef<CFArrayRef> setIDs;
        CFRef<CFArrayRef> smartSetIDs;
    };

    static Handler HandlerOf(int64_t operatorID);
    static ErrorCode GetJSONValueFromMessage(const std::string& message, JSONValue& jsonValue,
                                             JSONObject& document);
    ErrorCode SendReturnCode(const panel_messages::MessageID& id, ErrorCode returnCode);

#define DECLARE_HANDLER(constant, id, handler) ErrorCode handler(const JSONValue& jsonValue);
    PANEL_REQUESTS(DECLARE_HANDLER)
#undef DECLARE_HANDLER
    ErrorCode IgnoreMessage(const JSONValue& jsonValue);

    ErrorCode GetSmartListFonts(int32_t smartListID);
    ErrorCode SendFontList(CFArrayRef fonts);
    using SmartListQueryFunction = uint32_t (*PluginFunctionTable::*)(PluginFacadeRef, int32_t, CFArrayRef,
                                                                      CFArrayRef, CFArrayRef);
    /// Calls the function with the smart list and the query that the request holds.
    static ErrorCode CallWithQuery(const JSONValue& jsonValue, SmartListQueryFunction function);
    static ErrorCode GetQuery(const JSONValue& jsonValue, SmartListQuery& query);
    static ErrorCode ReadSmartList(const JSONValue& jsonValue, int32_t& smartListID,
                                   CFRef<CFDictionaryRef>& smartList);

    // Notifications.
    ErrorCode Queue(const panel_messages::MessageID& notification);
    ErrorCode QueueFontEvent(uint32_t fontID, const panel_messages::MessageID& notification);
    ErrorCode SendNotification(int notificationID);
    /// Has images made that were asked for, for as long as the host's thread may be kept.
    ErrorCode RenderNextFonts();
    ErrorCode RenderFewFonts();

    bool mIsClosed = false;
    FontListFiles mFontListFiles;
    Turn mPopping;
    std::set<int> mPendingNotifications;
    std::set<int> mUnsentNotifications;  ///< those being sent now, and those that could not be
    /// Those pushed, by font notification.
    std::map<int, std::set<uint32_t>> mFontIDs{
#define NO_FONTS(what, id, report) {id, {}},
        PANEL_FONT_NOTIFICATIONS(NO_FONTS)
#undef NO_FONTS
    };
    std::map<int, std::set<uint32_t>> mUnsentFontIDs;  ///< as mUnsentNotifications
    std::deque<uint32_t> mFontsToRender;               ///< each once
};
