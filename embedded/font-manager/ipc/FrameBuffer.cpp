#include "ipc/FrameBuffer.h"

#include "common/FontManagerLimits.h"

namespace pellwick {
namespace {

constexpr size_t kHeaderSize = 4;

size_t PayloadSize(const char* header) {
    size_t size = 0;
    for (size_t index = kHeaderSize; index-- > 0;)
        size = size << 8 | static_cast<unsigned char>(header[index]);
    return size;
}

}  // namespace

std::optional<std::string> MakeFrame(std::string_view payload) {
    if (payload.size() > kMaxMessageSize)
        return std::nullopt;
    std::string frame;
    frame.reserve(kHeaderSize + payload.size());
    for (size_t index = 0; index < kHeaderSize; ++index)
        frame += static_cast<char>(payload.size() >> (8 * index) & 0xFF);
    return frame.append(payload);
}

void FrameBuffer::Append(const char* bytes, size_t size) {
    mBytes.erase(0, mTaken);
    mTaken = 0;
    mBytes.append(bytes, size);
}

std::optional<std::string> FrameBuffer::Next() {
    if (mIsBroken || mBytes.size() - mTaken < kHeaderSize)
        return std::nullopt;
    const size_t size = PayloadSize(mBytes.data() + mTaken);
    mIsBroken = size > kMaxMessageSize;
    if (mIsBroken || mBytes.size() - mTaken - kHeaderSize < size)
        return std::nullopt;
    std::string payload = mBytes.substr(mTaken + kHeaderSize, size);
    mTaken += kHeaderSize + size;
    if (IsEmpty() && mBytes.capacity() > kMaxIdleBuffer) {
        std::string().swap(mBytes);
        mTaken = 0;
    }
    return payload;
}

}  // namespace pellwick
