#include "JSONValue.h"

#include <yajl/yajl_gen.h>
#include <yajl/yajl_tree.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "StringConversion.h"

namespace {

constexpr size_t kParseErrorSize = 1024;

// YAJL takes a tree apart by recursion. Panel messages are three levels deep; this many fit on any stack.
constexpr int kDeepestNesting = 512;

void FreeTree(yajl_val node) {
    yajl_tree_free(node);
}

using OwnedNode = std::unique_ptr<yajl_val_s, decltype(&FreeTree)>;

/// With the allocator that YAJL frees its trees with; null when memory runs out.
OwnedNode NewNode(yajl_type type) {
    OwnedNode node(static_cast<yajl_val>(std::calloc(1, sizeof(yajl_val_s))), &FreeTree);
    if (node)
        node->type = type;
    return node;
}

/// YAJL's texts end with a zero byte; one that stands within a text becomes U+FFFD.
char* NewText(std::string text) {
    for (size_t zero = 0; (zero = text.find('\0', zero)) != std::string::npos;)
        text.replace(zero, 1, "\uFFFD");
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy != nullptr)
        std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

OwnedNode StringNode(const std::string& value) {
    OwnedNode node = NewNode(yajl_t_string);
    if (node && (node->u.string = NewText(value)) == nullptr)
        node.reset();
    return node;
}

template <class Number>
std::string NumberText(Number value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

OwnedNode NumberNode(const std::string& text) {
    OwnedNode node = NewNode(yajl_t_number);
    if (node && (node->u.number.r = NewText(text)) == nullptr)
        node.reset();
    return node;
}

OwnedNode IntegerNode(int64_t value) {
    OwnedNode node = NumberNode(std::to_string(value));
    if (node) {
        node->u.number.i = value;
        node->u.number.d = static_cast<double>(value);
        node->u.number.flags = YAJL_NUMBER_INT_VALID | YAJL_NUMBER_DOUBLE_VALID;
    }
    return node;
}

OwnedNode DoubleNode(double value) {
    OwnedNode node = NumberNode(NumberText(value));
    if (node) {
        node->u.number.d = value;
        node->u.number.flags = YAJL_NUMBER_DOUBLE_VALID;
    }
    return node;
}

OwnedNode BoolNode(bool value) {
    return NewNode(value ? yajl_t_true : yajl_t_false);
}

/// Room for one element more; false, with the list as it was, when memory runs out.
template <class Element>
bool Grow(Element*& elements, size_t count) {
    void* grown = std::realloc(static_cast<void*>(elements), (count + 1) * sizeof(Element));
    if (grown == nullptr)
        return false;
    elements = static_cast<Element*>(grown);
    return true;
}

/// The code unit of an escape whose backslash stands there; nothing for other escapes.
std::optional<uint32_t> EscapedUnit(std::string_view text, size_t at) {
    constexpr size_t kDigits = 4;
    if (text.substr(at, 2) != "\\u" || text.size() < at + 2 + kDigits)
        return std::nullopt;
    uint32_t unit = 0;
    const char* const digits = text.data() + at + 2;
    const auto [end, error] = std::from_chars(digits, digits + kDigits, unit, 16);
    return error == std::errc() && end == digits + kDigits ? std::optional(unit) : std::nullopt;
}

bool IsBetween(std::optional<uint32_t> unit, uint32_t first, uint32_t last) {
    return unit && *unit >= first && *unit <= last;
}

/// Passes over the escape whose backslash stands there. False for a zero character, which would end the text,
/// and for half of a surrogate pair, which is not a character.
bool SkipEscape(std::string_view text, size_t& at) {
    const auto unit = EscapedUnit(text, at);
    at += unit ? 6 : 2;
    if (IsBetween(unit, 0xD800, 0xDBFF)) {
        const bool isPair = IsBetween(EscapedUnit(text, at), 0xDC00, 0xDFFF);
        at += 6;
        return isPair;
    }
    return unit != 0 && !IsBetween(unit, 0xDC00, 0xDFFF);
}

/// Why a text is not even shown to YAJL; null when nothing speaks against it. YAJL would take comments, which
/// JSON does not have, and brackets in which could not be told from others here; and it would take characters
/// that Unicode does not have.
const char* ReasonToRefuse(std::string_view text) {
    if (!IsValidUtf8(text))
        return "not well-formed UTF-8\n";
    int depth = 0;
    bool isInString = false;
    for (size_t at = 0; at < text.size();) {
        const char byte = text[at];
        if (byte == '\0')
            return "a zero byte\n";
        if (isInString && byte == '\\') {
            if (!SkipEscape(text, at))
                return "an escape that is no character\n";
            continue;
        }
        ++at;
        if (byte == '"')
            isInString = !isInString;
        else if (isInString)
            continue;
        else if ((byte == '[' || byte == '{') && ++depth > kDeepestNesting)
            return "nested too deep\n";
        else if (byte == ']' || byte == '}')
            --depth;
        else if (byte == '/')
            return "a comment or a stray slash\n";
    }
    return nullptr;
}

/// YAJL reads real numbers as the host's locale has them: they are read again.
void ReadRealNumbers(yajl_val node) {
    if (YAJL_IS_OBJECT(node)) {
        for (size_t index = 0; index < node->u.object.len; ++index)
            ReadRealNumbers(node->u.object.values[index]);
    } else if (YAJL_IS_ARRAY(node)) {
        for (size_t index = 0; index < node->u.array.len; ++index)
            ReadRealNumbers(node->u.array.values[index]);
    } else if (YAJL_IS_NUMBER(node)) {
        auto& number = node->u.number;
        const char* const end = number.r + std::strlen(number.r);
        const bool isDouble = std::from_chars(number.r, end, number.d).ec == std::errc();
        number.flags = (number.flags & YAJL_NUMBER_INT_VALID) | (isDouble ? YAJL_NUMBER_DOUBLE_VALID : 0u);
    }
}

std::string FoundText(yajl_val node) {
    if (YAJL_IS_STRING(node))
        return std::string(" STRING: ") + YAJL_GET_STRING(node);
    if (YAJL_IS_INTEGER(node))
        return " INTEGER: " + std::to_string(YAJL_GET_INTEGER(node));
    if (YAJL_IS_DOUBLE(node))
        return " DOUBLE: " + NumberText(YAJL_GET_DOUBLE(node));
    if (YAJL_IS_OBJECT(node))
        return " OBJECT";
    if (YAJL_IS_ARRAY(node))
        return " ARRAY";
    if (YAJL_IS_TRUE(node) || YAJL_IS_FALSE(node))
        return std::string(" BOOLEAN: ") + (YAJL_IS_TRUE(node) ? "true" : "false");
    return "";
}

void RequireKind(bool isOfKind, const JSONValue& value, const char* kind, yajl_val node) {
    if (!isOfKind)
        throw std::runtime_error("Expected JSON node \"" + value.name() + "\" to be " + kind + ", found" +
                                 FoundText(node));
}

const char* GeneratorMessage(yajl_gen_status status) {
    switch (status) {
        case yajl_gen_keys_must_be_strings:
            return "A non-string JSON key was passed";
        case yajl_max_depth_exceeded:
            return "YAJL's maximum generation depth was exceeded";
        case yajl_gen_in_error_state:
            return "A JSON generator function was called while in an error state";
        case yajl_gen_generation_complete:
            return "A complete JSON document has been generated";
        case yajl_gen_invalid_number:
            return "An invalid floating point value was passed to the JSON generator (infinity or NaN)";
        case yajl_gen_no_buf:
            return "A print callback was passed in, so there is no internal buffer to get from";
        case yajl_gen_invalid_string:
            return "An invalid UTF-8 string was passed to the JSON generator";
        default:
            return "";
    }
}

/// Writes compact JSON text.
class Generator {
public:
    Generator() : mGenerator(yajl_gen_alloc(nullptr), &yajl_gen_free) {
        if (!mGenerator)
            throw std::bad_alloc();
    }

    void Write(yajl_val node) {
        if (YAJL_IS_STRING(node))
            return WriteString(YAJL_GET_STRING(node));
        if (YAJL_IS_NUMBER(node))
            return WriteNumber(node);
        if (YAJL_IS_OBJECT(node))
            return WriteObject(*YAJL_GET_OBJECT(node));
        if (YAJL_IS_ARRAY(node))
            return WriteArray(*YAJL_GET_ARRAY(node));
        if (YAJL_IS_TRUE(node) || YAJL_IS_FALSE(node))
            return Check(yajl_gen_bool(mGenerator.get(), YAJL_IS_TRUE(node)));
        Check(yajl_gen_null(mGenerator.get()));
    }

    std::string Text() const {
        const unsigned char* text = nullptr;
        size_t length = 0;
        Check(yajl_gen_get_buf(mGenerator.get(), &text, &length));
        return {reinterpret_cast<const char*>(text), length};
    }

private:
    static void Check(yajl_gen_status status) {
        if (status != yajl_gen_status_ok)
            throw std::runtime_error(GeneratorMessage(status));
    }

    void WriteString(const char* text) {
        if (!IsValidUtf8(text))  // YAJL's own check lets through what is none
            Check(yajl_gen_invalid_string);
        Check(yajl_gen_string(mGenerator.get(), reinterpret_cast<const unsigned char*>(text),
                              std::strlen(text)));
    }

    void WriteNumber(yajl_val node) {
        const bool isFinite =
            (node->u.number.flags & YAJL_NUMBER_DOUBLE_VALID) == 0 || std::isfinite(node->u.number.d);
        Check(isFinite ? yajl_gen_number(mGenerator.get(), node->u.number.r, std::strlen(node->u.number.r))
                       : yajl_gen_invalid_number);
    }

    template <class Object>
    void WriteObject(const Object& object) {
        Check(yajl_gen_map_open(mGenerator.get()));
        for (size_t index = 0; index < object.len; ++index) {
            WriteString(object.keys[index]);
            Write(object.values[index]);
        }
        Check(yajl_gen_map_close(mGenerator.get()));
    }

    template <class Array>
    void WriteArray(const Array& array) {
        Check(yajl_gen_array_open(mGenerator.get()));
        for (size_t index = 0; index < array.len; ++index)
            Write(array.values[index]);
        Check(yajl_gen_array_close(mGenerator.get()));
    }

    std::unique_ptr<yajl_gen_t, decltype(&yajl_gen_free)> mGenerator;
};

}  // namespace

bool JSONValue::is_string() const {
    return YAJL_IS_STRING(mNode);
}
bool JSONValue::is_int() const {
    return YAJL_IS_INTEGER(mNode);
}
bool JSONValue::is_double() const {
    return YAJL_IS_DOUBLE(mNode);
}
bool JSONValue::is_bool() const {
    return YAJL_IS_TRUE(mNode) || YAJL_IS_FALSE(mNode);
}
bool JSONValue::is_array() const {
    return YAJL_IS_ARRAY(mNode);
}
bool JSONValue::is_map() const {
    return YAJL_IS_OBJECT(mNode);
}

std::string JSONValue::as_string() const {
    RequireKind(is_string(), *this, "STRING", mNode);
    return YAJL_GET_STRING(mNode);
}

int64_t JSONValue::as_int64() const {
    RequireKind(is_int(), *this, "INTEGER", mNode);
    return YAJL_GET_INTEGER(mNode);
}

double JSONValue::as_double() const {
    RequireKind(is_double(), *this, "DOUBLE", mNode);
    return YAJL_GET_DOUBLE(mNode);
}

bool JSONValue::as_bool() const {
    RequireKind(is_bool(), *this, "BOOLEAN", mNode);
    return YAJL_IS_TRUE(mNode);
}

std::vector<JSONValue> JSONValue::as_array() const {
    RequireKind(is_array(), *this, "ARRAY", mNode);
    std::vector<JSONValue> elements;
    elements.reserve(mNode->u.array.len);
    for (size_t index = 0; index < mNode->u.array.len; ++index)
        elements.emplace_back(mName, mNode->u.array.values[index]);
    return elements;
}

std::vector<std::pair<std::string, JSONValue>> JSONValue::as_map() const {
    RequireKind(is_map(), *this, "OBJECT", mNode);
    std::vector<std::pair<std::string, JSONValue>> members;
    members.reserve(mNode->u.object.len);
    for (size_t index = 0; index < mNode->u.object.len; ++index) {
        const std::string key = mNode->u.object.keys[index];
        members.emplace_back(key, JSONValue(key, mNode->u.object.values[index]));
    }
    return members;
}

bool JSONValue::find(const std::string& key, JSONValue& value) const {
    if (!is_map())
        return false;
    for (size_t index = 0; index < mNode->u.object.len; ++index) {
        if (key == mNode->u.object.keys[index]) {
            value = JSONValue(key, mNode->u.object.values[index]);
            return true;
        }
    }
    return false;
}

bool JSONValue::Append(const std::string& key, yajl_val_s* node, JSONValue& newValue) {
    OwnedNode owned(node, &FreeTree);
    if (!owned || !is_map())
        return false;
    auto& object = mNode->u.object;
    char* keyText = NewText(key);
    if (keyText == nullptr || !Grow(object.keys, object.len) || !Grow(object.values, object.len)) {
        std::free(keyText);
        return false;
    }
    object.keys[object.len] = keyText;
    object.values[object.len] = owned.release();
    ++object.len;
    newValue = JSONValue(key, node);
    return true;
}

bool JSONValue::Append(yajl_val_s* node, JSONValue& newValue) {
    OwnedNode owned(node, &FreeTree);
    if (!owned || !is_array())
        return false;
    auto& array = mNode->u.array;
    if (!Grow(array.values, array.len))
        return false;
    array.values[array.len] = owned.release();
    ++array.len;
    newValue = JSONValue(mName, node);
    return true;
}

bool JSONValue::add_string(const std::string& key, const std::string& value, JSONValue& newValue) {
    return Append(key, StringNode(value).release(), newValue);
}
bool JSONValue::add_int64(const std::string& key, int64_t value, JSONValue& newValue) {
    return Append(key, IntegerNode(value).release(), newValue);
}
bool JSONValue::add_double(const std::string& key, double value, JSONValue& newValue) {
    return Append(key, DoubleNode(value).release(), newValue);
}
bool JSONValue::add_bool(const std::string& key, bool value, JSONValue& newValue) {
    return Append(key, BoolNode(value).release(), newValue);
}
bool JSONValue::add_array(const std::string& key, JSONValue& newValue) {
    return Append(key, NewNode(yajl_t_array).release(), newValue);
}
bool JSONValue::add_map(const std::string& key, JSONValue& newValue) {
    return Append(key, NewNode(yajl_t_object).release(), newValue);
}

bool JSONValue::add_string(const std::string& value, JSONValue& newValue) {
    return Append(StringNode(value).release(), newValue);
}
bool JSONValue::add_int64(int64_t value, JSONValue& newValue) {
    return Append(IntegerNode(value).release(), newValue);
}
bool JSONValue::add_double(double value, JSONValue& newValue) {
    return Append(DoubleNode(value).release(), newValue);
}
bool JSONValue::add_bool(bool value, JSONValue& newValue) {
    return Append(BoolNode(value).release(), newValue);
}
bool JSONValue::add_array(JSONValue& newValue) {
    return Append(NewNode(yajl_t_array).release(), newValue);
}
bool JSONValue::add_map(JSONValue& newValue) {
    return Append(NewNode(yajl_t_object).release(), newValue);
}

std::string JSONValue::to_json() const {
    Generator generator;
    generator.Write(mNode);
    return generator.Text();
}

void JSONObject::TreeDeleter::operator()(yajl_val_s* node) const {
    yajl_tree_free(node);
}

void JSONObject::load(const std::string& text) {
    mTree.reset();
    char parseError[kParseErrorSize] = "";
    const char* reason = ReasonToRefuse(text);
    if (reason == nullptr) {
        mTree.reset(yajl_tree_parse(text.c_str(), parseError, sizeof parseError));
        reason = parseError;
    }
    if (mTree)
        ReadRealNumbers(mTree.get());
    if (!mTree && text != "OK")
        throw std::runtime_error(std::string("JSON parse error:\n") + reason);
}

void JSONObject::load_map() {
    mTree.reset(NewNode(yajl_t_object).release());
    if (!mTree)
        throw std::bad_alloc();
}

JSONValue JSONObject::root() const {
    if (!mTree)
        throw std::runtime_error("No JSON loaded in parser");
    return {"root", mTree.get()};
}

JSONValue JSONObject::get(const std::vector<std::string>& path) const {
    JSONValue value = root();
    std::string name;
    for (const std::string& key : path) {
        name += key;
        if (!value.find(key, value))
            throw std::runtime_error("No JSON node \"" + name + "\"");
        value.mName = name;
    }
    return value;
}
