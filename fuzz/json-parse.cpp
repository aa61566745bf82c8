// Both kinds of JSON: whatever the text, no more than a code; and what was read is written as text from which the
// same is read.
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "Fuzz.h"
#include "GJSONUtils.h"

namespace {

void CheckWriting(const JSONValue& root) {
    std::string written;
    try {
        written = root.to_json();
    } catch (const std::runtime_error&) {
        return;  // nested deeper than can be written
    }
    JSONObject document;
    JSONValue readBack;
    Require(GJSONUtils::Parse(document, written, readBack) == 0, "what is written can be read");
    Require(readBack.to_json() == written, "it is what was written");
}

}  // namespace

std::vector<std::string> Seeds() {
    return {R"([1,-2.5,true,null,"\u5b57",[[]],{"a":{"b":[]}}])"};
}

void TryInput(const std::string& input) {
    JSONObject read;
    JSONValue root;
    if (GJSONUtils::Parse(read, input, root) == 0)
        CheckWriting(root);
    nlohmann::json document;
    nlohmann::json readBack;
    std::string written;
    if (GJSONUtils::Parse(input, document) == 0) {
        Require(GJSONUtils::Serialise(document, written) == 0, "a document can be written");
        Require(GJSONUtils::Parse(written, readBack) == 0 && readBack == document, "it is read as it is");
    }
}
