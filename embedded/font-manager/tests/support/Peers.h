// Either end of a connection to the agent, for tests that play a client or an agent.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "common/Locations.h"
#include "ipc/Message.h"
#include "platform/LocalStream.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

/// A local stream whose calls wait until they are done. One thread at a time.
class WaitingStream {
public:
    void Connect(const std::string& address) {
        const std::atomic<bool> isCancelled{false};
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        if (mStream.Connect(address, deadline, isCancelled))
            throw std::runtime_error("nobody listens at " + address);
    }
    void Listen(const std::string& address) {
        mAcceptor.emplace(mLoop, [this](platform::LocalStream connection) {
            mStream = std::move(connection);
            mIsDone = true;
        });
        if (const platform::SystemError error = mAcceptor->Listen(address))
            throw std::runtime_error(address + ": " + platform::SystemErrorText(error));
    }
    /// After Listen: waits for the first who comes.
    void Accept() { Run(); }

    /// False when the other side closes before all have come.
    bool Read(char* bytes, size_t size) {
        size_t piece = 1;
        for (; size > 0 && piece != 0; bytes += piece, size -= piece) {
            mStream.Read(asio::buffer(bytes, size), [&](const asio::error_code&, size_t received) {
                piece = received;
                mIsDone = true;
            });
            Run();
        }
        return size == 0;
    }
    void Write(const std::string& bytes) {
        mStream.Write(bytes, [this](const asio::error_code&) { mIsDone = true; });
        Run();
    }
    void Send(const Json& message) { Write(*EncodeMessage(message)); }
    /// The next message, of less than 64 KiB; an empty object when the other side closes before it has come.
    Json ReadMessage() {
        unsigned char header[4];
        if (!Read(reinterpret_cast<char*>(header), sizeof header))
            return Json::object();
        std::string payload(header[0] | header[1] << 8, '\0');
        Read(payload.data(), payload.size());
        return DecodeMessage(payload).value_or(Json::object());
    }
    void Close() { mStream.Close(); }

private:
    void Run() {
        mLoop.restart();
        while (!mIsDone && mLoop.run_one() > 0) {
        }
        mIsDone = false;
    }

    asio::io_context mLoop;
    platform::LocalStream mStream{mLoop};
    std::optional<platform::LocalAcceptor> mAcceptor;
    bool mIsDone = false;
};

class RawClient : public WaitingStream {
public:
    RawClient() { Connect(Locations::OfThisUser().AgentAddress()); }
    /// Whether the agent ends the connection without another word.
    bool IsClosedByAgent() {
        char byte = 0;
        return !Read(&byte, 1);
    }
};

}  // namespace pellwick::test
