// The core, started for a host application and ended with it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "CoreLibrary.h"

struct HostOptions {
    std::string app;        ///< a host application's name; the process calls itself so
    std::string corePath;   ///< the core's library
    std::string answers{};  ///< a file of answers to the questions that dialogs ask, full path; may be empty
};

/// The bundle identifier of the plug-in that serves the application.
std::string PluginIdentifierFor(const std::string& app);

/// What to type for that command of the font manager that comes with this program.
std::string PellwickCommand(const std::string& words);

class HostSession {
public:
    HostSession() = default;
    /// Ends the core if it was started.
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    /// What of the core a command works with.
    enum class Needs { kPlugin, kPreferencesAlone };

    /// Loads and starts the core. exit_status::kDone, or what the program ends with after an error line.
    int Start(const HostOptions& options, Needs needs = Needs::kPlugin);
    const CoreLibrary& Core() const { return mCore; }

private:
    std::string WhyNotEnabled() const;

    CoreLibrary mCore;
    bool mIsStarted = false;
};
