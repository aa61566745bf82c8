// Starting up, and whether the plug-in can work.
#pragma once

#include "ErrorCodes.h"

/// What InitializePluginCoreInterface does; pointers may be null.
ErrorCode InitializeFromIdentifier(const char* pluginIdentifier, const char* versionPrefixRequired);

/// What PluginIsEnabled does.
ErrorCode CheckPluginIsEnabled(bool allowDialogs, bool& isEnabled);
