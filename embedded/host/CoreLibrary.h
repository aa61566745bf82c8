// The core, loaded at run time as a host plug-in loads it.
#pragma once

#include <string>

#include "PluginCoreInterface.h"

/// X(export): every function of the core.
#define PLUGINCORE_EXPORTS(X)           \
    X(InitializePluginCoreInterface)    \
    X(TerminatePluginCoreInterface)     \
    X(GetAPIVersion)                    \
    X(PluginIsEnabled)                  \
    X(IdleEvent)                        \
    X(ShouldShowLogin)                  \
    X(ShowNotLoggedInMessageBox)        \
    X(SetRebuildWorkgroupsMenuCallback) \
    X(GetSocketPort)                    \
    X(RegisterPlugPlug)                 \
    X(TryRegisterPlugPlug)              \
    X(ProcessPanelMessages)             \
    X(HandleCreateNewDocument)          \
    X(HandleOpenExistingDocument)       \
    X(HandleSaveDocument)               \
    X(HandleCloseDocument)              \
    X(SetPathForDocument)               \
    X(GetIDForDocument)                 \
    X(UpdateDocumentFontUsage)          \
    X(ActivateChosenFonts)              \
    X(InvokeResolveDialog)              \
    X(InvokeRestrictedFontsDialog)      \
    X(GetMenus)                         \
    X(CreateMenusFromJSONBuffer)        \
    X(HandleMenuSelection)              \
    X(InvokeCommandDialog)              \
    X(GetSettings)                      \
    X(SetPreference)

/// The functions by their names; all are set once Load succeeded.
struct CoreLibrary {
#define DECLARE_EXPORT(name) decltype(&::name) name = nullptr;
    PLUGINCORE_EXPORTS(DECLARE_EXPORT)
#undef DECLARE_EXPORT

    /// Loads the library at `path` (UTF-8). False with the reason in `error`.
    bool Load(const std::string& path, std::string& error);

    /// Where the library stands beside this program.
    static std::string DefaultPath();
};
