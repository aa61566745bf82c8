// The version pairs that a binary carries: "PrivateBuild", "InternalName", "HostAppMinimumVersion" and
// "FileVersion".
//
// Windows: the string table \StringFileInfo\040904b0\ of the version resource (US English, Unicode);
// "FileVersion" from the numbers beside it, unless they are all 0.
// Linux: the ELF section ".plugincore.version", a run of zero-terminated "Key=Value" strings
// (System V ABI, chapter 4, for the section headers). CMake's plugincore_version() writes it.
#pragma once

#include <optional>
#include <string>

#include "platform/Service.h"
#include "platform/SystemError.h"

namespace platform {

class VersionResources {
public:
    virtual ~VersionResources() = default;

    /// The value of `key` in the file at `path` (UTF-8). Nothing when the file cannot be read or carries no
    /// version information (`error` then says why) or no such key (`error` is 0). Any content is safe to
    /// read.
    virtual std::optional<std::string> FromFile(const std::string& path, const char* key,
                                                SystemError& error) = 0;
    /// The same for the loaded module that holds the address. `resourceSize` may be null; receives the size
    /// of all version information in bytes.
    virtual std::optional<std::string> FromModuleAt(const void* address, const char* key, SystemError& error,
                                                    size_t* resourceSize = nullptr) = 0;
};

template <>
VersionResources& SystemDefault<VersionResources>();

}  // namespace platform
