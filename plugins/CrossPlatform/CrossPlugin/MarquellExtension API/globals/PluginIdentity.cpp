#include "PluginIdentity.h"

#include "StringConversion.h"
#include "TraceLog.h"
#include "platform/DynamicLibrary.h"
#include "platform/VersionResource.h"

namespace {

constexpr char kBundleIdentifierPrefix[] = "com.vantorix.";
constexpr char kUnknownVersion[] = "x.x.x.x";
constexpr size_t kLongestModulePath = 4096;
constexpr size_t kLongestValue = 1023;  // what version resources are read into, without its final zero
// GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, as they stand in the
// trace.
constexpr unsigned kModuleQueryFlags = 0x4 | 0x2;

const char kAddressInThisModule = 0;

bool BeginsWith(const std::string& text, const char* prefix) {
    return text.rfind(prefix, 0) == 0;
}

std::optional<std::string> NonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

bool FindThisModule() {
    const void* module = platform::Current<platform::DynamicLibraries>().ModuleAt(&kAddressInThisModule);
    if (module != nullptr) {
        LogMessage(0, "GetModuleHandleEx returned module handle 0x%08x", TraceAddress(module));
        return true;
    }
    const int error = platform::LastSystemError().code;
    LogMessage(0, "Error %d (0x%08x) in call to GetModuleHandleEx(0x%08x, 0x%08x, 0x%08x)", error,
               static_cast<unsigned>(error), kModuleQueryFlags, TraceAddress(&kAddressInThisModule),
               TraceAddress(&module));
    return false;
}

/// Empty when it is too long to be used.
std::string PathOfThisModule() {
    std::string path = platform::Current<platform::DynamicLibraries>().PathOfModuleAt(&kAddressInThisModule);
    if (Utf16Length(path) >= kLongestModulePath) {
        LogMessage(0, "GetLastError() returned %d after GetModuleFileNameW()",
                   platform::LastSystemError().code);
        return {};
    }
    LogMessage(0, "Plugin path is '%s'.", path.c_str());
    return path;
}

PluginIdentity IdentifyByThisModule() {
    PluginIdentity identity;
    if (!FindThisModule()) {
        identity.pluginVersion = kUnknownVersion;
        return identity;
    }
    identity.pluginPath = PathOfThisModule();
    identity.pluginVersion = GetModuleVersionString("PrivateBuild");
    identity.hostAppMinimumVersion = GetModuleVersionString("HostAppMinimumVersion");
    identity.hostApp = NonEmpty(GetModuleVersionString("InternalName"));
    // The library's own resource names no host.
    if (identity.hostApp && BeginsWith(*identity.hostApp, "PluginCore"))
        identity.hostApp.reset();
    return identity;
}

}  // namespace

std::string GetFileVersionString(const std::string& path, const char* key) {
    platform::SystemError error;
    auto value = platform::Current<platform::VersionResources>().FromFile(path, key, error);
    if (error)
        LogMessage(0, "GetFileVersionInfoA('%s', ...) returned error code 0x%08x (%d)", path.c_str(),
                   static_cast<unsigned>(error.code), error.code);
    return value.value_or("").substr(0, kLongestValue);
}

std::string GetModuleVersionString(const char* key) {
    platform::SystemError error;
    return platform::Current<platform::VersionResources>()
        .FromModuleAt(&kAddressInThisModule, key, error)
        .value_or("")
        .substr(0, kLongestValue);
}

PluginIdentity IdentifyPlugin(const std::string& identifierOrPath) {
    if (BeginsWith(identifierOrPath, kBundleIdentifierPrefix))
        return IdentifyByThisModule();
    PluginIdentity identity;
    identity.pluginPath = identifierOrPath;
    identity.pluginVersion = GetFileVersionString(identifierOrPath, "PrivateBuild");
    identity.hostAppMinimumVersion = GetFileVersionString(identifierOrPath, "HostAppMinimumVersion");
    identity.hostApp = NonEmpty(GetFileVersionString(identifierOrPath, "InternalName"));
    return identity;
}
