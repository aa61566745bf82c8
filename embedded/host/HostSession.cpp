#include "HostSession.h"

#include "HostApplications.h"
#include "Output.h"

std::string PluginIdentifierFor(const std::string& app) {
    std::string identifier(kPluginIdentifierPrefix);
    for (const NamedHostApplication& each : kHostApplications) {
        if (app == each.hostApp)
            return identifier += each.identifierEnd;
    }
    return identifier += app;
}

HostSession::~HostSession() {
    if (mIsStarted)
        mCore.TerminatePluginCoreInterface();
}

int HostSession::Start(const HostOptions& options, Needs needs) {
    std::string error;
    if (!mCore.Load(options.corePath, error)) {
        PrintError("cannot load the core: " + error + "; name its library with --core");
        return exit_status::kFailed;
    }
    mIsStarted = true;
    const uint32_t code = mCore.InitializePluginCoreInterface(PluginIdentifierFor(options.app).c_str(), "");
    if (code == PLUGINCORE_INVALID_PARAM || code == PLUGINCORE_NO_PREFERENCES) {
        PrintError("the core cannot start: " + ResultName(code));
        return exit_status::kFailed;
    }
    if (code != PLUGINCORE_SUCCESS) {
        PrintError(
            "the font manager cannot be reached; start it with 'Pellwick serve', or run 'Pellwick "
            "launch-info' "
            "once so that it is started for you");
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
        return "nobody is logged in to the font manager; log in with 'Pellwick login NAME'";
    return "the plug-in cannot be used: it may be switched off ('plugincore-host settings EnablePlugin 1' "
           "switches it on), "
           "its framework or its preferences may be out of reach, or there may be no workgroup ('Pellwick "
           "workgroup list'); "
           "PLUGINCORE_DEBUG_OUTPUT=- shows which";
}
