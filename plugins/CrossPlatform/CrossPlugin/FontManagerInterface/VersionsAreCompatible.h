#pragma once

#include <string>

/// Whether a plug-in and an interface library of these versions can work together: the first three components
/// must agree, as far as both have them. An empty version and "1.0.0.0", which development builds carry, go
/// with any.
bool VersionsAreCompatible(const std::string& pluginVersion, const std::string& interfaceVersion);
