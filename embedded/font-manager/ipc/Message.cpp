#include "ipc/Message.h"

#include <nlohmann/json.hpp>

#include "common/FontManagerLimits.h"
#include "ipc/FrameBuffer.h"

namespace pellwick {
namespace {

/// Builds the value and gives up where the nesting gets too deep for the parser's recursion, or the values
/// too many for the memory.
class BoundedBuilder : public nlohmann::detail::json_sax_dom_parser<Json> {
    using Base = nlohmann::detail::json_sax_dom_parser<Json>;

public:
    explicit BoundedBuilder(Json& value) : Base(value, false) {}

    bool null() { return Count() && Base::null(); }
    bool boolean(bool value) { return Count() && Base::boolean(value); }
    bool number_integer(Json::number_integer_t value) { return Count() && Base::number_integer(value); }
    bool number_unsigned(Json::number_unsigned_t value) { return Count() && Base::number_unsigned(value); }
    bool number_float(Json::number_float_t value, const std::string& text) {
        return Count() && Base::number_float(value, text);
    }
    bool string(std::string& value) { return Count() && Base::string(value); }
    bool binary(Json::binary_t& value) { return Count() && Base::binary(value); }
    bool start_object(size_t size) {
        return Count() && ++mDepth <= kMaxMessageDepth && Base::start_object(size);
    }
    bool start_array(size_t size) {
        return Count() && ++mDepth <= kMaxMessageDepth && Base::start_array(size);
    }
    bool end_object() {
        --mDepth;
        return Base::end_object();
    }
    bool end_array() {
        --mDepth;
        return Base::end_array();
    }

private:
    bool Count() { return ++mValues <= kMaxMessageValues; }

    int mDepth = 0;
    size_t mValues = 0;
};

/// The values in it, itself included, as the builder counts them.
size_t CountValues(const Json& value) {
    size_t count = 1;
    if (value.is_structured()) {
        for (const Json& part : value)
            count += CountValues(part);
    }
    return count;
}

const Json* Member(const Json& object, const char* key) {
    if (!object.is_object())
        return nullptr;
    const auto found = object.find(key);
    return found != object.end() ? &*found : nullptr;
}

}  // namespace

std::optional<std::string> EncodeMessage(const Json& message) {
    std::string payload;
    Json::to_msgpack(message, nlohmann::detail::output_adapter<char>(payload));
    // A value has one byte at least.
    if (payload.size() > kMaxMessageValues && CountValues(message) > kMaxMessageValues)
        return std::nullopt;
    return MakeFrame(payload);
}

size_t MessageSize(const Json& value) {
    std::string bytes;
    Json::to_msgpack(value, nlohmann::detail::output_adapter<char>(bytes));
    return bytes.size();
}

void Dispose(Json& value) noexcept {
    if (!value.is_structured())
        return;
    for (Json& part : value)
        Dispose(part);
    value.clear();
}

std::optional<Json> DecodeMessage(std::string_view payload) {
    Json message;
    ScopedDisposal disposal(message);
    BoundedBuilder builder(message);
    try {
        if (!Json::sax_parse(payload.begin(), payload.end(), &builder, Json::input_format_t::msgpack) ||
            !message.is_object())
            return std::nullopt;
    } catch (const Json::exception&) {  // an announced size that no container can have
        return std::nullopt;
    }
    disposal.Keep();
    return message;
}

std::string StringMember(const Json& object, const char* key) {
    const Json* member = Member(object, key);
    return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

long long IntegerMember(const Json& object, const char* key, long long missing) {
    const Json* member = Member(object, key);
    return member != nullptr && member->is_number_integer() ? member->get<long long>() : missing;
}

bool BoolMember(const Json& object, const char* key) {
    const Json* member = Member(object, key);
    return member != nullptr && member->is_boolean() && member->get<bool>();
}

const Json& ArrayMember(const Json& object, const char* key) {
    static const Json* const empty = new Json(Json::array());
    const Json* member = Member(object, key);
    return member != nullptr && member->is_array() ? *member : *empty;
}

const Json& ObjectMember(const Json& object, const char* key) {
    static const Json* const empty = new Json(Json::object());
    const Json* member = Member(object, key);
    return member != nullptr && member->is_object() ? *member : *empty;
}

bool HoldsOnly(const Json& object, const MemberNames& names) {
    for (const auto& [name, value] : object.items()) {
        if (!names.Hold(name))
            return false;
    }
    return true;
}

}  // namespace pellwick
