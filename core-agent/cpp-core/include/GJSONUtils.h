// Reading and writing JSON documents (RFC 8259).
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "ErrorCodes.h"

namespace GJSONUtils {

/// Parses UTF-8 text; the document is replaced on success and untouched otherwise. kInvalidParam, after a log
/// line with the text, for what is not JSON.
[[nodiscard]] ErrorCode Parse(const std::string& text, nlohmann::json& document);
/// The same for the bytes up to the first zero byte.
[[nodiscard]] ErrorCode Parse(const std::vector<char>& bytes, nlohmann::json& document);

/// Compact text: no line breaks, non-ASCII characters as UTF-8. kInvalidParam when a string in the document
/// is not well-formed UTF-8; `text` is untouched then.
[[nodiscard]] ErrorCode Serialise(const nlohmann::json& document, std::string& text);

}  // namespace GJSONUtils
