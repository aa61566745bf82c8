#include "platform/LocalStream.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <thread>

#include "TemporaryFolder.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

/// Both ends of a connection, each with a loop of its own.
class LocalStreamTest : public testing::Test {
protected:
    LocalStreamTest() {
        EXPECT_FALSE(mAcceptor.Listen(mAddress).code);
        EXPECT_FALSE(mClient.Connect(mAddress, std::chrono::steady_clock::now() + 10s, mIsCancelled));
        mServerLoop.run_for(10s);
        mServerLoop.restart();
    }

    /// What the server receives until it has that many bytes or the client has closed.
    std::string ReceiveAll(size_t size) {
        std::string received;
        std::array<char, 4096> piece;
        bool isOver = false;
        while (!isOver && received.size() < size) {
            mServer->Read(asio::buffer(piece), [&](const asio::error_code& failure, size_t count) {
                received.append(piece.data(), count);
                isOver = bool(failure);
            });
            mServerLoop.run();
            mServerLoop.restart();
        }
        return received;
    }

    TemporaryFolder mFolder;
    const std::string mAddress = LocalStreamAddresses("Test", "Streams", mFolder / "data").front();
    const std::atomic<bool> mIsCancelled{false};
    asio::io_context mServerLoop;
    asio::io_context mClientLoop;
    std::optional<LocalStream> mServer;
    LocalAcceptor mAcceptor{mServerLoop, [this](LocalStream connection) {
                                mServer = std::move(connection);
                                mAcceptor.Close();
                            }};
    LocalStream mClient{mClientLoop};
};

TEST_F(LocalStreamTest, WritingNeverWaitsForAnEndThatDoesNotRead) {
    constexpr int kPieces = 64;
    int taken = 0;
    for (int count = 0; count < kPieces; ++count) {
        mClient.Write(std::string(100'000, static_cast<char>('0' + count)),
                      [&](const asio::error_code& failure) { taken += failure ? 0 : 1; });
    }
    mClientLoop.run_for(50ms);
    EXPECT_LT(taken, kPieces);
    std::thread reader([this] { EXPECT_EQ(ReceiveAll(kPieces * 100'000).size(), kPieces * 100'000u); });
    mClientLoop.restart();
    mClientLoop.run();
    reader.join();
    EXPECT_EQ(taken, kPieces);
}

TEST(LocalAcceptor, TakesThoseWhoWaitThoughItsLoopStandsStillAndNobodyAfterItsEnd) {
    const TemporaryFolder folder;
    const std::string address = LocalStreamAddresses("Test", "Waiting", folder / "data").front();
    const std::atomic<bool> isCancelled{false};
    for (const char* time : {"first", "second"}) {
        asio::io_context loop;
        int admitted = 0;
        std::vector<LocalStream> clients;
        const auto connect = [&] {
            clients.emplace_back(loop);
            return clients.back().Connect(address, std::chrono::steady_clock::now() + 10s, isCancelled);
        };
        {
            LocalAcceptor acceptor(loop, [&](LocalStream) { ++admitted; });
            ASSERT_FALSE(acceptor.Listen(address).code) << time;
            for (int count = 0; count < 5; ++count)
                EXPECT_FALSE(connect());
            acceptor.AdmitWaiting();
            EXPECT_EQ(admitted, 5);
            loop.poll();
            EXPECT_EQ(admitted, 5) << "each once";
        }
        loop.poll();
        EXPECT_TRUE(connect());
    }
}

}  // namespace
}  // namespace platform
