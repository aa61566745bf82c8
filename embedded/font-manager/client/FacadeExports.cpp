// The facade, notifications, and what concerns the agent as a whole.
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

ErrorCode GetStatus(PluginFacadeRef facade, Json& status) {
    return Library::Get().Call(facade, method::kGetStatus, Json::object(), status);
}

/// Answers with what `read` takes from the agent's status.
template <class Value, class Read>
uint32_t AnswerFromStatus(PluginFacadeRef facade, Value* out, Read read) {
    return Guarded([&] {
        if (out == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json status;
        const ErrorCode code = GetStatus(facade, status);
        if (code == CoreErrorCodes::kSuccess)
            *out = read(status);
        return code;
    });
}

uint32_t GetStatusFlag(PluginFacadeRef facade, const char* member, bool* out) {
    return AnswerFromStatus(facade, out, [&](const Json& status) { return BoolMember(status, member); });
}

uint32_t GetStatusText(PluginFacadeRef facade, const char* member, CFStringRef* out) {
    return AnswerFromStatus(facade, out, [&](const Json& status) {
        return static_cast<CFStringRef>(cf::String(StringMember(status, member)).release());
    });
}

bool IsPermission(int32_t permission) {
    return permission >= kPermission_ActivateFonts && permission <= kPermission_ShowPostscriptReplacements;
}

}  // namespace

uint32_t GetPluginFacadeInstance(PluginFacadeRef* outFacade) {
    return Guarded([&] {
        if (outFacade == nullptr)
            return CoreErrorCodes::kNullPointer;
        *outFacade = Library::Get().Facade();
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t ResetPluginFacadeInstance() {
    return Guarded([] {
        Library::Get().DropFacade();
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t CleanUpOnShutdown() {
    return Guarded([] {
        Library::Get().CleanUp();
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t InitAppInstance(PluginFacadeRef facade, const char* hostAppName, const char* pluginVersion) {
    return Guarded([&] {
        if (hostAppName == nullptr || pluginVersion == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json status;
        return GetStatus(facade, status);
    });
}

uint32_t RegisterForNotifications(PluginFacadeRef facade, PluginNotificationCallback callback) {
    return Guarded([&] {
        if (callback == nullptr)
            return CoreErrorCodes::kNullPointer;
        const ErrorCode code = Library::Get().CheckFacade(facade);
        return code == CoreErrorCodes::kSuccess ? Library::Get().Listener().Add(callback) : code;
    });
}

uint32_t UnregisterForNotifications(PluginFacadeRef, PluginNotificationCallback callback) {
    return Guarded([&] {
        if (callback == nullptr)
            return CoreErrorCodes::kNullPointer;
        Library::Get().Listener().Remove(callback);  // also with a stale facade
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t GetIsCoreAgentProcessRunning(PluginFacadeRef facade, bool* outIsRunning) {
    return Guarded([&] {
        if (outIsRunning == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json status;
        *outIsRunning = GetStatus(facade, status) == CoreErrorCodes::kSuccess;
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t GetIsLoggedIn(PluginFacadeRef facade, bool* outIsLoggedIn) {
    return GetStatusFlag(facade, member::kLoggedIn, outIsLoggedIn);
}

uint32_t GetRunningStandalone(PluginFacadeRef facade, bool* outIsStandalone) {
    return GetStatusFlag(facade, member::kStandalone, outIsStandalone);
}

uint32_t GetIsGoogleWebFontsEnabled(PluginFacadeRef facade, bool* outIsEnabled) {
    return GetStatusFlag(facade, member::kGoogleWebFonts, outIsEnabled);
}

uint32_t SetGoogleWebFontsEnabled(PluginFacadeRef facade, bool isEnabled) {
    return Guarded([&] {
        Json ignored;
        return Library::Get().Call(facade, method::kSetGoogleWebFonts, {{member::kOn, isEnabled}}, ignored);
    });
}

uint32_t GetGoogleFonts(PluginFacadeRef facade, CFMutableArrayRef fonts) {
    return Guarded([&] {
        // None have come into the library yet, so there is nothing to append.
        return fonts == nullptr ? CoreErrorCodes::kNullPointer : Library::Get().CheckFacade(facade);
    });
}

uint32_t CanAccessGoogleFonts(PluginFacadeRef facade, bool* outCanAccess) {
    return Answer(facade, outCanAccess, false);
}

uint32_t GetDefaultLibraryName(PluginFacadeRef facade, CFStringRef* outNewName) {
    return GetStatusText(facade, member::kDefaultWorkgroup, outNewName);
}

uint32_t GetFontVaultPath(PluginFacadeRef facade, CFStringRef* outNewPath) {
    return GetStatusText(facade, member::kVault, outNewPath);
}

uint32_t GetRenderedPNGsDirectory(PluginFacadeRef facade, CFStringRef* outNewPath) {
    return GetStatusText(facade, member::kPreviewFolder, outNewPath);
}

uint32_t GetAreSchemaVersionsInSync(PluginFacadeRef facade, bool* outInSync) {
    return Guarded([&] {
        if (outInSync == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json status;
        const ErrorCode code = GetStatus(facade, status);
        if (code == CoreErrorCodes::kSuccess)
            *outInSync = IntegerMember(status, member::kSchemaVersion) == kSchemaVersion;
        return code;
    });
}

uint32_t GetPermission(PluginFacadeRef facade, int32_t permission, int32_t, bool* outIsGranted) {
    return MotherMayI(facade, permission, outIsGranted);
}

uint32_t MotherMayI(PluginFacadeRef facade, int32_t permission, bool* outIsPermitted) {
    // On a single machine everything is permitted to whoever is logged in.
    const uint32_t code = GetStatusFlag(facade, member::kLoggedIn, outIsPermitted);
    if (code == CoreErrorCodes::kSuccess && !IsPermission(permission))
        *outIsPermitted = false;
    return code;
}

uint32_t GetIsReplicationRunning(PluginFacadeRef facade, bool* outIsRunning) {
    return Answer(facade, outIsRunning, false);
}

uint32_t GetCurrentReplicationMode(PluginFacadeRef facade, int32_t* outMode) {
    return Answer(facade, outMode, static_cast<int32_t>(kReplicationMode_None));
}
