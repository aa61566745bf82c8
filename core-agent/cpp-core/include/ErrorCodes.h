// Error codes: 32 bits, of which bits 24 to 31 number the error within its namespace, counting from 1, and
// bits 0 to 23 name the namespace. 0 is success.
//
// A namespace that has a class of ours is the class's base, so that `GFile::kFileNotOpen` reads as one
// expects; of the others, those in use are brought into scope at the end of this header.
#pragma once

#include <cstdint>
#include <string>

using ErrorCode = uint32_t;

constexpr ErrorCode MakeErrorCode(uint32_t namespaceIdentifier, uint32_t number) {
    return namespaceIdentifier + (number << 24);
}

namespace error_codes {

#define NAMESPACE(identifier, name) \
    struct name {                   \
        static constexpr uint32_t kNamespaceIdentifier = identifier;
#define MEMBER(space, name, number) \
    static constexpr ErrorCode name = MakeErrorCode(kNamespaceIdentifier, number);
#define ODD_MEMBER(space, name, code) static constexpr ErrorCode name = code;
#define END_NAMESPACE(name) \
    }                       \
    ;
#include "ErrorCodeTable.inc"
#undef NAMESPACE
#undef MEMBER
#undef ODD_MEMBER
#undef END_NAMESPACE

}  // namespace error_codes

using error_codes::CoreErrorCodes;
using error_codes::GAgentIF;
using error_codes::GFontActivationManager;
using error_codes::GFontManagerFacade;
using error_codes::GIPCClient;
using error_codes::GSqliteDatabase;
using error_codes::GZephyrinConfig;
using error_codes::GZephyrinExportFonts;
using error_codes::GZephyrinSdk;
using error_codes::GZephyrinServerFacade;
using error_codes::GZephyrinSetManager;
using error_codes::GZephyrinWorkgroupManager;

/// The code's name, for example "GFile::kFileNotOpen"; "Unknown error code" for a code that is not in the
/// table. Any thread.
std::string ErrorCodeToName(ErrorCode code);

/// The code with that name (exact, case-sensitive); CoreErrorCodes::kUnknownError for a name that is not in
/// the table. For code that reads names back, out of traces and scripts; the core does not. Any thread.
ErrorCode ErrorNameToCode(const std::string& name);
