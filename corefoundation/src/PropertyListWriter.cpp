#include <cmath>
#include <stdexcept>

#include "ArrayObject.h"
#include "CoreFoundation++/Base64.h"
#include "CoreFoundation/CFPropertyList.h"
#include "DataObject.h"
#include "DictionaryObject.h"
#include "Limits.h"
#include "NumberObject.h"
#include "StringObject.h"

using namespace corefoundation;

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";

// Throws std::invalid_argument for what XML property lists cannot hold.
class Writer {
public:
    std::string Write(CFTypeRef root) {
        mXml = kHead;
        Value(root);
        mXml += kTail;
        return std::move(mXml);
    }

private:
    void Value(CFTypeRef ref);
    void Array(const CFArray& array);
    void Dictionary(const CFDictionary& dictionary);
    void Data(const CFData& data);
    void Number(const CFNumber& number);

    void Line(std::string_view text);
    void Text(std::string_view element, std::string_view text);
    void Open(std::string_view tag);
    void Close(std::string_view tag);

    std::string mXml;
    size_t mDepth = 0;
};

// Whether rest starts with a character that XML 1.0 cannot express at all: control characters, U+FFFE and
// U+FFFF.
bool IsInexpressible(std::string_view rest) {
    const auto first = static_cast<unsigned char>(rest.front());
    const bool isControl = first < 0x20 && first != '\t' && first != '\n' && first != '\r';
    return isControl || rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF");
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (IsInexpressible(text.substr(i)))
            throw std::invalid_argument("XML cannot express this character");
        switch (text[i]) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '\r':
                escaped += "&#13;";  // as it stands, a reader would make a line feed of it
                break;
            default:
                escaped += text[i];
        }
    }
    return escaped;
}

std::string RealText(double value) {
    if (std::isinf(value))
        return value > 0 ? "+infinity" : "-infinity";
    return std::isnan(value) ? "nan" : FormatReal(value);
}

void Writer::Line(std::string_view text) {
    mXml.append(mDepth, '\t').append(text) += '\n';
}

void Writer::Text(std::string_view element, std::string_view text) {
    const std::string name(element);
    Line("<" + name + ">" + Escaped(text) + "</" + name + ">");
}

void Writer::Open(std::string_view tag) {
    Line(tag);
    if (++mDepth > kMaximumPropertyListDepth)
        throw std::invalid_argument("nested too deeply");
}

void Writer::Close(std::string_view tag) {
    --mDepth;
    Line(tag);
}

void Writer::Value(CFTypeRef ref) {
    const auto* object = static_cast<const Object*>(ref);
    switch (object != nullptr ? object->Type() : kNullType) {
        case kStringType:
            return Text("string", static_cast<const CFString*>(object)->Utf8());
        case kArrayType:
            return Array(*static_cast<const CFArray*>(object));
        case kDictionaryType:
            return Dictionary(*static_cast<const CFDictionary*>(object));
        case kBooleanType:
            return Line(static_cast<const CFBoolean*>(object)->mValue ? "<true/>" : "<false/>");
        case kNumberType:
            return Number(*static_cast<const CFNumber*>(object));
        case kDataType:
            return Data(*static_cast<const CFData*>(object));
        default:
            throw std::invalid_argument("no property list object");
    }
}

void Writer::Array(const CFArray& array) {
    Open("<array>");
    for (CFIndex i = 0; i < array.Count(); ++i)
        Value(array.At(i));
    Close("</array>");
}

void Writer::Dictionary(const CFDictionary& dictionary) {
    Open("<dict>");
    dictionary.ForEach([this](const auto& entry) {
        const auto* key = static_cast<const Object*>(entry.key);
        if (key == nullptr || key->Type() != kStringType)
            throw std::invalid_argument("a key is not a string");
        Text("key", static_cast<const CFString*>(key)->Utf8());
        Value(entry.value);
    });
    Close("</dict>");
}

void Writer::Data(const CFData& data) {
    constexpr size_t kLineLength = 76;
    const auto bytes = data.Bytes();
    const std::string text = cf::EncodeBase64({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    Line("<data>");
    for (size_t i = 0; i < text.size(); i += kLineLength)
        Line(std::string_view(text).substr(i, kLineLength));
    Line("</data>");
}

void Writer::Number(const CFNumber& number) {
    if (number.IsFloat())
        Text("real", RealText(number.mFloat));
    else
        Text("integer", std::to_string(number.mInteger));
}

}  // namespace

CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef, CFPropertyListRef propertyList) {
    if (!Require(propertyList != nullptr, "there is no property list to write"))
        return nullptr;
    return Guarded<CFDataRef>(nullptr, [&] {
        const std::string xml = Writer().Write(propertyList);
        return Create<CFData>(std::vector<UInt8>(xml.begin(), xml.end()));
    });
}
