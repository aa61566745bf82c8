// Messages between JSON values and frames.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "common/Protocol.h"

namespace pellwick {

using Json = nlohmann::json;

/// The message as a frame; nothing when it is larger, or holds more values, than a message may.
std::optional<std::string> EncodeMessage(const Json& message);

/// How many bytes the value has in a message.
size_t MessageSize(const Json& value);

/// Destroys the parts of a value that may be large. The value's own way takes memory for a list of them, and
/// what is destroyed since there is no memory must not fail for lack of it.
void Dispose(Json& value) noexcept;

/// Does so at the end of its scope, unless it is told to keep the value.
class ScopedDisposal {
public:
    explicit ScopedDisposal(Json& value) : mValue(&value) {}
    ~ScopedDisposal() {
        if (mValue != nullptr)
            Dispose(*mValue);
    }
    ScopedDisposal(const ScopedDisposal&) = delete;
    ScopedDisposal& operator=(const ScopedDisposal&) = delete;
    void Keep() { mValue = nullptr; }

private:
    Json* mValue;
};

/// The message in a frame's payload; nothing when the payload is not a MessagePack object, goes on after it, is
/// nested too deeply or holds more than kMaxMessageValues. Any bytes are safe.
std::optional<Json> DecodeMessage(std::string_view payload);

// Members that may be missing or of another type, whoever sent them.

std::string StringMember(const Json& object, const char* key);
long long IntegerMember(const Json& object, const char* key, long long missing = 0);
bool BoolMember(const Json& object, const char* key);
/// An empty array when there is none.
const Json& ArrayMember(const Json& object, const char* key);
/// An empty object when there is none.
const Json& ObjectMember(const Json& object, const char* key);

/// Whether the object has no members but these.
bool HoldsOnly(const Json& object, const MemberNames& names);

}  // namespace pellwick
