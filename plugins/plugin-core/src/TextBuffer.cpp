#include "TextBuffer.h"

#include <cstring>

#include "FontListJSON.h"

ErrorCode CopyTextToBuffer(const std::string& text, char* buffer, size_t* size) {
    if (text.size() >= *size) {
        *size = text.size();
        return CoreErrorCodes::kIndexOutOfRange;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return CoreErrorCodes::kSuccess;
}

ErrorCode CopyFontsToBuffer(CFArrayRef fonts, char* buffer, size_t* size) {
    if (fonts == nullptr)
        return CoreErrorCodes::kSuccess;
    std::string text;
    const ErrorCode code = FontsToJSON(fonts, text);
    return code == CoreErrorCodes::kSuccess ? CopyTextToBuffer(text, buffer, size) : code;
}
