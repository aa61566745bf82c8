// The core, loaded at run time as a host plug-in loads it.
#pragma once

#include <string>

#include "PluginCoreInterface.h"

/// The functions by their names; all are set once Load succeeded.
struct CoreLibrary {
#define DECLARE_EXPORT(name) decltype(&::name) name = nullptr;
    PLUGINCORE_FUNCTIONS(DECLARE_EXPORT)
#undef DECLARE_EXPORT

    /// Loads the library at `path` (UTF-8). False with the reason in `error`.
    bool Load(const std::string& path, std::string& error);

    /// Where the library stands beside this program.
    static std::string DefaultPath();
};
