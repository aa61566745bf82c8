#include "agent/AgentAddress.h"

namespace pellwick {

AgentAddress::AgentAddress(asio::io_context& loop, const Locations& locations, LogFile& log,
                           platform::LocalAcceptor::Handler handler)
    : mLoop(loop), mLocations(locations), mLog(log), mHandler(std::move(handler)) {}

AgentAddress::~AgentAddress() {
    if (IsWrittenDown())  // else it is a successor's
        platform::RemoveFile(mLocations.addressPath);
}

bool AgentAddress::Listen(std::string& problem) {
    for (const std::string& address :
         platform::LocalStreamAddresses("Vantorix", "Pellwick", mLocations.dataFolder)) {
        if (ListenAt(address))
            return WriteDown(problem);
    }
    problem = "there is no address where the agent can listen; Pellwick.log in " + mLocations.logFolder +
              " says why";
    return false;
}

void AgentAddress::Check() {
    std::string problem;
    const bool isGone = !mAcceptor->IsInPlace();
    const bool isFound = isGone ? Listen(problem) : IsWrittenDown() || WriteDown(problem);
    if (isGone && isFound)
        mLog.WriteLine("the address was gone; the agent listens at " + mText + " now");
    if (!isFound && problem != mProblem)
        mLog.WriteLine(problem);
    mProblem = problem;
}

bool AgentAddress::ListenAt(const std::string& address) {
    auto acceptor = std::make_unique<platform::LocalAcceptor>(mLoop, mHandler);
    if (const platform::SystemError error = acceptor->Listen(address)) {
        if (mProblem.empty())
            mLog.WriteLine("cannot listen at " + address + ": " + platform::SystemErrorText(error));
        return false;
    }
    if (mAcceptor)
        mAcceptor->AdmitWaiting();
    mAcceptor = std::move(acceptor);
    mText = address;
    return true;
}

bool AgentAddress::WriteDown(std::string& problem) {
    const std::string& path = mLocations.addressPath;
    platform::SystemError error = platform::WriteWholeFile(path, mText);
    if (!error)
        error = platform::IdentifyFile(path, mFile);
    if (error)
        problem = platform::WriteFailureText(path, error);
    return !error;
}

bool AgentAddress::IsWrittenDown() const {
    platform::FileIdentity found;
    return !mText.empty() && !platform::IdentifyFile(mLocations.addressPath, found) && found == mFile;
}

}  // namespace pellwick
