// What the implementations of platform/Files.h and platform/FileWriter.h share on Linux.
#pragma once

#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace platform {

/// Writes the whole content, however often the system takes a part of it only.
SystemError WriteAll(int descriptor, std::string_view content);
/// Has what was written reach the disk.
SystemError Flush(int descriptor);
/// Has what was renamed in the folder reach the disk. Some file systems cannot, and need not, be told to.
SystemError FlushFolder(const std::string& folder);

}  // namespace platform
