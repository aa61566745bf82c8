// Finding the font-manager agent "Pellwick": the one that runs, or the one that the launch-info file names,
// which is then started.
//
// The launch-info file "com.vantorix.Pellwick-LaunchInfo.conf" stands in the sub-folder "Vantorix" of the
// all-users application-data folder or of the user's own. Text, one "key=value" a line, lines end in CR, LF
// or the end of the text; "pellwick.path" is the full path of the agent's executable, "pellwick.args" its
// arguments, which may be empty.
#pragma once

#include <string>

#include "ErrorCodes.h"
#include "platform/FileTrust.h"
#include "platform/Folders.h"

/// Main thread. Paths are UTF-8; folders that are given out end in a path separator.
namespace AgentLauncher {

/// The library that stands beside the agent, without its extension.
inline constexpr char kInterfaceLibrary[] = "TarnwickPluginInterfaceX64";

/// What a launch-info file says.
struct LaunchInfo {
    std::string path;
    std::string arguments;
    platform::JudgedFile program;  ///< that for all users: the agent, held as it was judged
};

/// The folder of the first running process whose executable is named `name`, ignoring case; a name without a
/// dot also stands for `name`.exe. CoreErrorCodes::kUnknownError when there is none, the system's number when the
/// processes cannot be listed.
[[nodiscard]] ErrorCode GetPathToRunningProcessExe(const std::string& name, std::string& folder);

/// Reads the launch-info file in one system folder. True when it names an agent that is there; of that for all users,
/// when nobody but this user and administrators could have put there the file, the agent, and its library.
[[nodiscard]] bool GetLaunchInfoFileValues(platform::KnownFolder folder, LaunchInfo& info);

/// Starts the agent and waits up to 2000 milliseconds for it to be ready. `folder` may be null; receives the
/// agent's folder. GZephyrinConfig::kAgentNotFound when none could be started.
[[nodiscard]] ErrorCode FindAndLaunchPellwick(std::string* folder);

/// The value of `key` in the text of a launch-info file; empty when there is none.
std::string LaunchInfoValue(const std::string& content, const std::string& key);

}  // namespace AgentLauncher
