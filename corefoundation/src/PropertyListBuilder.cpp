#include "PropertyListBuilder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

#include "ArrayObject.h"
#include "CoreFoundation++/Base64.h"
#include "CoreFoundation/CFPropertyList.h"
#include "DataObject.h"
#include "DictionaryObject.h"
#include "Limits.h"

namespace corefoundation {
namespace {

using Kind = PropertyListBuilder::Kind;

// In the order of Kind.
constexpr std::array<std::string_view, 11> kNames = {"plist", "dict", "array", "key",  "string", "integer",
                                                     "real",  "true", "false", "data", "date"};
constexpr std::string_view kBlanks = " \t\r\n";

std::string Tag(Kind kind) {
    return "<" + std::string(kNames[static_cast<size_t>(kind)]) + ">";
}

Kind KindOf(std::string_view name) {
    const auto* const found = std::find(kNames.begin(), kNames.end(), name);
    if (found == kNames.end())
        throw PropertyListError("<" + std::string(name) + "> is not an element of a property list");
    return static_cast<Kind>(found - kNames.begin());
}

bool IsContainer(Kind kind) {
    return kind == Kind::kPlist || kind == Kind::kDict || kind == Kind::kArray;
}

bool HoldsText(Kind kind) {
    return !IsContainer(kind) && kind != Kind::kTrue && kind != Kind::kFalse;
}

template <class T>
CFRef<T> Made(CFRef<T> object) {
    if (!object)
        throw std::bad_alloc();
    return object;
}

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? ""
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

template <class Value, class... Format>
bool ParseWhole(std::string_view text, Value& value, Format... format) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, format...);
    return result.ec == std::errc() && result.ptr == end;
}

// A sign, then decimal digits or "0x" and hexadecimal ones.
CFRef<CFTypeRef> IntegerFrom(std::string_view text) {
    std::string_view digits = Trimmed(text);
    const bool isNegative = digits.starts_with('-');
    digits.remove_prefix(isNegative || digits.starts_with('+') ? 1 : 0);
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    digits.remove_prefix(isHexadecimal ? 2 : 0);
    uint64_t magnitude = 0;
    const uint64_t highest = isNegative ? uint64_t{1} << 63 : INT64_MAX;
    if (!ParseWhole(digits, magnitude, isHexadecimal ? 16 : 10) || magnitude > highest)
        throw PropertyListError("\"" + std::string(text) + "\" is not an integer of 64 bits");
    return Made(cf::Number(static_cast<int64_t>(isNegative ? 0 - magnitude : magnitude)));
}

CFRef<CFTypeRef> RealFrom(std::string_view text) {
    std::string_view digits = Trimmed(text);
    digits.remove_prefix(digits.starts_with('+') && !digits.starts_with("+-") ? 1 : 0);
    double value = 0;
    if (!ParseWhole(digits, value))
        throw PropertyListError("\"" + std::string(text) + "\" is not a real number");
    return Made(cf::RealNumber(value));
}

}  // namespace

void PropertyListBuilder::StartElement(std::string_view name) {
    const Kind kind = KindOf(name);
    RequirePlace(kind);
    if (IsContainer(kind) && mOpen.size() > kMaximumPropertyListDepth)
        throw PropertyListError("the property list is nested too deeply");
    mOpen.push_back({.kind = kind,
                     .array = kind == Kind::kArray ? Made(cf::MutableArray()) : nullptr,
                     .dictionary = kind == Kind::kDict ? Made(cf::MutableDictionary()) : nullptr,
                     .key = nullptr,
                     .text = {}});
}

void PropertyListBuilder::RequirePlace(Kind kind) const {
    if (mOpen.empty() != (kind == Kind::kPlist))
        throw PropertyListError("<plist> must be the outermost element, and no other");
    if (mOpen.empty())
        return;
    const Element& parent = mOpen.back();
    if (!IsContainer(parent.kind))
        throw PropertyListError(Tag(kind) + " cannot stand inside " + Tag(parent.kind));
    const bool wantsKey = parent.kind == Kind::kDict && !parent.key;
    if (wantsKey != (kind == Kind::kKey)) {
        throw PropertyListError(wantsKey ? Tag(kind) + " has no <key> before it"
                                         : "<key> stands where a value must be");
    }
    if (parent.kind == Kind::kPlist && mRoot)
        throw PropertyListError("<plist> holds more than one value");
}

void PropertyListBuilder::Text(std::string_view utf8) {
    if (mOpen.empty())
        return;
    Element& element = mOpen.back();
    if (HoldsText(element.kind))
        element.text += utf8;
    else if (utf8.find_first_not_of(kBlanks) != std::string_view::npos)
        throw PropertyListError(Tag(element.kind) + " cannot hold text");
}

void PropertyListBuilder::EndElement() {
    Element element = std::move(mOpen.back());
    mOpen.pop_back();
    if (element.kind == Kind::kPlist)
        return;
    if (element.kind == Kind::kKey)
        mOpen.back().key = Made(cf::String(element.text));
    else
        Store(ValueOf(element));
}

CFRef<CFTypeRef> PropertyListBuilder::ValueOf(Element& element) const {
    switch (element.kind) {
        case Kind::kDict:
            return FinishedDictionary(element);
        case Kind::kArray:
            return FinishedArray(element);
        case Kind::kString:
            return Made(cf::String(element.text));
        case Kind::kInteger:
            return IntegerFrom(element.text);
        case Kind::kReal:
            return RealFrom(element.text);
        case Kind::kTrue:
        case Kind::kFalse:
            return cf::Object(element.kind == Kind::kTrue);
        case Kind::kData:
            return DataFrom(element.text);
        default:
            throw PropertyListError(Tag(element.kind) + " is not supported");
    }
}

CFRef<CFTypeRef> PropertyListBuilder::FinishedArray(const Element& element) const {
    if (mMutability == kCFPropertyListImmutable)
        element.array.get()->mMutability = Mutability::kImmutable;
    return element.array;
}

CFRef<CFTypeRef> PropertyListBuilder::FinishedDictionary(const Element& element) const {
    if (element.key)
        throw PropertyListError("the <key> \"" + cf::ToUtf8(element.key.get()) + "\" has no value");
    if (mMutability == kCFPropertyListImmutable)
        element.dictionary.get()->mMutability = Mutability::kImmutable;
    return element.dictionary;
}

CFRef<CFTypeRef> PropertyListBuilder::DataFrom(const std::string& text) const {
    auto bytes = cf::DecodeBase64(text);
    if (!bytes)
        throw PropertyListError("<data> does not hold valid base64");
    return Made(AdoptCF<CFTypeRef>(Create<CFData>(std::move(*bytes))));
}

void PropertyListBuilder::Store(CFRef<CFTypeRef> value) {
    Element& parent = mOpen.back();
    if (parent.kind == Kind::kArray)
        cf::Append(parent.array, value);
    else if (parent.kind == Kind::kDict)
        cf::Set(parent.dictionary, std::exchange(parent.key, nullptr), value);
    else
        mRoot = std::move(value);
}

CFRef<CFTypeRef> PropertyListBuilder::Finish() {
    if (!mRoot)
        throw PropertyListError("the property list holds no value");
    return std::move(mRoot);
}

}  // namespace corefoundation
