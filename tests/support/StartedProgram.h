// How a system starts a program for a test, ends it and has it stand still.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/Processes.h"

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

/// A program, and our ends of the pipes to its standard streams. It inherits nothing else.
struct StartedProgram {
    /// Starts the program at the full path `command[0]`. Throws when that fails.
    explicit StartedProgram(const std::vector<std::string>& command);
    /// Waits for its end, once; its exit status.
    int Collect() const;

    Stream input, output, errors;
    platform::ProcessId id = 0;
    std::shared_ptr<void> handle;  ///< on Windows; while it is open, no other process gets the identifier
};

// By force, without waiting until it is gone. A process that has ended is left alone.
void KillProcess(platform::ProcessId id);
void SuspendProcess(platform::ProcessId id);
void ResumeProcess(platform::ProcessId id);
