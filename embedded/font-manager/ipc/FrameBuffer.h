// Cuts a stream of bytes into frames.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pellwick {

/// The payload with its size in front. Nothing when it is larger than a message may be.
std::optional<std::string> MakeFrame(std::string_view payload);

class FrameBuffer {
public:
    void Append(const char* bytes, size_t size);

    /// Takes the next whole frame's payload out; nothing when more bytes are needed or the stream is broken.
    std::optional<std::string> Next();
    /// The memory that it holds, in bytes.
    /// Whether nothing is left in it.
    bool IsEmpty() const { return mTaken == mBytes.size(); }
    /// Whether a frame was announced that is larger than a message may be; nothing follows it.
    bool IsBroken() const { return mIsBroken; }

private:
    std::string mBytes;
    size_t mTaken = 0;  ///< bytes of the front that are done with
    bool mIsBroken = false;
};

}  // namespace pellwick
