#include "ipc/AgentConnection.h"

#include <nlohmann/json.hpp>

#include "common/Locations.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

bool IsConnectionFailure(ErrorCode code) {
    return code == GIPCClient::kServiceUnavailable || code == GAgentIF::kShutdown;
}

}  // namespace

ErrorCode AgentConnection::Call(const char* method, const Json& arguments, Json& result) {
    if (mFailure != CoreErrorCodes::kSuccess)
        return mFailure;
    ErrorCode code = mIsOpen ? CoreErrorCodes::kSuccess : Open(ClientStream::Clock::now() + mLimit);
    mIsOpen = true;
    if (code != CoreErrorCodes::kSuccess)
        mFailure = code;  // also an agent of another version: it will not change
    else
        code = Exchange(method, arguments, ClientStream::Clock::now() + mLimit, result);
    if (IsConnectionFailure(code))
        mFailure = code;
    return code;
}

ErrorCode AgentConnection::Open(Deadline deadline) {
    if (!mStream.Connect(Locations::OfThisUser().AgentAddress(), deadline))
        return GIPCClient::kServiceUnavailable;
    Json ignored;
    return Exchange(method::kHello, {{"protocol", kProtocolVersion}}, deadline, ignored);
}

ErrorCode AgentConnection::Exchange(const char* method, const Json& arguments, Deadline deadline,
                                    Json& result) {
    const long long id = ++mLastID;
    const ErrorCode code = Send({{"id", id}, {"method", method}, {"args", arguments}}, deadline);
    return code == CoreErrorCodes::kSuccess ? ReceiveAnswer(id, deadline, result) : code;
}

ErrorCode AgentConnection::Send(const Json& request, Deadline deadline) {
    const std::optional<std::string> frame = EncodeMessage(request);
    if (!frame)
        return error_codes::GIPCReceiver::kMessageTooLarge;
    // An agent that has gone may have left its goodbye behind: that is for the receiving end to find out.
    mStream.Send(*frame, deadline);
    return CoreErrorCodes::kSuccess;
}

ErrorCode AgentConnection::ReceiveAnswer(long long id, Deadline deadline, Json& result) {
    for (;;) {
        Json message;
        if (mStream.Receive(message, deadline) != ClientStream::Outcome::kMessage)
            return GIPCClient::kServiceUnavailable;
        if (BoolMember(message, "goodbye"))
            return GAgentIF::kShutdown;
        if (BoolMember(message, "working"))
            deadline = ClientStream::Clock::now() + mLimit;
        if (IntegerMember(message, "id") != id)
            continue;
        result = std::move(message["result"]);
        return static_cast<ErrorCode>(IntegerMember(message, "code"));
    }
}

bool AgentConnection::WaitForNotification(int32_t& type, Json& data) {
    for (;;) {
        Json message;
        if (mStream.Receive(message, Deadline::max()) != ClientStream::Outcome::kMessage)
            return false;
        if (BoolMember(message, "goodbye"))
            return false;
        if (message.contains("notification")) {
            type = static_cast<int32_t>(IntegerMember(message, "notification"));
            data = std::move(message["data"]);
            return true;
        }
    }
}

std::string FailureText(ErrorCode code, const Json& result) {
    const std::string message = StringMember(result, "message");
    return message.empty() ? ErrorCodeToName(code) : message;
}

}  // namespace pellwick
