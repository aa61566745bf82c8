// An agent in a user's world, and clients that talk to it as they like.
#pragma once

#include <gmock/gmock.h>

#include "FontRecordKeys.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/Peers.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

namespace fs = std::filesystem;
using testing::HasSubstr;

class GoodClient {
public:
    explicit GoodClient(std::chrono::milliseconds limit = std::chrono::seconds(30)) : mConnection(limit) {
        ExpectToBeServed();
    }
    ErrorCode Call(const char* method, const Json& arguments) {
        return mConnection.Call(method, arguments, result);
    }
    void ExpectToBeServed() { EXPECT_EQ(Call(method::kGetStatus, Json::object()), 0u); }

    Json result;  ///< of the last call

private:
    AgentConnection mConnection;
};

class AgentTest : public testing::Test {
protected:
    AgentTest() { mWorld.StartAgent(); }

    std::string Add(const std::string& postScriptName) {
        const std::string path = mWorld.WriteFont(postScriptName);
        EXPECT_EQ(mWorld.RunForJson({"add", path})["added"].size(), 1u);
        return path;
    }
    int Run(const std::vector<std::string>& words) const { return mWorld.Run(words).status; }
    Json Fonts() const { return mWorld.RunForJson({"list"})["fonts"]; }

    /// Its name has all that names may have, and is too long for the addresses of sockets.
    TestWorld mWorld{"Ein Ordner \u0448\u0440\u0438\u0444\u0442 \u5b57\u4f53 \U0001F600 " +
                     std::string(30, 'x')};
    const Locations mPlaces = Locations::OfThisUser();
};

}  // namespace pellwick::test
