#include <filesystem>

#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

bool IsBelowHome(const std::string& typed) {
    return typed == "~" || typed.starts_with("~/") || typed.starts_with(std::string("~") + kPathSeparator);
}

}  // namespace

std::string FullPath(const std::string& typed) {
    const bool isBelowHome = IsBelowHome(typed);
    const std::string home = isBelowHome ? Current<Folders>().PathOf(KnownFolder::kHome) : std::string();
    if (typed.empty() || (isBelowHome && home.empty()))
        return {};
    const std::filesystem::path path = Utf8Path(AbsolutePath(isBelowHome ? home + typed.substr(1) : typed));
    return Utf8Text(path.has_filename() ? path : path.parent_path());
}

}  // namespace platform
