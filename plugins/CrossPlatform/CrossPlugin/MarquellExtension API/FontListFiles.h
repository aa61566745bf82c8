// The files through which panels get long lists of fonts.
#pragma once

#include <deque>
#include <string>

#include "ErrorCodes.h"

/// The files that one panel was given. Main thread.
class FontListFiles {
public:
    FontListFiles() = default;
    /// Removes all that are left.
    ~FontListFiles();
    FontListFiles(const FontListFiles&) = delete;
    FontListFiles& operator=(const FontListFiles&) = delete;

    /// Makes a file of that content in the folder for temporary files, for this user only and under a name
    /// that nobody can foresee. `url`: "file:///" and its full path. A panel that lets go of nothing keeps
    /// the latest ones alone (PanelLimits.h).
    [[nodiscard]] ErrorCode Create(const std::string& content, std::string& url);
    /// Removes the file of that URL or path. kNotFound, and nothing is touched, when it is none of these.
    [[nodiscard]] ErrorCode Release(const std::string& urlOrPath);
    void ReleaseAll();

private:
    std::deque<std::string> mPaths;  ///< oldest first
};
