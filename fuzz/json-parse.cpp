// Both kinds of JSON: whatever the text, no more than a code; and a tree that was read is written as text
// from which the same tree is read.

#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "GJSONUtils.h"

namespace {

void Require(bool holds) {
    if (!holds)
        std::abort();
}

/// Builds what `source` holds anew below `target`, an array, with the functions that messages are built with.
void CopyInto(JSONValue& target, const JSONValue& source) {
    JSONValue copy;
    ErrorCode code = 0;
    if (source.is_string())
        code = GJSONUtils::AddValueToArray(target, source.as_string(), copy);
    else if (source.is_int())
        code = GJSONUtils::AddValueToArray(target, source.as_int64(), copy);
    else if (source.is_bool())
        code = GJSONUtils::AddValueToArray(target, source.as_bool(), copy);
    else if (source.is_double())
        code = GJSONUtils::AddValueToArray(target, source.as_double(), copy);
    else if (source.is_array())
        code = GJSONUtils::AddArrayToArray(target, copy);
    Require(code == 0);
    if (source.is_array()) {
        for (const JSONValue& element : source.as_array())
            CopyInto(copy, element);
    }
}

/// The tree as text; none when it is nested deeper than can be written.
std::optional<std::string> Written(const JSONValue& root) {
    try {
        return root.to_json();
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void CheckBuilding(const JSONValue& root) {
    JSONObject document;
    JSONValue target;
    Require(GJSONUtils::Parse(document, "[]", target) == 0);
    CopyInto(target, root);
    JSONObject readBack;
    JSONValue copy;
    // One level deeper than the text that was read.
    const std::optional<std::string> written = Written(target);
    if (!written)
        return;
    Require(GJSONUtils::Parse(readBack, *written, copy) == 0);
    Require(copy.to_json() == *written);
}

void CheckTree(const std::string& text) {
    JSONObject document;
    JSONValue root;
    if (GJSONUtils::Parse(document, text, root) != 0)
        return;
    const std::optional<std::string> written = Written(root);
    if (!written)
        return;
    JSONObject documentReadBack;
    JSONValue rootReadBack;
    Require(GJSONUtils::Parse(documentReadBack, *written, rootReadBack) == 0);
    Require(rootReadBack.to_json() == *written);
    CheckBuilding(root);
}

void CheckDocument(const std::string& text) {
    nlohmann::json document;
    std::string written;
    if (GJSONUtils::Parse(text, document) != 0)
        return;
    Require(GJSONUtils::Serialise(document, written) == 0);
    nlohmann::json documentReadBack;
    Require(GJSONUtils::Parse(written, documentReadBack) == 0);
    Require(documentReadBack == document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckTree(text);
    CheckDocument(text);
    nlohmann::json document;
    static_cast<void>(GJSONUtils::Parse(std::vector<char>(text.begin(), text.end()), document));
    return 0;
}
