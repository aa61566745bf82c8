#include "FontListFiles.h"

#include <algorithm>

#include "PanelLimits.h"
#include "PanelLog.h"
#include "platform/Files.h"
#include "platform/Folders.h"

namespace {

constexpr std::string_view kURLPrefix = "file:///";

/// Three slashes, whether or not the path begins with one of them.
std::string URLOf(const std::string& path) {
    return std::string(kURLPrefix) + platform::WithSlashes(path.substr(path.starts_with('/') ? 1 : 0));
}

}  // namespace

FontListFiles::~FontListFiles() {
    ReleaseAll();
}

ErrorCode FontListFiles::Create(const std::string& content, std::string& url) {
    const std::string folder =
        platform::Current<platform::Folders>().PathOf(platform::KnownFolder::kTemporary);
    RETURN_UNLESS(!folder.empty());
    std::string path;
    if (const platform::SystemError error =
            platform::WriteTemporaryFile(folder, "font-list-", ".txt", content, path)) {
        ReportSystemFailure(
            kLogCategory,
            {"WriteTemporaryFile(folder, \"font-list-\", \".txt\", content, path)", __FILE__, __LINE__},
            CoreErrorCodes::kError, error);
        return CoreErrorCodes::kError;
    }
    mPaths.push_back(path);
    if (mPaths.size() > panel_limits::kMostFontListFiles) {
        platform::RemoveFile(mPaths.front());
        mPaths.pop_front();
    }
    url = URLOf(path);
    return CoreErrorCodes::kSuccess;
}

ErrorCode FontListFiles::Release(const std::string& urlOrPath) {
    const auto found = std::find_if(mPaths.begin(), mPaths.end(), [&](const std::string& path) {
        return path == urlOrPath || URLOf(path) == urlOrPath;
    });
    if (found == mPaths.end())
        return CoreErrorCodes::kNotFound;
    platform::RemoveFile(*found);
    mPaths.erase(found);
    return CoreErrorCodes::kSuccess;
}

void FontListFiles::ReleaseAll() {
    for (const std::string& path : mPaths)
        platform::RemoveFile(path);
    mPaths.clear();
}
