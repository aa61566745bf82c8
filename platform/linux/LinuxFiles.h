// What the implementations of platform/Files.h, FileLock.h and FileWriter.h share on Linux.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Files.h"
#include "platform/SystemError.h"

namespace platform {

/// Reads up to `size` bytes at `offset`; less only at the end of the file.
SystemError ReadAt(int descriptor, uint64_t offset, void* buffer, size_t size, size_t& bytesRead);
/// Writes the whole content, however often the system takes a part of it only.
SystemError WriteAll(int descriptor, std::string_view content);
/// Has what was written reach the disk.
SystemError Flush(int descriptor);
/// Has what was renamed in the folder reach the disk. Some file systems cannot, and need not, be told to.
SystemError FlushFolder(const std::string& folder);
/// Of what stands at the name in the folder, as statx takes them; links are not followed.
SystemError IdentityAt(int folder, const char* name, int flags, FileIdentity& identity);

}  // namespace platform
