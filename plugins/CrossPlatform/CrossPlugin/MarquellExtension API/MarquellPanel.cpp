#include "MarquellPanel.h"

#include <algorithm>
#include <cinttypes>
#include <iterator>

#include "PanelLog.h"
#include "PanelMessage.h"
#include "TraceLog.h"

using namespace panel_messages;

MarquellPanel::Handler MarquellPanel::HandlerOf(int64_t operatorID) {
    switch (operatorID) {
#define HANDLER_CASE(constant, id, handler) \
    case id:                                \
        return &MarquellPanel::handler;
        PANEL_REQUESTS(HANDLER_CASE)
#undef HANDLER_CASE
        default:
            break;
    }
    const bool isIgnored = std::find(std::begin(kIgnoredRequests), std::end(kIgnoredRequests), operatorID) !=
                           std::end(kIgnoredRequests);
    return isIgnored ? &MarquellPanel::IgnoreMessage : nullptr;
}

void MarquellPanel::Close() {
    mIsClosed = true;
    mFontsToRender.clear();
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

ErrorCode MarquellPanel::Send(const PanelMessage& message) {
    if (mIsClosed)
        return CoreErrorCodes::kSuccess;  // nobody is there to be told
    std::string responseMessage;
    if (const ErrorCode code = message.Write(responseMessage))
        return code;
    const ErrorCode code = SendMessage(responseMessage);
    if (code != CoreErrorCodes::kSuccess)
        ReportFailure(kLogCategory, {"SendMessageW(responseMessage)", __FILE__, __LINE__}, code);
    return code;
}

ErrorCode MarquellPanel::SendReturnCode(const MessageID& id, ErrorCode returnCode) {
    return Send(PanelMessage(id).Set(kReturnCodeKey, returnCode));
}

ErrorCode MarquellPanel::SetEnabled(bool enabled) {
    return Send(PanelMessage(kEnabled).Set(kIsEnabledKey, enabled));
}

ErrorCode MarquellPanel::SendProgress(int messageID, const std::string& text, int stepIndex, int numSteps) {
    return Send(PanelMessage(MessageID{messageID, "messageID"})
                    .Set(kTextKey, text)
                    .Set(kStepIndexKey, stepIndex)
                    .Set(kNumStepsKey, numSteps));
}

ErrorCode MarquellPanel::FontActivationError(uint32_t fontID, uint32_t conflictID) {
    PanelMessage message(kFontActivationError);
    message.Set(kFontIDKey, fontID).Set(kIsConflictErrorKey, conflictID != 0);
    if (conflictID != 0)
        message.Set(kConflictIDKey, conflictID);
    return Send(message);
}

ErrorCode MarquellPanel::IgnoreMessage(const JSONValue&) {
    return CoreErrorCodes::kSuccess;
}
