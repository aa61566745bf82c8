#include "platform/Folders.h"

#include <windows.h>
// After windows.h, which it needs.
#include <shlobj.h>

#include <array>

#include "WideText.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

std::string WithoutTrailingSeparator(std::string path) {
    while (path.size() > 3 && (path.back() == '\\' || path.back() == '/'))
        path.pop_back();
    return path;
}

std::string SystemFolder(int csidl) {
    std::array<wchar_t, MAX_PATH> path{};
    return SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path.data()) == S_OK
               ? WithoutTrailingSeparator(ToUtf8(path.data()))
               : std::string();
}

/// With PLUGINCORE_PORTABLE set, the variables of the XDG Base Directory rules serve here too, so that a test
/// or a portable installation can have folders of its own. Without it they do not: programs that were ported
/// from elsewhere have people set them. A value that is not a full path counts as unset.
std::string FromVariable(const char* variable) {
    if (EnvironmentVariable("PLUGINCORE_PORTABLE").empty())
        return {};
    const std::string list = EnvironmentVariable(variable);
    const std::string first = list.substr(0, list.find(';'));
    return Utf8Path(first).is_absolute()
               ? WithoutTrailingSeparator(Utf8Text(Utf8Path(first).make_preferred()))
               : std::string();
}

std::string VariableOr(const char* variable, int csidl) {
    std::string folder = FromVariable(variable);
    return folder.empty() ? SystemFolder(csidl) : folder;
}

std::string TemporaryFolder() {
    const std::string folder = FromVariable("TMPDIR");
    if (!folder.empty())
        return folder;
    return WithoutTrailingSeparator(
        ToUtf8(ReadWideText([](wchar_t* buffer, DWORD size) { return GetTempPathW(size, buffer); })));
}

class WindowsFolders : public Folders {
public:
    std::string PathOf(KnownFolder folder) override {
        switch (folder) {
            case KnownFolder::kHome:
                return SystemFolder(CSIDL_PROFILE);
            case KnownFolder::kAllUsersApplicationData:
                return VariableOr("XDG_DATA_DIRS", CSIDL_COMMON_APPDATA);
            case KnownFolder::kLocalApplicationData:
                return VariableOr("XDG_DATA_HOME", CSIDL_LOCAL_APPDATA);
            case KnownFolder::kConfiguration:
                return VariableOr("XDG_CONFIG_HOME", CSIDL_LOCAL_APPDATA);
            case KnownFolder::kCache:
                return VariableOr("XDG_CACHE_HOME", CSIDL_LOCAL_APPDATA);
            case KnownFolder::kRuntime:
            case KnownFolder::kTemporary:
                return TemporaryFolder();
        }
        return {};
    }
};

}  // namespace

template <>
Folders& SystemDefault<Folders>() {
    static WindowsFolders folders;
    return folders;
}

}  // namespace platform
