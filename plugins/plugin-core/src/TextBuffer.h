// Text results in the caller's buffers.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <string>

#include "ErrorCodes.h"

/// Copies the text with its terminating zero when its length is smaller than *size (bytes); otherwise the
/// length goes to *size and kIndexOutOfRange is returned. A retry with exactly that size is refused again.
[[nodiscard]] ErrorCode CopyTextToBuffer(const std::string& text, char* buffer, size_t* size);

/// The same for an array of font records as JSON text. A null array writes nothing and is success.
[[nodiscard]] ErrorCode CopyFontsToBuffer(CFArrayRef fonts, char* buffer, size_t* size);
