#include "StringConversion.h"

#include <iconv.h>
#include <utf8.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <memory>
#include <vector>

#include "NoDestructor.h"

namespace {

class Converter {
public:
    Converter(const char* to, const char* from) : mHandle(iconv_open(to, from)) {}
    ~Converter() {
        if (IsOpen())
            iconv_close(mHandle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // iconv's own mark of failure is (iconv_t)-1.
    bool IsOpen() const { return mHandle != reinterpret_cast<iconv_t>(-1); }

    /// Converts what is left of the input, or with a null input writes the closing shift sequence.
    bool Append(char** input, size_t* inputLeft, std::string& output) {
        for (;;) {
            std::array<char, 1024> piece;
            char* end = piece.data();
            size_t room = piece.size();
            const size_t result = iconv(mHandle, input, inputLeft, &end, &room);
            output.append(piece.data(), piece.size() - room);
            if (result != static_cast<size_t>(-1))
                return true;
            if (errno != E2BIG)
                return false;
        }
    }

private:
    iconv_t mHandle;
};

}  // namespace

bool IsValidUtf8(std::string_view text) {
    return utf8::is_valid(text.begin(), text.end());
}

std::string AsciiLowerCase(std::string text) {
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

size_t WellFormedTail(std::string_view text) {
    auto tail = text.begin();
    for (auto fault = tail; (fault = utf8::find_invalid(tail, text.end())) != text.end();)
        tail = fault + 1;
    return static_cast<size_t>(tail - text.begin());
}

std::string ReplaceInvalidUtf8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    return valid;
}

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string converted;
    converted.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        char32_t point = text[at];
        if (utf8::internal::is_lead_surrogate(point) && at + 1 < text.size() &&
            utf8::internal::is_trail_surrogate(text[at + 1]))
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++at] - 0xDC00);
        else if (utf8::internal::is_surrogate(point))
            point = 0xFFFD;
        utf8::append(point, converted);
    }
    return converted;
}

size_t Utf16Length(std::string_view text) {
    size_t length = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool continues = (byte & 0xC0) == 0x80;
        length += continues ? 0 : byte < 0xF0 ? 1 : 2;
    }
    return length;
}

bool KeepEncodingLoaded(const char* from, const char* to) {
    // The tables stay for as long as a converter is open.
    static NoDestructor<std::vector<std::unique_ptr<Converter>>> kept;
    return (*kept).emplace_back(std::make_unique<Converter>(to, from))->IsOpen();
}

ErrorCode ConvertEncoding(std::string_view bytes, const char* from, const char* to, std::string& converted) {
    Converter converter(to, from);
    if (!converter.IsOpen())
        return CoreErrorCodes::kNotSupported;
    char* input = const_cast<char*>(bytes.data());  // iconv does not write through it
    size_t inputLeft = bytes.size();
    std::string output;
    if (!converter.Append(&input, &inputLeft, output) || !converter.Append(nullptr, nullptr, output))
        return CoreErrorCodes::kInvalidParam;
    converted = std::move(output);
    return CoreErrorCodes::kSuccess;
}
