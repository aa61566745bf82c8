#include "StringObject.h"

#include <utf8.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <shared_mutex>

#include "TextEncoding.h"

using namespace corefoundation;

namespace {

bool IsAsciiText(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

CFStringRef CreateDecoded(std::span<const UInt8> bytes, CFStringEncoding encoding, ByteOrderMark mark) {
    return Guarded<CFStringRef>(nullptr, [&]() -> CFStringRef {
        auto text = Decode(bytes, encoding, mark);
        return text ? Create<CFString>(std::move(*text)) : nullptr;
    });
}

std::span<const UInt8> BytesOf(const char* cString) {
    return {reinterpret_cast<const UInt8*>(cString), std::strlen(cString)};
}

struct Character {
    char32_t value = 0;
    CFIndex units = 1;
    bool isPaired = true;  // false for half a surrogate pair, which a range may cut off
};

Character CharacterAt(const CFString& string, CFIndex index, CFIndex end) {
    const char16_t unit = string.At(index);
    if (unit < 0xD800 || unit > 0xDFFF)
        return {unit, 1, true};
    if (unit > 0xDBFF || index + 1 >= end)
        return {unit, 1, false};
    const char32_t low = string.At(index + 1);
    return {(static_cast<char32_t>(unit) << 10) + low - 0x35FDC00, 2, true};
}

// Where encoded bytes go: into a buffer of limited size, or nowhere while they are counted.
class ByteSink {
public:
    ByteSink(UInt8* buffer, CFIndex size) : mBuffer(buffer), mRoom(buffer != nullptr ? size : PTRDIFF_MAX) {}

    bool Append(const UInt8* bytes, CFIndex count) {
        if (count > mRoom - mUsed)
            return false;
        if (mBuffer != nullptr)
            std::memcpy(mBuffer + mUsed, bytes, static_cast<size_t>(count));
        mUsed += count;
        return true;
    }
    bool Append(const EncodedCharacter& character) {
        return Append(character.bytes.data(), static_cast<CFIndex>(character.size));
    }
    CFIndex Room() const { return mRoom - mUsed; }
    CFIndex Used() const { return mUsed; }

private:
    UInt8* mBuffer;
    CFIndex mRoom;
    CFIndex mUsed = 0;
};

CFIndex EncodeRange(const CFString& string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                    ByteSink& sink) {
    const CFIndex end = range.location + range.length;
    CFIndex index = range.location;
    while (index < end) {
        const Character character = CharacterAt(string, index, end);
        EncodedCharacter encoded;
        if (character.isPaired)
            encoded = Encode(character.value, encoding);
        if (encoded.size == 0 && lossByte != 0)
            encoded = Encode(lossByte, encoding);
        if (encoded.size == 0 || !sink.Append(encoded))
            break;
        index += character.units;
    }
    return index - range.location;
}

// Text whose stored bytes are the wanted ones is copied as it stands.
CFIndex CopyRange(const CFString& string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                  ByteSink& sink) {
    const auto* stored = reinterpret_cast<const UInt8*>(string.Utf8().data());
    if (string.IsAscii() && !IsUtf16(encoding)) {
        const CFIndex count = std::min(range.length, sink.Room());
        sink.Append(stored + range.location, count);
        return count;
    }
    const auto storedSize = static_cast<CFIndex>(string.Utf8().size());
    const bool isWhole = range.length == string.Length();
    if (encoding == kCFStringEncodingUTF8 && isWhole && sink.Append(stored, storedSize))
        return range.length;
    return EncodeRange(string, range, encoding, lossByte, sink);
}

// The strings made by CFSTR. Never destroyed: they are used until the process ends.
class ConstantStrings {
public:
    static ConstantStrings& Shared() {
        static ConstantStrings* const shared = std::make_unique<ConstantStrings>().release();
        return *shared;
    }

    CFStringRef Get(const char* utf8) {
        {
            const std::shared_lock lock(mStringsLock);
            const auto found = mStrings.find(std::string_view(utf8));
            if (found != mStrings.end())
                return found->second;
        }
        const CFStringRef created =
            CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8);
        return created != nullptr ? Insert(created) : nullptr;
    }

private:
    CFStringRef Insert(CFStringRef created) {
        Owned<const CFString> owned(created);
        const std::lock_guard lock(mStringsLock);
        const auto [position, isNew] = mStrings.try_emplace(std::string_view(owned->Utf8()), created);
        if (isNew)
            owned.release()->MakeImmortal();
        return position->second;
    }

    std::shared_mutex mStringsLock;
    std::map<std::string_view, CFStringRef> mStrings;  // each key is the text of its string
};

}  // namespace

CFString::CFString(std::string utf8) : mUtf8(std::move(utf8)), mHash(std::hash<std::string_view>()(mUtf8)) {
    if (!IsAsciiText(mUtf8))
        utf8::utf8to16(mUtf8.begin(), mUtf8.end(), std::back_inserter(mUtf16));
}

CFTypeID CFStringGetTypeID(void) {
    return kStringType;
}

CFStringRef CFStringMakeConstantString(const char* utf8) {
    if (!Require(utf8 != nullptr, "a constant string needs a text"))
        return nullptr;
    return Guarded<CFStringRef>(nullptr, [&] { return ConstantStrings::Shared().Get(utf8); });
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* cString, CFStringEncoding encoding) {
    if (!Require(cString != nullptr, "a string needs a text") || IsUtf16(encoding))
        return nullptr;
    return CreateDecoded(BytesOf(cString), encoding, ByteOrderMark::kIsText);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (!Require(byteCount == 0 || (byteCount > 0 && bytes != nullptr), "a string needs its bytes"))
        return nullptr;
    return CreateDecoded({bytes, static_cast<size_t>(byteCount)}, encoding,
                         isExternalRepresentation ? ByteOrderMark::kObey : ByteOrderMark::kIsText);
}

CFIndex CFStringGetLength(CFStringRef string) {
    const CFString* checked = Check<CFString>(string);
    return checked != nullptr ? checked->Length() : 0;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
    const CFString* checked = Check<CFString>(string);
    if (checked == nullptr || buffer == nullptr || bufferSize <= 0)
        return FALSE;
    buffer[0] = '\0';
    if (IsUtf16(encoding) || MaximumBytesPerUnit(encoding) == 0)
        return FALSE;
    ByteSink sink(reinterpret_cast<UInt8*>(buffer), bufferSize - 1);
    const bool isWhole =
        CopyRange(*checked, CFRangeMake(0, checked->Length()), encoding, 0, sink) == checked->Length();
    buffer[isWhole ? sink.Used() : 0] = '\0';
    return isWhole;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    const CFIndex perUnit = MaximumBytesPerUnit(encoding);
    if (perUnit == 0 || length < 0 || length > std::numeric_limits<CFIndex>::max() / perUnit)
        return kCFNotFound;
    return length * perUnit;
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex bufferSize,
                         CFIndex* usedBytes) {
    const CFString* checked = Check<CFString>(string);
    CFIndex converted = 0;
    ByteSink sink(buffer, bufferSize);
    if (checked != nullptr && RequireRange(range, checked->Length()) && MaximumBytesPerUnit(encoding) != 0) {
        const bool wantsMark = isExternalRepresentation && encoding == kCFStringEncodingUTF16;
        if (!wantsMark || sink.Append(Encode(0xFEFF, encoding)))
            converted = CopyRange(*checked, range, encoding, lossByte, sink);
    }
    if (usedBytes != nullptr)
        *usedBytes = sink.Used();
    return converted;
}
