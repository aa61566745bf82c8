#include "platform/Environment.h"

#include <unistd.h>

#include <cctype>
#include <cstdlib>

namespace platform {

std::string EnvironmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

void SetEnvironment(const char* name, const std::string& value) {
    if (value.empty())
        unsetenv(name);
    else
        setenv(name, value.c_str(), 1);
}

bool IsTerminal(StandardStream stream) {
    switch (stream) {
        case StandardStream::kInput:
            return isatty(STDIN_FILENO) != 0;
        case StandardStream::kOutput:
            return isatty(STDOUT_FILENO) != 0;
        case StandardStream::kError:
            return isatty(STDERR_FILENO) != 0;
    }
    return false;
}

std::string UserLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string locale = EnvironmentVariable(variable);
        if (locale.empty())
            continue;
        if (locale.size() >= 2 && std::islower(static_cast<unsigned char>(locale[0])) &&
            std::islower(static_cast<unsigned char>(locale[1])))
            return locale.substr(0, 2);
        break;  // "C" and "POSIX": no language
    }
    return "en";
}

}  // namespace platform
