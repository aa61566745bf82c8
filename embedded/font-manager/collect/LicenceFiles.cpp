#include "collect/LicenceFiles.h"

#include <algorithm>
#include <filesystem>

#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLicenceExtension = ".license";

bool IsLicenceName(const std::string& fileName) {
    const std::string name = AsciiLowerCase(fileName);
    return name == "ofl.txt" || name.starts_with("license") || name.starts_with("licence") ||
           name.starts_with("copying") || name.ends_with(kLicenceExtension);
}

/// FILE.license is that of FILE alone.
bool IsOfAnotherFile(const std::string& path, const std::string& fontPath) {
    if (!path.ends_with(kLicenceExtension))
        return false;
    const std::string file = path.substr(0, path.size() - kLicenceExtension.size());
    return file != fontPath && platform::IsExistingFile(file);
}

/// A font may be called "License Plate".
bool IsText(const std::string& path) {
    std::string content;
    return !platform::ReadWholeFile(path, content, kMaxLicenceFileSize) &&
           content.find('\0') == std::string::npos;
}

}  // namespace

std::vector<std::string> LicenceFilesBeside(const std::string& fontPath) {
    std::vector<std::string> files;
    std::error_code failure;
    fs::directory_iterator entry(platform::Utf8Path(platform::FolderPart(fontPath)), failure);
    for (int count = 0; !failure && entry != fs::directory_iterator() && count < kMaxFilesInFolder;
         entry.increment(failure), ++count) {
        const std::string path = platform::Utf8Text(entry->path());
        if (IsLicenceName(platform::NamePart(path)) && !platform::IsLink(path) &&
            !IsOfAnotherFile(path, fontPath))
            files.push_back(path);
    }
    std::sort(files.begin(), files.end());
    files.resize(std::min(files.size(), kMaxLicenceFiles));
    std::erase_if(files, [](const std::string& path) { return !IsText(path); });
    return files;
}

}  // namespace pellwick
