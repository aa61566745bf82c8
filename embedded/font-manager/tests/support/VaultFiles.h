// Files in a vault, without an agent that puts them there.
#pragma once

#include "activation/FontVault.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "scan/Checksum.h"

namespace pellwick::test {

inline std::string ChecksumOf(const std::string& content) {
    Checksum checksum;
    checksum.Append(content);
    return checksum.Digits();
}

/// Writes the content where the vault has that file, whatever its checksum.
inline bool PutIntoVault(const FontVault& vault, const FontFile& file, const std::string& content) {
    const std::string path = vault.PathOf(file);
    return !platform::MakeFolders(platform::Utf8Text(platform::Utf8Path(path).parent_path())) &&
           !platform::WriteWholeFile(path, content);
}

}  // namespace pellwick::test
