// A local stream whose calls wait until they are done: either end of a connection, for tests that play a
// client or an agent.
#pragma once

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <atomic>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "ipc/Message.h"
#include "platform/LocalStream.h"

namespace pellwick::test {

/// One thread at a time.
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
        for (size_t count = 0; count < size;) {
            size_t piece = 0;
            mStream.Read(asio::buffer(bytes + count, size - count),
                         [&](const asio::error_code&, size_t received) {
                             piece = received;
                             mIsDone = true;
                         });
            Run();
            if (piece == 0)
                return false;
            count += piece;
        }
        return true;
    }
    /// False when the other side closes before the system has taken them.
    bool Write(const std::string& bytes) {
        bool isTaken = false;
        mStream.Write(bytes, [&](const asio::error_code& failure) {
            isTaken = !failure;
            mIsDone = true;
        });
        Run();
        return isTaken;
    }
    /// The next message, of less than 64 KiB; an empty object when the other side closes before it has come.
    Json ReadMessage() {
        std::string header(4, '\0');
        if (!Read(header.data(), header.size()))
            return Json::object();
        std::string payload(
            static_cast<unsigned char>(header[0]) | static_cast<unsigned char>(header[1]) << 8, '\0');
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

}  // namespace pellwick::test
