#include "platform/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

#include "platform/Environment.h"

namespace platform {
namespace {

std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string HomeFolder() {
    std::string home = EnvironmentVariable("HOME");
    if (!home.empty())
        return WithoutTrailingSlash(home);
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr)
        return WithoutTrailingSlash(entry.pw_dir);
    return {};
}

/// XDG Base Directory rules: a value that is not an absolute path counts as unset.
std::string FromVariable(const char* variable) {
    std::string value = EnvironmentVariable(variable);
    return !value.empty() && value.front() == '/' ? WithoutTrailingSlash(std::move(value)) : std::string();
}

std::string BelowHome(const char* variable, const char* fallback) {
    std::string folder = FromVariable(variable);
    if (!folder.empty())
        return folder;
    const std::string home = HomeFolder();
    return home.empty() ? std::string() : home + fallback;
}

std::string FirstSystemDataFolder() {
    std::string list = EnvironmentVariable("XDG_DATA_DIRS");
    std::string first = list.substr(0, list.find(':'));
    return !first.empty() && first.front() == '/' ? WithoutTrailingSlash(std::move(first))
                                                  : "/usr/local/share";
}

class LinuxFolders : public Folders {
public:
    std::string PathOf(KnownFolder folder) override {
        switch (folder) {
            case KnownFolder::kHome:
                return HomeFolder();
            case KnownFolder::kAllUsersApplicationData:
                return FirstSystemDataFolder();
            case KnownFolder::kLocalApplicationData:
                return BelowHome("XDG_DATA_HOME", "/.local/share");
            case KnownFolder::kConfiguration:
                return BelowHome("XDG_CONFIG_HOME", "/.config");
            case KnownFolder::kCache:
                return BelowHome("XDG_CACHE_HOME", "/.cache");
            case KnownFolder::kRuntime:
                return FromVariable("XDG_RUNTIME_DIR");
            case KnownFolder::kTemporary: {
                std::string folderPath = FromVariable("TMPDIR");
                return folderPath.empty() ? "/tmp" : folderPath;
            }
        }
        return {};
    }
};

}  // namespace

template <>
Folders& SystemDefault<Folders>() {
    static LinuxFolders folders;
    return folders;
}

}  // namespace platform
