#include "GJSONUtils.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "FailureReport.h"

namespace {

constexpr char kLogCategory[] = "Miscellaneous";

ErrorCode ReportInvalid(int line) {
    ReportFailure(kLogCategory, CheckLocation{"CoreErrorCodes::kInvalidParam", __FILE__, line},
                  CoreErrorCodes::kInvalidParam);
    return CoreErrorCodes::kInvalidParam;
}

}  // namespace

ErrorCode GJSONUtils::Parse(const std::string& text, nlohmann::json& document) {
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

ErrorCode GJSONUtils::Parse(const std::vector<char>& bytes, nlohmann::json& document) {
    return Parse(std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0')), document);
}

ErrorCode GJSONUtils::Serialise(const nlohmann::json& document, std::string& text) {
    try {
        text = document.dump();
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception&) {
        return ReportInvalid(__LINE__);
    }
}
