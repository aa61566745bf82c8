// The exports: thin shells that check pointers, keep exceptions in, and call inward.

#include "PluginCoreInterface.h"

#include <exception>
#include <new>
#include <string>

#include "CommandDialog.h"
#include "CommonFunctionality.h"
#include "DocumentEvents.h"
#include "FailureReport.h"
#include "FontDialogs.h"
#include "FontManagerInterface.h"
#include "GeneralInterface.h"
#include "HostMenuJSON.h"
#include "HostPatience.h"
#include "MarquellGlobals.h"
#include "Menus.h"
#include "PanelManager.h"
#include "Settings.h"
#include "Startup.h"
#include "StringConversion.h"
#include "TraceLog.h"

static_assert(PLUGINCORE_INVALID_PARAM == CoreErrorCodes::kInvalidParam);
static_assert(PLUGINCORE_NULL_POINTER == CoreErrorCodes::kNullPointer);
static_assert(PLUGINCORE_OUT_OF_MEMORY == CoreErrorCodes::kOutOfMemory);
static_assert(PLUGINCORE_NOT_FOUND == CoreErrorCodes::kNotFound);
static_assert(PLUGINCORE_NOT_IMPLEMENTED == CoreErrorCodes::kNotImplemented);
static_assert(PLUGINCORE_INDEX_OUT_OF_RANGE == CoreErrorCodes::kIndexOutOfRange);
static_assert(PLUGINCORE_NOT_INITIALIZED == CoreErrorCodes::kNotInitialized);
static_assert(PLUGINCORE_UNKNOWN_ERROR == CoreErrorCodes::kUnknownError);

namespace {

/// Runs a part of an export; an exception becomes a code and a log line.
template <class Body>
uint32_t GuardedPart(const char* name, Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        LogMessage(0, "Exception thrown in %s(): out of memory", name);
        return CoreErrorCodes::kOutOfMemory;
    } catch (const std::exception& exception) {
        LogMessage(0, "Exception thrown in %s(): %s", name, exception.what());
    } catch (...) {
        LogMessage(0, "Exception thrown in %s()", name);
    }
    return CoreErrorCodes::kUnknownError;
}

/// Runs an export's body, while the host waits.
template <class Body>
uint32_t Guarded(const char* name, Body&& body) noexcept {
    const HostPatience::Call call;
    return GuardedPart(name, body);
}

template <class... Pointers>
bool AnyNull(Pointers... pointers) {
    return ((pointers == nullptr) || ...);
}

/// The answer to a null pointer, traced like the call that it stops.
uint32_t RefuseNull(const char* name, const char* firstArgument) {
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting PluginCoreInterface::%s() with result %d", name,
                       static_cast<int>(CoreErrorCodes::kInvalidParam));
        },
        "Entering PluginCoreInterface::%s('%s', ...)", name, OrNull(firstArgument));
    return CoreErrorCodes::kInvalidParam;
}

/// Reports a panel manager's failure and hands it on. The line is a number that support staff look for in
/// logs; it stays when this file changes.
uint32_t Reported(uint32_t code, const char* expression, int line) {
    if (code != CoreErrorCodes::kSuccess)
        ReportFailure("PluginInterface", CheckLocation{expression, __FILE__, line}, code);
    return code;
}

std::string TextOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

// ---- Life cycle

uint32_t InitializePluginCoreInterface(const char* pluginIdentifier, const char* versionPrefixRequired) {
    return Guarded(__func__, [&]() -> uint32_t {
        return InitializeFromIdentifier(pluginIdentifier, versionPrefixRequired);
    });
}

uint32_t TerminatePluginCoreInterface() {
    const HostPatience::Call call;  // one for all parts
    // Guarded apart: whatever happens to the documents, the font manager is let go.
    GuardedPart(__func__, []() -> uint32_t {
        FontManagerInterface::GetSharedInstance().OnHostAppQuitting();
        DocumentEvents::CloseAllDocuments();
        return 0;
    });
    GuardedPart(__func__, []() -> uint32_t {
        FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
        return 0;
    });
    GuardedPart(__func__, []() -> uint32_t {
        PanelManager::GetSharedInstance().Close();
        return 0;
    });
    return CoreErrorCodes::kSuccess;
}

uint32_t GetAPIVersion(uint32_t* version, uint32_t requestedVersion) {
    return Guarded(__func__, [&]() -> uint32_t {
        if (version == nullptr)
            return CoreErrorCodes::kInvalidParam;
        *version = PLUGINCORE_INTERFACE_VERSION;
        if (requestedVersion == 0 || requestedVersion == PLUGINCORE_INTERFACE_VERSION)
            return CoreErrorCodes::kSuccess;
        MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(message_boxes::kFontManagerUnreachable);
        return CoreErrorCodes::kNotImplemented;
    });
}

uint32_t PluginIsEnabled(bool allowDialogs, bool* isEnabled) {
    return Guarded(__func__, [&]() -> uint32_t {
        return isEnabled != nullptr ? CheckPluginIsEnabled(allowDialogs, *isEnabled)
                                    : CoreErrorCodes::kInvalidParam;
    });
}

uint32_t IdleEvent() {
    Guarded(__func__, []() -> uint32_t { return FontManagerInterface::GetSharedInstance().OnIdle(); });
    return CoreErrorCodes::kSuccess;
}

void ShouldShowLogin(bool* showLogin) {
    Guarded(__func__, [&]() -> uint32_t {
        if (showLogin == nullptr)
            return 0;
        *showLogin = true;
        *showLogin = !FontManagerInterface::GetSharedInstance().IsLoggedIn();
        return 0;
    });
}

uint32_t ShowNotLoggedInMessageBox() {
    Guarded(__func__, []() -> uint32_t {
        CommonFunctionality::ShowNotLoggedInMessage();
        return 0;
    });
    return CoreErrorCodes::kSuccess;
}

void SetRebuildWorkgroupsMenuCallback(void (*callback)()) {
    Guarded(__func__, [&]() -> uint32_t {
        if (GeneralInterface* hostApp = CommonFunctionality::SharedHostAppInterface())
            hostApp->SetRebuildWorkgroupsMenuCallback(callback);
        return 0;
    });
}

// ---- Panels

uint32_t GetSocketPort(uint32_t* port) {
    return Guarded(__func__, [&]() -> uint32_t {
        if (port == nullptr)
            return CoreErrorCodes::kInvalidParam;
        *port = PanelManager::GetSharedInstance().GetSocketPort();
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t RegisterPlugPlug(void* plugPlug) {
    return Guarded(__func__, [&]() -> uint32_t {
        return Reported(PanelManager::GetSharedInstance().RegisterPlugPlug(plugPlug),
                        "PanelManager::GetSharedInstance().RegisterPlugPlug(plugPlug)", 1995);
    });
}

uint32_t TryRegisterPlugPlug(void* plugPlug) {
    return Guarded(__func__, [&]() -> uint32_t {
        if (plugPlug == nullptr)
            return CoreErrorCodes::kNullPointer;
        return PanelManager::GetSharedInstance().TryRegisterPlugPlug(plugPlug)
                   ? CoreErrorCodes::kSuccess
                   : CoreErrorCodes::kNotInitialized;
    });
}

uint32_t ProcessPanelMessages(bool closeListeningSocket) {
    return Guarded(__func__, [&]() -> uint32_t {
        PanelManager& panels = PanelManager::GetSharedInstance();
        if (const uint32_t code =
                Reported(panels.SelectSocket(closeListeningSocket),
                         "PanelManager::GetSharedInstance().SelectSocket(closeListeningSocket)", 2037))
            return code;
        return Reported(panels.PopNotifications(), "PanelManager::GetSharedInstance().PopNotifications()",
                        2038);
    });
}

// ---- Document events

uint32_t HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        if (AnyNull(idBuffer, idBufferSize))
            return RefuseNull(name, idBuffer != nullptr ? "" : nullptr);
        return DocumentEvents::HandleCreateNewDocument(idBuffer, idBufferSize);
    });
}

uint32_t HandleOpenExistingDocument(const char* path, const char* fontsJSON, char* bufferA, size_t* sizeA,
                                    char* bufferB, size_t* sizeB, int* numFontsActivated) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        if (AnyNull(path, bufferA, sizeA, bufferB, sizeB, numFontsActivated))
            return RefuseNull(name, path);
        return DocumentEvents::HandleOpenExistingDocument(path, TextOrEmpty(fontsJSON), bufferA, sizeA,
                                                          bufferB, sizeB, numFontsActivated);
    });
}

uint32_t HandleSaveDocument(const char* path, const char* hint) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return path != nullptr ? DocumentEvents::HandleSaveDocument(path, TextOrEmpty(hint))
                               : RefuseNull(name, path);
    });
}

uint32_t HandleCloseDocument(const char* path, const char* hint) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return path != nullptr ? DocumentEvents::HandleCloseDocument(path, TextOrEmpty(hint))
                               : RefuseNull(name, path);
    });
}

uint32_t SetPathForDocument(const char* path, const char* documentId) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return AnyNull(path, documentId) ? RefuseNull(name, path)
                                         : DocumentEvents::SetPathForDocument(path, documentId);
    });
}

uint32_t GetIDForDocument(const char* path, char* idBuffer, size_t* idBufferSize) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return AnyNull(path, idBuffer, idBufferSize)
                   ? RefuseNull(name, path)
                   : DocumentEvents::GetIDForDocument(path, idBuffer, idBufferSize);
    });
}

uint32_t UpdateDocumentFontUsage(const char* document, const char* fontUsage) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return AnyNull(document, fontUsage) ? RefuseNull(name, document)
                                            : DocumentEvents::UpdateDocumentFontUsage(document, fontUsage);
    });
}

uint32_t ActivateChosenFonts(const char* path, const char* fontsJSON, uint32_t* outCount) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return AnyNull(path, outCount)
                   ? RefuseNull(name, path)
                   : DocumentEvents::ActivateChosenFonts(path, TextOrEmpty(fontsJSON), outCount);
    });
}

uint32_t InvokeResolveDialog(bool onlyIfResolvable, const char* fontsJSON, char* resultBuffer,
                             size_t* resultSize, char* skippedBuffer, size_t* skippedSize) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        if (AnyNull(fontsJSON, resultBuffer, resultSize, skippedBuffer, skippedSize))
            return RefuseNull(name, fontsJSON);
        return FontDialogs::InvokeResolveDialog(onlyIfResolvable, fontsJSON, resultBuffer, resultSize,
                                                skippedBuffer, skippedSize);
    });
}

uint32_t InvokeRestrictedFontsDialog(bool onlyNew, const char* fontsJSON) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return fontsJSON != nullptr ? FontDialogs::InvokeRestrictedFontsDialog(onlyNew, fontsJSON)
                                    : RefuseNull(name, fontsJSON);
    });
}

// ---- Menus

uint32_t GetMenus(const char* document, char* buffer, size_t* size) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        return AnyNull(buffer, size) ? RefuseNull(name, document) : Menus::GetMenus(document, buffer, size);
    });
}

uint32_t CreateMenusFromJSONBuffer(const char* menusJSON, PluginCoreMenuItemCallback createItem,
                                   void* context) {
    constexpr auto name = __func__;
    return Guarded(name, [&]() -> uint32_t {
        if (menusJSON == nullptr || createItem == nullptr)
            return RefuseNull(name, menusJSON);
        return PluginCoreInterface::CreateMenusFromJSONBuffer(menusJSON, createItem, context);
    });
}

uint32_t HandleMenuSelection(const char* document, const char* menusJSON, const char* selectedID,
                             const char* extra) {
    Guarded(__func__, [&]() -> uint32_t {
        return Menus::HandleMenuSelection(TextOrEmpty(document), TextOrEmpty(menusJSON), selectedID,
                                          TextOrEmpty(extra));
    });
    return CoreErrorCodes::kSuccess;
}

uint32_t InvokeCommandDialog(const char* document) {
    return Guarded(__func__, [&]() -> uint32_t { return CommandDialog::InvokeCommandDialog(document); });
}

// ---- Settings

uint32_t GetSettings(char* buffer, size_t* bufferSize) {
    return Guarded(__func__, [&]() -> uint32_t { return Settings::GetSettings(buffer, bufferSize); });
}

uint32_t SetPreference(const char* key, const char* value) {
    return Guarded(__func__, [&]() -> uint32_t { return Settings::SetPreference(key, value); });
}
