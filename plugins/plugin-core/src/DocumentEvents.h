// What happens when the user creates, opens, saves or closes a document. The exports of the same names come
// here with their pointers checked; sizes, ownership and codes are told in PluginCoreInterface.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ErrorCodes.h"

namespace DocumentEvents {

ErrorCode HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize);
/// `fontsJSON` may be empty.
ErrorCode HandleOpenExistingDocument(const std::string& path, const std::string& fontsJSON, char* bufferA,
                                     size_t* sizeA, char* bufferB, size_t* sizeB, int* numFontsActivated);
/// `hint` may be empty.
ErrorCode HandleSaveDocument(const std::string& path, const std::string& hint);
ErrorCode HandleCloseDocument(const std::string& path, const std::string& hint);
ErrorCode SetPathForDocument(const std::string& path, const std::string& documentId);
ErrorCode GetIDForDocument(const std::string& path, char* idBuffer, size_t* idBufferSize);
ErrorCode UpdateDocumentFontUsage(const std::string& document, const std::string& fontUsage);
ErrorCode ActivateChosenFonts(const std::string& path, const std::string& fontsJSON, uint32_t* outCount);
/// Closes every tracked document; one that fails does not keep the others open.
void CloseAllDocuments();

}  // namespace DocumentEvents
