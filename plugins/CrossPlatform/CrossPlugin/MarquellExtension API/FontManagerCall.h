// How requests of panels reach the font manager: straight through the interface library, without bringing an
// agent back that is gone. A panel asks again; the next event of a document brings the agent back.
#pragma once

#include "FontManagerAccess.h"
#include "VPILoader.h"

/// Calls one function of the table with this process' facade and the arguments. kNotImplemented when the
/// library does not have it, or nobody may call it: its version does not go with the core, or the host has quit. Main thread.
template <class Function, class... Arguments>
ErrorCode CallFontManager(Function PluginFunctionTable::*function, Arguments... arguments) {
    const VPILoader* loader = VPILoader::GetSharedInstance();
    if (loader == nullptr)
        return CoreErrorCodes::kSuccess;
    if (GetFontManagerAccess() == nullptr || loader->*function == nullptr ||
        loader->pfGetPluginFacadeInstance == nullptr)
        return CoreErrorCodes::kNotImplemented;
    PluginFacadeRef facade = nullptr;
    if (const ErrorCode code = loader->pfGetPluginFacadeInstance(&facade))
        return code;
    return (loader->*function)(facade, arguments...);
}
