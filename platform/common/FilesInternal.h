// What the implementations of platform/Files.h share.
#pragma once

#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace platform {

// Temporary files stand beside what they will replace, as NAME + mark + six letters and digits. The mark
// keeps what a user puts there ("file.backup") from looking like one.
inline constexpr std::string_view kTemporaryMark = ".writing-";
inline constexpr size_t kTemporaryDigits = 6;

/// The folder that the file at `path` stands in.
std::string FolderOf(const std::string& path);

/// The system's own error for a file that is larger than can be taken.
extern const SystemError kFileTooLarge;

}  // namespace platform
