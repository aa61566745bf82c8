// The core, started for a host application and ended with it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "CoreLibrary.h"

struct HostOptions {
    std::string app;       ///< what the process calls itself
    std::string corePath;  ///< the core's library
};

/// The bundle identifier of the plug-in that serves the application.
std::string PluginIdentifierFor(const std::string& app);

class HostSession {
public:
    HostSession() = default;
    /// Ends the core if it was started.
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    /// Loads and starts the core. exit_status::kDone, or what the program ends with after an error line.
    int Start(const HostOptions& options);
    const CoreLibrary& Core() const { return mCore; }

private:
    CoreLibrary mCore;
    bool mIsStarted = false;
};
