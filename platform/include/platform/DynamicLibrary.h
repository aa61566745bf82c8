// Loading libraries at run time and asking about loaded modules.
#pragma once

#include <string>
#include <string_view>

#include "platform/Service.h"
#include "platform/SystemError.h"

namespace platform {

using LibraryHandle = void*;

/// The file name of a loadable library on this system: "NAME.so" or "NAME.dll".
std::string LibraryFileName(std::string_view name);
/// The file name of a program on this system: "NAME" or "NAME.exe".
std::string ProgramFileName(std::string_view name);

/// Where programs of a `bin` folder find the shared library that they are installed with, seen from the
/// folder above: "lib/libNAME.so", or "bin\NAME.dll".
std::string SharedLibraryPath(std::string_view name);

/// The module that holds the address stays loaded until the process ends, also when whoever loaded it lets it
/// go: for a library whose threads and callbacks may still be in it by then.
void KeepModuleLoaded(const void* addressInIt);

class DynamicLibraries {
public:
    virtual ~DynamicLibraries() = default;

    /// Loads the library at a full path (UTF-8); any other path is refused. Null and the reason in `error` on
    /// failure. A loaded library is never unloaded.
    virtual LibraryHandle LoadFromPath(const std::string& path, SystemError& error) = 0;
    /// Loads a library by its bare file name, in the system's restricted search order (never the working
    /// folder).
    virtual LibraryHandle LoadByName(const std::string& fileName, SystemError& error) = 0;
    /// The exported symbol, or null.
    virtual void* FindSymbol(LibraryHandle library, const char* symbol) = 0;
    /// Full path of a loaded library's file; empty when it cannot be told.
    virtual std::string PathOf(LibraryHandle library) = 0;
    /// The module that holds the address (its base address), or null.
    virtual const void* ModuleAt(const void* address) = 0;
    /// Full path of the module that holds the address; empty when there is none.
    virtual std::string PathOfModuleAt(const void* address) = 0;
    /// The system's text for the last failed load on this thread, UTF-8; empty when it has none.
    virtual std::string LastLoadFailure() = 0;
};

template <>
DynamicLibraries& SystemDefault<DynamicLibraries>();

}  // namespace platform
