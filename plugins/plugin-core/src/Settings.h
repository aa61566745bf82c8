// The preferences as the exports show and take them.
#pragma once

#include <cstddef>

#include "ErrorCodes.h"

namespace Settings {

/// Stores the default values, unless that was done before for this host application and plug-in.
void RegisterDefaults();

/// Null pointers are answered as the exports do.
ErrorCode GetSettings(char* buffer, const size_t* bufferSize);
ErrorCode SetPreference(const char* key, const char* value);

}  // namespace Settings
