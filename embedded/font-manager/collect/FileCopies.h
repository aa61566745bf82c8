// Copies of files in a folder that others will open, on systems that nobody knows.
#pragma once

#include <string>

#include "platform/SystemError.h"

namespace pellwick {

/// The name of a file as every usual system takes it: no path, nothing unprintable, no name of a device, not
/// hidden, at most 255 bytes with the extension kept. Never empty.
std::string SafeFileName(const std::string& name);

/// "NAME.ttf", "NAME 2.ttf", "NAME 3.ttf" and so on, at most 255 bytes.
std::string NumberedName(const std::string& name, int number);

/// The path of the file of that name.
std::string PathInFolder(const std::string& folder, const std::string& name);

/// Copies the file into an existing folder, safely as platform::CopyToNewFile does. What stands there is never
/// replaced: one of the same content counts as the copy, beside another the copy gets a number. `copy`: its
/// name.
platform::SystemError CopyIntoFolder(const std::string& source, const std::string& folder,
                                     const std::string& name, std::string& copy);

}  // namespace pellwick
