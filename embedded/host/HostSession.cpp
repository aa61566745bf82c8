#include "HostSession.h"

#include <algorithm>

#include "ForeignHome.h"
#include "HostApplications.h"
#include "Output.h"
#include "ScopedPresenter.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

std::string PluginIdentifierFor(const std::string& app) {
    std::string identifier(kPluginIdentifierPrefix);
    const auto host = std::find_if(std::begin(kHostApplications), std::end(kHostApplications),
                                   [&](const HostApplication& each) { return each.name == app; });
    return identifier += host != std::end(kHostApplications) ? host->identifierEnd : app;
}

std::string PellwickCommand(const std::string& words) {
    const std::string folder = platform::FolderPart(CoreLibrary::DefaultPath());
    for (const char* place : {"vantorix", "../lib/vantorix"}) {
        const auto program = (platform::Utf8Path(folder) / place).lexically_normal() /
                             platform::Utf8Path(platform::ProgramFileName("Pellwick"));
        if (platform::IsExistingFile(platform::Utf8Text(program)))
            return "\"" + platform::Utf8Text(program) + "\" " + words;
    }
    return "Pellwick " + words;
}

HostSession::~HostSession() {
    if (mIsStarted)
        mCore.TerminatePluginCoreInterface();
}

int HostSession::Start(const HostOptions& options, Needs needs) {
    std::string error;
    if (const std::string refusal = command_line::RefusalOfForeignHome(); !refusal.empty()) {
        PrintError(refusal);
        return exit_status::kFailed;
    }
    if (!mCore.Load(options.corePath, error)) {
        PrintError("cannot load the core: " + error + "; name its library with --core");
        return exit_status::kFailed;
    }
    mIsStarted = true;
    const ScopedPresenter presenter(options.answers);
    const uint32_t code = mCore.InitializePluginCoreInterface(PluginIdentifierFor(options.app).c_str(), "");
    if (code == PLUGINCORE_INVALID_PARAM || code == PLUGINCORE_NO_PREFERENCES) {
        PrintError("the core cannot start: " + ResultName(code));
        return exit_status::kFailed;
    }
    if (code != PLUGINCORE_SUCCESS) {
        PrintError("the font manager cannot be reached; start it with: " + PellwickCommand("serve") +
                   ", or have it started for you from now on: " + PellwickCommand("launch-info"));
        return exit_status::kFontManagerUnreachable;
    }
    bool isEnabled = false;
    if (mCore.PluginIsEnabled(true, &isEnabled) == PLUGINCORE_SUCCESS || needs == Needs::kPreferencesAlone)
        return exit_status::kDone;
    PrintError(WhyNotEnabled());
    return exit_status::kFontManagerUnreachable;
}

std::string HostSession::WhyNotEnabled() const {
    bool showLogin = false;
    mCore.ShouldShowLogin(&showLogin);
    if (showLogin)
        return "nobody is logged in to the font manager; log in with: " + PellwickCommand("login NAME");
    return "the plug-in cannot be used: it may be switched off ('plugincore-host settings EnablePlugin 1' "
           "switches it on), "
           "its framework or its preferences may be out of reach, or there may be no workgroup (" +
           PellwickCommand("workgroup list") + "); PLUGINCORE_DEBUG_OUTPUT=- shows which";
}
