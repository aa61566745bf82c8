#include "common/AgentLock.h"
#include "platform/Files.h"

#include <sstream>

namespace pellwick {
namespace {

constexpr uint64_t kNoteSizeLimit = 100;

AgentHolder ReadNote(const std::string& path) {
    std::string text;
    AgentHolder holder;
    if (platform::ReadWholeFile(path, text, kNoteSizeLimit))
        return {};
    std::istringstream note(text);
    if (!(note >> holder.process >> holder.startTime))
        return {};
    return holder;
}

}  // namespace

platform::SystemError NoteAgentHolder(platform::FileLock& lock) {
    const platform::ProcessId process = platform::CurrentProcessId();
    return lock.Write(std::to_string(process) + " " + std::to_string(platform::ProcessStartTime(process)) +
                      "\n");
}

std::optional<AgentHolder> FindAgentHolder(const Locations& locations) {
    if (!platform::FileLock::IsHeldByAnyone(locations.lockPath))
        return std::nullopt;
    const AgentHolder holder = ReadNote(locations.lockPath);
    // An older version notes nothing, and leaves what an agent before it noted.
    const bool isTrue =
        platform::StateOfProcess(holder.process, holder.startTime) == platform::ProcessState::kAlive;
    return isTrue ? holder : AgentHolder{};
}

std::string UnreachableAgentText(const Locations& locations, const AgentHolder& holder) {
    if (holder.process == 0)
        return "an agent that cannot be reached holds " + locations.lockPath +
               "; end the process that has this file open, and try again";
    return "the agent, process " + std::to_string(holder.process) +
           ", cannot be reached now; try again in a few seconds, or end it with \"Pellwick stop\"";
}

}  // namespace pellwick
