// Reading and writing JSON (RFC 8259): documents as a whole, which cross the exported interface, and trees of
// nodes, which panel messages are read from and built with. Every failure is reported where it arises.
#pragma once

#include <concepts>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

#include "FailureReport.h"
#include "JSONValue.h"

namespace GJSONUtils {

// ---- Documents

/// Parses UTF-8 text; the document is replaced on success and untouched otherwise. kInvalidParam, after a log
/// line with the text, for what is not JSON.
[[nodiscard]] ErrorCode Parse(const std::string& text, nlohmann::json& document);
/// The same for the bytes up to the first zero byte.
[[nodiscard]] ErrorCode Parse(const std::vector<char>& bytes, nlohmann::json& document);

/// Compact text: no line breaks, non-ASCII characters as UTF-8. kInvalidParam when a string in the document
/// is not well-formed UTF-8, or when it is nested deeper than 512 levels; `text` is untouched then.
[[nodiscard]] ErrorCode Serialise(const nlohmann::json& document, std::string& text);

// ---- Trees. A JSONValue that is made or found is a handle into the tree that it was made or found in.

template <class Value>
concept Integer = std::integral<Value> && !std::same_as<Value, bool> && !std::same_as<Value, uint64_t>;

/// Loads `text` into `document` and answers with its root. kInvalidParam, with `root` untouched, for what is
/// not JSON, for the bare acknowledgement "OK" too.
[[nodiscard]] ErrorCode Parse(JSONObject& document, const std::string& text, JSONValue& root);

// A member of the object `jsonValue`. kNotFound when it has none of that key, kError when the member is of
// another kind; the result is untouched then.
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, JSONValue& value);
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key,
                                       std::string& value);
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, double& value);
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, bool& value);
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key,
                                       std::vector<JSONValue>& values);
/// An integer that `value` cannot hold is of another kind.
template <Integer Value>
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, Value& value);
/// All elements have to be such integers.
template <Integer Value>
[[nodiscard]] ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key,
                                       std::vector<Value>& values);

// Adds a member to the object `jsonValue`; `newValue` is what was added. kOutOfMemory, with the object as it
// was, when that cannot be done.
[[nodiscard]] ErrorCode SetValueForKey(const std::string& value, const std::string& key, JSONValue& jsonValue,
                                       JSONValue& newValue);
[[nodiscard]] ErrorCode SetValueForKey(const char* value, const std::string& key, JSONValue& jsonValue,
                                       JSONValue& newValue);
[[nodiscard]] ErrorCode SetValueForKey(double value, const std::string& key, JSONValue& jsonValue,
                                       JSONValue& newValue);
[[nodiscard]] ErrorCode SetValueForKey(bool value, const std::string& key, JSONValue& jsonValue,
                                       JSONValue& newValue);
template <Integer Value>
[[nodiscard]] ErrorCode SetValueForKey(Value value, const std::string& key, JSONValue& jsonValue,
                                       JSONValue& newValue);
[[nodiscard]] ErrorCode AddArrayForKey(const std::string& key, JSONValue& jsonValue, JSONValue& newValue);
[[nodiscard]] ErrorCode AddMapForKey(const std::string& key, JSONValue& jsonValue, JSONValue& newValue);

// The same for an element at the end of the array `jsonValue`.
[[nodiscard]] ErrorCode AddValueToArray(JSONValue& jsonValue, const std::string& value, JSONValue& newValue);
[[nodiscard]] ErrorCode AddValueToArray(JSONValue& jsonValue, const char* value, JSONValue& newValue);
[[nodiscard]] ErrorCode AddValueToArray(JSONValue& jsonValue, double value, JSONValue& newValue);
[[nodiscard]] ErrorCode AddValueToArray(JSONValue& jsonValue, bool value, JSONValue& newValue);
template <Integer Value>
[[nodiscard]] ErrorCode AddValueToArray(JSONValue& jsonValue, Value value, JSONValue& newValue);
[[nodiscard]] ErrorCode AddMapToArray(JSONValue& jsonValue, JSONValue& newValue);

}  // namespace GJSONUtils

// ---- Implementation of the templates

namespace GJSONUtils::implementation {

inline constexpr char kLogCategory[] = "Miscellaneous";

/// Reports the failure and answers with its code; success when it did not fail.
inline ErrorCode FailIf(bool hasFailed, ErrorCode code, const CheckLocation& location) {
    if (!hasFailed)
        return CoreErrorCodes::kSuccess;
    ReportFailure(kLogCategory, location, code);
    return code;
}

/// An integer that `Value` can hold.
template <class Value>
bool Holds(const JSONValue& valueObject) {
    return valueObject.is_int() && std::in_range<Value>(valueObject.as_int64());
}

}  // namespace GJSONUtils::implementation

template <GJSONUtils::Integer Value>
ErrorCode GJSONUtils::GetValueForKey(const JSONValue& jsonValue, const std::string& key, Value& value) {
    using implementation::kLogCategory;
    JSONValue valueObject;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, valueObject));
    const ErrorCode code =
        implementation::FailIf(!implementation::Holds<Value>(valueObject), CoreErrorCodes::kError,
                               {"!valueObject.is_int()", __FILE__, __LINE__});
    if (code == CoreErrorCodes::kSuccess)
        value = static_cast<Value>(valueObject.as_int64());
    return code;
}

template <GJSONUtils::Integer Value>
ErrorCode GJSONUtils::GetValueForKey(const JSONValue& jsonValue, const std::string& key,
                                     std::vector<Value>& values) {
    using implementation::kLogCategory;
    std::vector<JSONValue> elements;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, elements));
    std::vector<Value> read;
    read.reserve(elements.size());
    for (const JSONValue& valueObject : elements) {
        const ErrorCode code =
            implementation::FailIf(!implementation::Holds<Value>(valueObject), CoreErrorCodes::kError,
                                   {"!valueObject.is_int()", __FILE__, __LINE__});
        if (code != CoreErrorCodes::kSuccess)
            return code;
        read.push_back(static_cast<Value>(valueObject.as_int64()));
    }
    values.swap(read);
    return CoreErrorCodes::kSuccess;
}

template <GJSONUtils::Integer Value>
ErrorCode GJSONUtils::SetValueForKey(Value value, const std::string& key, JSONValue& jsonValue,
                                     JSONValue& newValue) {
    return implementation::FailIf(!jsonValue.add_int64(key, static_cast<int64_t>(value), newValue),
                                  CoreErrorCodes::kOutOfMemory,
                                  {"!jsonValue.add_int64(key, value, newValue)", __FILE__, __LINE__});
}

template <GJSONUtils::Integer Value>
ErrorCode GJSONUtils::AddValueToArray(JSONValue& jsonValue, Value value, JSONValue& newValue) {
    return implementation::FailIf(!jsonValue.add_int64(static_cast<int64_t>(value), newValue),
                                  CoreErrorCodes::kOutOfMemory,
                                  {"!jsonValue.add_int64(value, newValue)", __FILE__, __LINE__});
}
