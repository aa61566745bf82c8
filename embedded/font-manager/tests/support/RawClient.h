// A client that sends the agent whatever it likes.
#pragma once

#include <string>

#include "common/Locations.h"
#include "tests/support/WaitingStream.h"

namespace pellwick::test {

/// A client that says what it likes.
class RawClient {
public:
    RawClient() { mStream.Connect(Locations::OfThisUser().AgentAddress()); }

    void Send(const std::string& bytes) { mStream.Write(bytes); }
    /// Whether the agent ends the connection without another word.
    bool IsClosedByAgent() {
        char byte = 0;
        return !mStream.Read(&byte, 1);
    }

private:
    WaitingStream mStream;
};

}  // namespace pellwick::test
