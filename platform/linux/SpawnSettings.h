// How programs of ours are started, whatever the process that starts them is like.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

namespace platform {

/// No streams and no descriptors but one, a session of its own, and no signals blocked.
class SpawnSettings {
public:
    /// The program gets `descriptor`, under `number`, which is the first behind those of the streams. The
    /// signals are handled as in a program that has made no choice.
    SpawnSettings(int descriptor, int number, const sigset_t& defaultSignals) {
        posix_spawn_file_actions_init(&mActions);
        posix_spawnattr_init(&mAttributes);
        // First of all: a host without standard streams may have been given one of their numbers for it.
        posix_spawn_file_actions_adddup2(&mActions, descriptor, number);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&mActions, stream, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&mActions, number + 1);
        posix_spawnattr_setflags(
            &mAttributes,
            static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&mAttributes, &none);
        posix_spawnattr_setsigdefault(&mAttributes, &defaultSignals);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&mActions);
        posix_spawnattr_destroy(&mAttributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// The system's number of what went wrong; 0 when `process` runs.
    int Spawn(const char* program, char* const* arguments, char* const* environment, pid_t& process) const {
        return posix_spawn(&process, program, &mActions, &mAttributes, arguments, environment);
    }

private:
    posix_spawn_file_actions_t mActions{};
    posix_spawnattr_t mAttributes{};
};

}  // namespace platform
