// The line to the process that wants to show something.
#pragma once

#include <glib.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>

/// Main thread. This process ends when the other end of the line closes.
class HostLine {
public:
    using Message = nlohmann::json;

    HostLine();
    HostLine(const HostLine&) = delete;
    HostLine& operator=(const HostLine&) = delete;

    void Send(const Message& message);
    /// Waits for a message.
    Message Read();
    /// From now on messages go to `take` while the main loop runs, and the host is told every second that this process
    /// lives, and whether anybody has used its windows.
    void Listen(std::function<void(const Message&)> take);

private:
    static gboolean TakeInput(GIOChannel* channel, GIOCondition condition, gpointer self);
    static gboolean TellAlive(gpointer self);

    GIOChannel* const mChannel;
    std::function<void(const Message&)> mTake;
};
