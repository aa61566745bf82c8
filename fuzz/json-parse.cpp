// Both kinds of JSON: whatever the text, no more than a code; and a tree that was read is written as text
// from which the same tree is read, also when it is built anew.
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "Fuzz.h"
#include "GJSONUtils.h"

namespace {

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
    Require(code == 0, "values can be added");
    if (source.is_array()) {
        for (const JSONValue& element : source.as_array())
            CopyInto(copy, element);
    }
}

/// False where it is nested deeper than can be written.
bool IsReadAsItIsWritten(const JSONValue& root) {
    std::string written;
    try {
        written = root.to_json();
    } catch (const std::runtime_error&) {
        return false;
    }
    JSONObject document;
    JSONValue readBack;
    Require(GJSONUtils::Parse(document, written, readBack) == 0, "what is written can be read");
    Require(readBack.to_json() == written, "it is what was written");
    return true;
}

}  // namespace

std::vector<std::string> Seeds() {
    return {R"([1,-2.5,true,null,"\u5b57",[[]],{"a":{"b":[]}}])"};
}

void TryInput(const std::string& input) {
    JSONObject read;
    JSONObject built;
    JSONValue root;
    JSONValue target;
    if (GJSONUtils::Parse(read, input, root) == 0 && IsReadAsItIsWritten(root)) {
        Require(GJSONUtils::Parse(built, "[]", target) == 0, "an array can be read");
        CopyInto(target, root);
        IsReadAsItIsWritten(target);  // one level deeper
    }
    nlohmann::json document;
    nlohmann::json readBack;
    std::string written;
    if (GJSONUtils::Parse(input, document) == 0) {
        Require(GJSONUtils::Serialise(document, written) == 0, "a document can be written");
        Require(GJSONUtils::Parse(written, readBack) == 0 && readBack == document, "it is read as it is");
    }
    static_cast<void>(GJSONUtils::Parse(std::vector<char>(input.begin(), input.end()), document));
}
