#include "MarquellPanel.h"

#include <algorithm>
#include <array>
#include <cinttypes>

#include "FailureReport.h"
#include "PanelMessages.h"
#include "TraceLog.h"

using namespace panel_messages;

namespace {
constexpr char kLogCategory[] = "Miscellaneous";
}

MarquellPanel::Handler MarquellPanel::HandlerOf(int64_t operatorID) {
    struct Request {
        int operatorID;
        Handler handler;
    };
    static constexpr std::array<Request, 28> kRequests{
        {{kDesignActivateFamilyForFont, &MarquellPanel::DesignActivateFamilyForFont},
         {kEnableGoogleFonts, &MarquellPanel::GoogleEnableWebFonts},
         {kAreGoogleFontsEnabled, &MarquellPanel::IsGoogleWebFontsEnabled},
         {kGetDimensions, &MarquellPanel::GetDimensions},
         {kSetDimensions, &MarquellPanel::SetDimensions},
         {kReleaseFontListFile, &MarquellPanel::ReleaseFontListFile},
         {kIsWindows, &MarquellPanel::IsWindows},
         {kSetDropDownSelection, &MarquellPanel::SetDropDownSelection},
         {kGetDropDownSelection, &MarquellPanel::GetDropDownSelection},
         {kGetFontPNG, &MarquellPanel::GetFontPNGs},
         {kRenameSmartList, &MarquellPanel::RenameSmartList},
         {kDeleteSmartList, &MarquellPanel::DeleteSmartList},
         {kQuerySmartListFonts, &MarquellPanel::QuerySmartListFonts},
         {kGetSmartList, &MarquellPanel::GetSmartList},
         {kGetPanelSmartListTree, &MarquellPanel::GetPanelSmartListTree},
         {kGetAllSmartLists, &MarquellPanel::GetAllSmartLists},
         {kCreateSmartList, &MarquellPanel::CreateSmartList},
         {kRequestSmartListFonts, &MarquellPanel::RequestSmartListFonts},
         {kSetSmartListQuery, &MarquellPanel::SetSmartListQuery},
         {kRenameSmartListByName, &MarquellPanel::RenameSmartListByName},
         {kSetFontVersion, &MarquellPanel::SetFontVersion},
         {kIgnored48, &MarquellPanel::IgnoreMessage},
         {kIgnored49, &MarquellPanel::IgnoreMessage},
         {kIgnored51, &MarquellPanel::IgnoreMessage},
         {kCanAccessGoogleFonts, &MarquellPanel::CanAccessGoogleFonts},
         {kIgnored59, &MarquellPanel::IgnoreMessage},
         {kStartPanelInfo, &MarquellPanel::StartPanelInfo},
         {kSendHostAppKeyPress, &MarquellPanel::SendHostAppKeyPress}}};
    const auto found = std::find_if(kRequests.begin(), kRequests.end(),
                                    [&](const Request& each) { return each.operatorID == operatorID; });
    return found != kRequests.end() ? found->handler : nullptr;
}

void MarquellPanel::Close() {
    mIsClosed = true;
    mFontListFiles.ReleaseAll();
}

ErrorCode MarquellPanel::CallMethodForMessage(const std::string& message) {
    static constexpr char kName[] = "MarquellPanel::CallMethodForMessage";
    const TraceScope trace([] { LogMessage(-1, "Exiting %s()", kName); }, "Entering %s()", kName);
    if (mIsClosed) {
        LogMessage(0, "Dropping a request of a panel: the host has quit");
        return CoreErrorCodes::kNotInitialized;
    }
    JSONObject jsonObject;
    JSONValue root;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, root, jsonObject));
    int64_t operatorID = 0;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(root, kMessageIDKey, operatorID));
    const Handler handler = HandlerOf(operatorID);
    if (handler == nullptr) {
        LogMessage(0, "Unknown operator ID from panel '%" PRId64 "'.", operatorID);
        return CoreErrorCodes::kSuccess;
    }
    // What becomes of the request was reported where it arose, and told to the panel where its reply says so.
    static_cast<void>((this->*handler)(root));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetJSONValueFromMessage(const std::string& message, JSONValue& jsonValue,
                                                 JSONObject& document) {
    RETURN_IF_FAILED(GJSONUtils::Parse(document, message, jsonValue));
    if (!jsonValue.is_map()) {
        ReportFailure(kLogCategory, {"!jsonValue.is_map()", __FILE__, __LINE__}, CoreErrorCodes::kError);
        return CoreErrorCodes::kError;
    }
    return CoreErrorCodes::kSuccess;
}

JSONValue MarquellPanel::NewMessage(JSONObject& document) {
    document.load_map();
    return document.root();
}

ErrorCode MarquellPanel::GetMessageFromJSONValue(const JSONValue& root, std::string& message) {
    try {
        message = root.to_json();
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception& exception) {
        GLogger::GetSharedInstance().Log(kLogCategory, GLogger::kError, "Failed to write JSON: %s",
                                         exception.what());
        const ErrorCode err = CoreErrorCodes::kInvalidParam;
        RETURN_IF_FAILED(err);
        return err;
    }
}

ErrorCode MarquellPanel::SendReply(const JSONValue& root) {
    std::string responseMessage;
    RETURN_IF_FAILED(GetMessageFromJSONValue(root, responseMessage));
    const ErrorCode code = SendMessage(responseMessage);
    if (code != CoreErrorCodes::kSuccess)
        ReportFailure(kLogCategory, {"SendMessageW(responseMessage)", __FILE__, __LINE__}, code);
    return code;
}

ErrorCode MarquellPanel::SendReturnCode(int messageID, ErrorCode returnCode) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(messageID, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(returnCode, kReturnCodeKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::SetEnabled(bool enabled) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kEnabled, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(enabled, kIsEnabledKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::SendProgress(int messageID, const std::string& text, int stepIndex, int numSteps) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(messageID, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(text, kTextKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(stepIndex, kStepIndexKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(numSteps, kNumStepsKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::FontActivationError(uint32_t fontID, uint32_t conflictID) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kFontActivationError, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(fontID, kFontIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(conflictID != 0, kIsConflictErrorKey, root, jsonValue));
    if (conflictID != 0)
        RETURN_IF_FAILED(GJSONUtils::SetValueForKey(conflictID, kConflictIDKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::IgnoreMessage(const JSONValue&) {
    return CoreErrorCodes::kSuccess;
}
