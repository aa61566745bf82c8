// The system debugger's output.
#pragma once

#include "platform/Service.h"

namespace platform {

class DebugOutput {
public:
    virtual ~DebugOutput() = default;

    /// Appends the text, UTF-8, as it is. Never fails visibly, never throws; any thread.
    /// Linux: appended to the file that the environment variable PLUGINCORE_DEBUG_OUTPUT names when the
    /// process first writes ("-" is standard error); dropped when it is unset. Windows: OutputDebugStringA.
    virtual void Write(const char* text) noexcept = 0;
    /// False when whatever is written would be dropped, so that nobody need compose it.
    virtual bool IsListening() noexcept = 0;
};

template <>
DebugOutput& SystemDefault<DebugOutput>();

}  // namespace platform
