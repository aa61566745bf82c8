#include "platform/FileTrust.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace platform {
namespace {

/// A group of the same number as the user is the user's own, as most systems make them.
bool IsGroupTrusted(gid_t group) {
    return group == 0 || group == getuid();
}

bool CanBeWrittenByOthers(const struct stat& info) {
    if (S_ISDIR(info.st_mode) && (info.st_mode & S_ISVTX) != 0)
        return false;
    return (info.st_mode & S_IWOTH) != 0 || ((info.st_mode & S_IWGRP) != 0 && !IsGroupTrusted(info.st_gid));
}

std::string FaultOf(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return path + " cannot be looked at";
    if (info.st_uid != 0 && info.st_uid != geteuid())
        return path + " belongs to somebody else";
    return CanBeWrittenByOthers(info) ? path + " can be written to by others" : "";
}

}  // namespace

std::string WhyUntrusted(const std::string& path) {
    std::error_code failure;
    std::filesystem::path each = std::filesystem::canonical(path, failure);
    if (failure)
        return path + " cannot be looked at";
    for (;; each = each.parent_path()) {
        std::string fault = FaultOf(each.native());
        if (!fault.empty() || each == each.root_path())
            return fault;
    }
}

}  // namespace platform
