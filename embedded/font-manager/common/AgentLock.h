// The lock that the running agent holds, and what it tells of the agent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "common/Locations.h"
#include "platform/FileLock.h"
#include "platform/Processes.h"

namespace pellwick {

/// The process that holds the lock.
struct AgentHolder {
    platform::ProcessId process = 0;  ///< 0 where it has not said so, or not truly
    uint64_t startTime = 0;
};

/// Writes into the lock that this process holds it, so that it can be found when it cannot be reached.
platform::SystemError NoteAgentHolder(platform::FileLock& lock);

/// Who holds the agent's lock now; nothing when nobody does.
std::optional<AgentHolder> FindAgentHolder(const Locations& locations);

/// What people are told of an agent that holds the lock and does not answer, and what to do about it.
std::string UnreachableAgentText(const Locations& locations, const AgentHolder& holder);

}  // namespace pellwick
