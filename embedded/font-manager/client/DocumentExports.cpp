// What is recorded about documents.
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "client/XmpPacket.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

uint32_t CallAboutDocument(PluginFacadeRef facade, const char* method, CFStringRef path, Json arguments,
                           Json& result) {
    if (path == nullptr)
        return CoreErrorCodes::kNullPointer;
    arguments[member::kPath] = cf::ToUtf8(path);
    return Library::Get().Call(facade, method, arguments, result);
}

}  // namespace

uint32_t SaveDocumentFonts(PluginFacadeRef facade, CFStringRef documentPath, bool replace,
                           CFStringRef fontUsage) {
    return Guarded([&] {
        Json ignored;
        return CallAboutDocument(facade, method::kSaveDocumentFonts, documentPath,
                                 {{member::kReplace, replace}, {member::kUsage, cf::ToUtf8(fontUsage)}},
                                 ignored);
    });
}

uint32_t GetFontUsage(PluginFacadeRef facade, CFStringRef documentPath, CFStringRef* outNewFontUsage) {
    return Guarded([&]() -> ErrorCode {
        if (outNewFontUsage == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json result;
        const ErrorCode code =
            CallAboutDocument(facade, method::kGetFontUsage, documentPath, Json::object(), result);
        if (code == CoreErrorCodes::kSuccess)
            *outNewFontUsage = cf::String(StringMember(result, member::kUsage)).release();
        return code;
    });
}

uint32_t GetAdobeXMPData(PluginFacadeRef facade, CFStringRef documentPath, CFStringRef* outNewXMP) {
    return Guarded([&] {
        if (documentPath == nullptr || outNewXMP == nullptr)
            return CoreErrorCodes::kNullPointer;
        std::string packet;
        ErrorCode code = Library::Get().CheckFacade(facade);
        if (code == CoreErrorCodes::kSuccess)
            code = ReadXmpPacket(cf::ToUtf8(documentPath), packet);
        if (code == CoreErrorCodes::kSuccess)
            *outNewXMP = cf::String(packet).release();
        return code;
    });
}

uint32_t WriteFontUsage(PluginFacadeRef facade, CFStringRef documentPath, CFStringRef fontUsage) {
    return Guarded([&] {
        Json ignored;
        return CallAboutDocument(facade, method::kWriteFontUsage, documentPath,
                                 {{member::kUsage, cf::ToUtf8(fontUsage)}}, ignored);
    });
}

uint32_t ClearDocumentSlug(PluginFacadeRef facade, CFStringRef documentPath) {
    return Guarded([&] {
        Json ignored;
        return CallAboutDocument(facade, method::kClearDocument, documentPath, Json::object(), ignored);
    });
}
