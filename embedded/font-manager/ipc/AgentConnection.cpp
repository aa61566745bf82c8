#include "ipc/AgentConnection.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "common/FontManagerLimits.h"
#include "common/Locations.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

using Outcome = ClientStream::Outcome;

/// No request has this ID.
constexpr long long kGreetingID = 0;
/// Long enough for what has arrived to be taken in.
constexpr std::chrono::milliseconds kNoWait{1};

/// Until when to wait for a sign of life.
AgentConnection::Clock::time_point FirstDeadline(const AgentConnection::Patience& patience) {
    const auto now = AgentConnection::Clock::now();
    return patience.end - now > patience.sign ? now + patience.sign : patience.end;
}

bool IsConnectionFailure(ErrorCode code) {
    return code == GIPCClient::kServiceUnavailable || code == GAgentIF::kShutdown;
}

}  // namespace

ErrorCode AgentConnection::Call(const char* method, const Json& arguments, Json& result) {
    if (mState != State::kOpen) {
        const ErrorCode code = Greet(Json::object(), {mLimit, Clock::time_point::max()});
        if (code != CoreErrorCodes::kSuccess)
            return Fail(code);
    }
    return Exchange({method, arguments, ++mLastID}, {mLimit, Clock::time_point::max()}, result);
}

ErrorCode AgentConnection::Fail(ErrorCode code) {
    if (mState != State::kFailed)
        mFailure = code;
    mState = State::kFailed;
    mStream.Close();  // withdraws what the agent has not begun
    return mFailure;
}

ErrorCode AgentConnection::Greet(const Json& greeting, const Patience& patience) {
    if (mState == State::kFailed)
        return mFailure;
    if (mState == State::kClosed) {
        const auto deadline = FirstDeadline(patience);
        if (!mStream.Connect(Locations::OfThisUser().AgentAddress(), deadline))
            return Fail(GIPCClient::kServiceUnavailable);
        Json arguments = greeting;
        arguments[member::kProtocol] = kProtocolVersion;
        Send({{member::kID, kGreetingID},
              {member::kMethod, method::kHello},
              {member::kArguments, std::move(arguments)}},
             deadline);
        mState = State::kGreeting;
    }
    if (mState == State::kGreeting) {
        Json ignored;
        const ErrorCode code = ReceiveAnswer(kGreetingID, patience, ignored);
        if (code != CoreErrorCodes::kSuccess)
            return mHasTimedOut ? code : Fail(code);  // an agent of another version will not change
        mState = State::kOpen;
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode AgentConnection::Exchange(const Request& request, const Patience& patience, Json& result) {
    if (mState == State::kFailed)
        return mFailure;
    Json message = {{member::kID, request.id},
                    {member::kMethod, request.method},
                    {member::kArguments, request.arguments}};
    if (request.repeats != 0)
        message[member::kRepeats] = request.repeats;
    if (!Send(message, FirstDeadline(patience)))
        return error_codes::GIPCReceiver::kMessageTooLarge;
    const ErrorCode code = ReceiveAnswer(request.id, patience, result);
    return IsConnectionFailure(code) ? Fail(code) : code;
}

void AgentConnection::Acknowledge(long long id) {
    Send({{member::kTaken, id}}, Clock::now() + kNoWait);
}

/// False when the message is larger than one may be. An agent that has gone may have left its goodbye behind:
/// that is for the receiving end to find out.
bool AgentConnection::Send(const Json& message, Clock::time_point deadline) {
    const std::optional<std::string> frame = EncodeMessage(message);
    if (frame)
        mStream.Send(*frame, deadline);
    return frame.has_value();
}

ErrorCode AgentConnection::ReceiveAnswer(long long id, const Patience& patience, Json& result) {
    mHasTimedOut = false;
    auto deadline = FirstDeadline(patience);
    for (;;) {
        Json message;
        const Outcome outcome = mStream.Receive(message, deadline);
        mHasTimedOut = outcome == Outcome::kTimeOver;
        if (outcome != Outcome::kMessage)
            return GIPCClient::kServiceUnavailable;
        if (BoolMember(message, member::kGoodbye))
            return GAgentIF::kShutdown;
        if (BoolMember(message, member::kWorking))  // it is not one that stands still
            deadline = FirstDeadline({std::max(patience.sign, kAnswerLimit), patience.end});
        if (!message.contains(member::kID) || IntegerMember(message, member::kID) != id)
            continue;
        if (BoolMember(message, member::kProvisional))
            Acknowledge(id);
        result = std::move(message[member::kResult]);
        return static_cast<ErrorCode>(IntegerMember(message, member::kCode));
    }
}

bool AgentConnection::IsLost() {
    while (mState == State::kOpen && mStream.HasInput()) {
        Json message;
        const Outcome outcome = mStream.Receive(message, Clock::now() + kNoWait);
        if (outcome == Outcome::kTimeOver)
            break;
        if (outcome == Outcome::kBroken)
            Fail(GIPCClient::kServiceUnavailable);
        else if (BoolMember(message, member::kGoodbye))
            Fail(GAgentIF::kShutdown);
    }
    return mState == State::kFailed;
}

ErrorCode AgentConnection::WaitForNotification(int32_t& type, Json& data) {
    for (;;) {
        Json message;
        if (mStream.Receive(message, Clock::time_point::max()) != Outcome::kMessage)
            return GIPCClient::kServiceUnavailable;
        if (BoolMember(message, member::kGoodbye))
            return GAgentIF::kShutdown;
        if (message.contains(member::kNotification)) {
            type = static_cast<int32_t>(IntegerMember(message, member::kNotification));
            data = std::move(message[member::kData]);
            return CoreErrorCodes::kSuccess;
        }
    }
}

std::string FailureText(ErrorCode code, const Json& result) {
    const std::string message = StringMember(result, member::kMessage);
    return message.empty() ? ErrorCodeToName(code) : message;
}

}  // namespace pellwick
