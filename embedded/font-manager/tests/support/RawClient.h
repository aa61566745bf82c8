// A client that sends the agent whatever it likes.
#pragma once

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <string>

#include "common/Locations.h"
#include "platform/Files.h"

namespace pellwick::test {

/// A client that says what it likes.
class RawClient {
public:
    RawClient() {
        mSocket.connect(asio::local::stream_protocol::endpoint(Locations::OfThisUser().AgentAddress()));
    }

    void Send(const std::string& bytes) {
        asio::error_code ignored;
        asio::write(mSocket, asio::buffer(bytes), ignored);
    }
    /// Whether the agent ends the connection without another word.
    bool IsClosedByAgent() {
        char byte = 0;
        asio::error_code failure;
        return asio::read(mSocket, asio::buffer(&byte, 1), failure) == 0;
    }

private:
    asio::io_context mLoop;
    asio::local::stream_protocol::socket mSocket{mLoop};
};

}  // namespace pellwick::test
