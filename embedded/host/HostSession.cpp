#include "HostSession.h"

#include <array>

#include "Output.h"

std::string PluginIdentifierFor(const std::string& app) {
    struct Entry {
        const char* app;
        const char* suffix;
    };
    constexpr std::array<Entry, 8> kIdentifiers{{{"Illustrator2023", "AI27"},
                                                 {"Illustrator2024", "AI28"},
                                                 {"Illustrator2025", "AI29"},
                                                 {"Illustrator2026", "AI30"},
                                                 {"AfterEffects2023", "AE230"},
                                                 {"AfterEffects2024", "AE240"},
                                                 {"AfterEffects2025", "AE250"},
                                                 {"AfterEffects2026", "AE260"}}};
    const std::string prefix = "com.vantorix.AutoActivationPlugin.";
    for (const Entry& entry : kIdentifiers) {
        if (app == entry.app)
            return prefix + entry.suffix;
    }
    return prefix + app;
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
