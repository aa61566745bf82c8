// Declares the library's exports from the one list of them, so that a definition whose parameters disagree
// with the contract does not compile.
#pragma once

#include <new>

#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"
#include "client/Library.h"

// The build defines this where shared libraries mark their exports differently.
#ifndef TARNWICK_EXPORT
#define TARNWICK_EXPORT __attribute__((visibility("default")))
#endif

extern "C" {
#define TARNWICK_DECLARE_EXPORT(symbol, parameters) TARNWICK_EXPORT uint32_t symbol parameters;
TARNWICK_PLUGIN_FUNCTIONS(TARNWICK_DECLARE_EXPORT)
#undef TARNWICK_DECLARE_EXPORT
}

namespace pellwick {

/// Runs the body of an export; exceptions become codes.
template <class Body>
ErrorCode Guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return CoreErrorCodes::kOutOfMemory;
    } catch (...) {
        return CoreErrorCodes::kExceptionThrownError;
    }
}

/// Answers without the agent, if the facade is valid.
template <class Value>
uint32_t Answer(PluginFacadeRef facade, Value* out, Value value) {
    return Guarded([&] {
        if (out == nullptr)
            return CoreErrorCodes::kNullPointer;
        const ErrorCode code = Library::Get().CheckFacade(facade);
        if (code == CoreErrorCodes::kSuccess)
            *out = value;
        return code;
    });
}

}  // namespace pellwick
