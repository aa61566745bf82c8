// URLs of files, as panels get them.
#pragma once

#include <string>

/// The path in a "file://" URL: "/a/b", or "C:/a/b" behind a third slash.
inline std::string PathOfFileURL(const std::string& url) {
    const std::string path = url.substr(std::string("file://").size());
    return path.size() > 2 && path[0] == '/' && path[2] == ':' ? path.substr(1) : path;
}
