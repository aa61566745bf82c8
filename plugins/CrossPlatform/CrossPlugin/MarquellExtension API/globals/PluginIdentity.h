// Who the calling plug-in is, read from its bundle identifier or from its file.
#pragma once

#include <optional>
#include <string>

struct PluginIdentity {
    std::optional<std::string> hostApp;
    std::string pluginVersion;
    std::string hostAppMinimumVersion;
    std::string pluginPath;  ///< UTF-8
};

/// `identifierOrPath`: a bundle identifier that begins "com.vantorix.", for a plug-in that carries this
/// library, or the path of the calling plug-in's file.
PluginIdentity IdentifyPlugin(const std::string& identifierOrPath);

/// The version value ("PrivateBuild", "InternalName", "HostAppMinimumVersion") that the file at `path`
/// carries; empty when it has none.
std::string GetFileVersionString(const std::string& path, const char* key);
/// The same for the module that this code is part of.
std::string GetModuleVersionString(const char* key);
