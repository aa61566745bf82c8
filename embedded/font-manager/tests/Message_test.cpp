#include "ipc/Message.h"

#include "common/FontManagerLimits.h"
#include "ipc/FrameBuffer.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

using namespace std::string_literals;

std::string Payload(const Json& message) {
    return EncodeMessage(message)->substr(4);
}

TEST(FrameBuffer, CutsAStreamThatArrivesInPiecesUntilAFrameIsTooLarge) {
    const std::string stream = *MakeFrame("first") + *MakeFrame("") + *MakeFrame(std::string(300, 'x')) +
                               std::string("\x01\x00\x00\x01", 4);  // one byte more than the limit
    for (const size_t pieceSize : {size_t{1}, size_t{3}, size_t{7}, stream.size()}) {
        FrameBuffer buffer;
        std::vector<std::string> payloads;
        for (size_t at = 0; at < stream.size(); at += pieceSize) {
            const std::string piece = stream.substr(at, pieceSize);
            buffer.Append(piece.data(), piece.size());
            while (auto payload = buffer.Next())
                payloads.push_back(*payload);
        }
        EXPECT_EQ(payloads, (std::vector<std::string>{"first", "", std::string(300, 'x')})) << pieceSize;
        EXPECT_TRUE(buffer.IsBroken());
    }
    EXPECT_FALSE(MakeFrame(std::string(kMaxMessageSize + 1, 'x')));
}

TEST(Message, TakesNothingButWholeObjects) {
    const Json message = {{"id", 7}, {"args", {{"name", "\xD0\xB0"}, {"list", {1, -2, 2.5, true, nullptr}}}}};
    const std::string payload = Payload(message);
    EXPECT_EQ(DecodeMessage(payload), message);
    for (size_t size = 0; size < payload.size(); ++size)
        EXPECT_FALSE(DecodeMessage(payload.substr(0, size))) << size;
    const std::string nesting = std::string("\x81\xA1") + "a" + std::string(1000000, '\x91');
    for (const std::string& none : {payload + "x", Payload({1, 2}), "\xDF\xFF\xFF\xFF\xFF"s, nesting})
        EXPECT_FALSE(DecodeMessage(none)) << none.substr(0, 20);
    EXPECT_EQ(IntegerMember({{"number", "x"}}, "number", -5), -5);
    EXPECT_EQ(StringMember({{"text", 1}}, "text"), "");
    EXPECT_TRUE(ArrayMember({{"array", {{"a", 1}}}}, "array").empty());
    EXPECT_EQ(IntegerMember(Json(3), "number"), 0);
}

TEST(Message, RefusesMoreValuesThanMemoryIsFor) {
    // An object of one member, an array of so many elements of any kind.
    const auto isTaken = [](const std::string& element, size_t count) {
        std::string bytes = std::string("\x81\xA1") + "a\xDD";
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(count >> shift & 0xFF);
        for (size_t index = 0; index < count; ++index)
            bytes += element;
        return DecodeMessage(bytes).has_value();
    };
    const size_t most = kMaxMessageValues - 2;  // the object and the array count as well
    for (const std::string& value : {"\x90"s, "\x80"s, "\xC3"s, "\x01"s, "\xA0"s, "\xCA\0\0\0\0"s, "\xC4\0"s})
        EXPECT_FALSE(isTaken(value, most + 1)) << int(value[0]);
    EXPECT_TRUE(isTaken("\x90", most));
    EXPECT_FALSE(isTaken("\x81\xA0\x90", kMaxMessageValues / 2));
    // What would not be taken is not sent.
    EXPECT_TRUE(EncodeMessage({{"a", Json::array_t(most, 1)}}));
    EXPECT_FALSE(EncodeMessage({{"a", Json::array_t(most + 1, 1)}}));
}

}  // namespace
}  // namespace pellwick::test
