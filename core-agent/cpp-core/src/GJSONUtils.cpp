#include "GJSONUtils.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "FailureReport.h"
#include "GLogger.h"

namespace {

constexpr char kLogCategory[] = "Miscellaneous";

// Documents are written by recursion. Those of the exports are a few levels deep; this many fit on any stack.
constexpr size_t kDeepestNesting = 512;

/// Without recursion, which is what the limit is about.
bool IsNestedDeeper(const nlohmann::json& document, size_t deepest) {
    std::vector<std::pair<const nlohmann::json*, size_t>> pending{{&document, 0}};
    while (!pending.empty()) {
        const auto [value, depth] = pending.back();
        pending.pop_back();
        if (depth > deepest)
            return true;
        for (const nlohmann::json& child : *value) {
            if (child.is_structured())
                pending.emplace_back(&child, depth + 1);
        }
    }
    return false;
}

ErrorCode ReportInvalid(int line) {
    ReportFailure(kLogCategory, CheckLocation{"CoreErrorCodes::kInvalidParam", __FILE__, line},
                  CoreErrorCodes::kInvalidParam);
    return CoreErrorCodes::kInvalidParam;
}

}  // namespace

/// Fails with the code, under the condition's text, when the condition holds.
#define FAIL_IF(condition, code) \
    implementation::FailIf((condition), (code), CheckLocation{#condition, __FILE__, __LINE__})

namespace GJSONUtils {

ErrorCode Parse(const std::string& text, nlohmann::json& document) {
    try {
        nlohmann::json parsed = nlohmann::json::parse(text);
        document.swap(parsed);
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception&) {
        GLogger::GetSharedInstance().Log(kLogCategory, GLogger::kError,
                                         "Logging string that failed to json parse: %s", text.c_str());
        return ReportInvalid(__LINE__);
    }
}

ErrorCode Parse(const std::vector<char>& bytes, nlohmann::json& document) {
    return Parse(std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0')), document);
}

ErrorCode Serialise(const nlohmann::json& document, std::string& text) {
    if (document.is_structured() && IsNestedDeeper(document, kDeepestNesting))
        return ReportInvalid(__LINE__);
    try {
        text = document.dump();
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception&) {
        return ReportInvalid(__LINE__);
    }
}

ErrorCode Parse(JSONObject& document, const std::string& text, JSONValue& root) {
    GLogger& logger = GLogger::GetSharedInstance();
    logger.Log(kLogCategory, GLogger::kDebug, "Attempting to parse JSON: %s", text.c_str());
    try {
        document.load(text);
        root = document.root();
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception& exception) {
        logger.Log(kLogCategory, GLogger::kError, "Failed to parse JSON: %s", exception.what());
        const ErrorCode err = CoreErrorCodes::kInvalidParam;
        RETURN_IF_FAILED(err);
        return err;
    }
}

ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, JSONValue& value) {
    return FAIL_IF(!jsonValue.find(key, value), CoreErrorCodes::kNotFound);
}

ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, std::string& value) {
    JSONValue valueObject;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, valueObject));
    const ErrorCode code = FAIL_IF(!valueObject.is_string(), CoreErrorCodes::kError);
    if (code == CoreErrorCodes::kSuccess)
        value = valueObject.as_string();
    return code;
}

ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, double& value) {
    JSONValue valueObject;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, valueObject));
    const ErrorCode code = FAIL_IF(!valueObject.is_double(), CoreErrorCodes::kError);
    if (code == CoreErrorCodes::kSuccess)
        value = valueObject.as_double();
    return code;
}

ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, bool& value) {
    JSONValue valueObject;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, valueObject));
    const ErrorCode code = FAIL_IF(!valueObject.is_bool(), CoreErrorCodes::kError);
    if (code == CoreErrorCodes::kSuccess)
        value = valueObject.as_bool();
    return code;
}

ErrorCode GetValueForKey(const JSONValue& jsonValue, const std::string& key, std::vector<JSONValue>& values) {
    JSONValue valueObject;
    RETURN_IF_FAILED(GetValueForKey(jsonValue, key, valueObject));
    const ErrorCode code = FAIL_IF(!valueObject.is_array(), CoreErrorCodes::kError);
    if (code == CoreErrorCodes::kSuccess)
        values = valueObject.as_array();
    return code;
}

ErrorCode SetValueForKey(const std::string& value, const std::string& key, JSONValue& jsonValue,
                         JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_string(key, value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode SetValueForKey(const char* value, const std::string& key, JSONValue& jsonValue,
                         JSONValue& newValue) {
    return SetValueForKey(std::string(value), key, jsonValue, newValue);
}

ErrorCode SetValueForKey(double value, const std::string& key, JSONValue& jsonValue, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_double(key, value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode SetValueForKey(bool value, const std::string& key, JSONValue& jsonValue, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_bool(key, value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddArrayForKey(const std::string& key, JSONValue& jsonValue, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_array(key, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddMapForKey(const std::string& key, JSONValue& jsonValue, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_map(key, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddValueToArray(JSONValue& jsonValue, const std::string& value, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_string(value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddValueToArray(JSONValue& jsonValue, const char* value, JSONValue& newValue) {
    return AddValueToArray(jsonValue, std::string(value), newValue);
}

ErrorCode AddValueToArray(JSONValue& jsonValue, double value, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_double(value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddValueToArray(JSONValue& jsonValue, bool value, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_bool(value, newValue), CoreErrorCodes::kOutOfMemory);
}

ErrorCode AddMapToArray(JSONValue& jsonValue, JSONValue& newValue) {
    return FAIL_IF(!jsonValue.add_map(newValue), CoreErrorCodes::kOutOfMemory);
}

}  // namespace GJSONUtils
