#include "platform/Environment.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>

namespace platform {
namespace {

int DescriptorOf(StandardStream stream) {
    constexpr int kDescriptors[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    return kDescriptors[static_cast<size_t>(stream)];
}

}  // namespace

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
    return isatty(DescriptorOf(stream)) != 0;
}

int TerminalWidth(StandardStream stream) {
    winsize size{};
    return ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
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
