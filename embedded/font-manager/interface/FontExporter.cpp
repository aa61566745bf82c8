#include "interface/FontExporter.h"

#include <nlohmann/json.hpp>
#include <set>
#include <system_error>

#include "FontRecordKeys.h"
#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

bool HoldsSameContent(const std::string& left, const std::string& right) {
    std::string leftContent;
    std::string rightContent;
    return !platform::ReadWholeFile(left, leftContent, kMaxFontFileSize) &&
           !platform::ReadWholeFile(right, rightContent, kMaxFontFileSize) && leftContent == rightContent;
}

/// FOLDER/NAME.ttf, FOLDER/NAME 2.ttf and so on: the first that is free or holds the same content.
fs::path FindTarget(const fs::path& folder, const fs::path& name, const std::string& source) {
    fs::path target = folder / name;
    std::error_code ignored;
    for (int number = 2; fs::exists(target, ignored) && !HoldsSameContent(source, platform::Utf8Text(target));
         ++number) {
        fs::path numbered = name.stem();
        numbered += " " + std::to_string(number);
        numbered += name.extension();
        target = folder / numbered;
    }
    return target;
}

}  // namespace

ErrorCode FontExporter::Export(const Json& fonts) {
    if (fonts.empty())
        return GZephyrinExportFonts::kNoFontsToExport;
    std::error_code failure;
    fs::create_directories(platform::Utf8Path(mFolder), failure);
    if (!fs::is_directory(platform::Utf8Path(mFolder), failure))
        return GZephyrinExportFonts::kCouldNotCreateFolder;
    std::set<std::string> checksums;
    for (const Json& font : fonts) {
        if (!checksums.insert(StringMember(font, kGS_ChecksumKey)).second)
            continue;
        const ErrorCode code = ExportFont(font);
        if (code != CoreErrorCodes::kSuccess)
            return code;
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode FontExporter::ExportFont(const Json& font) {
    const std::string source = StringMember(font, kGS_PathKey);
    if (!platform::IsExistingFile(source))
        return GZephyrinExportFonts::kFontUnavailableToExport;
    const fs::path name = platform::Utf8Path(StringMember(font, kGS_OutlineFileNameKey)).filename();
    const fs::path target = FindTarget(platform::Utf8Path(mFolder), name, source);
    std::error_code failure;
    if (!fs::exists(target, failure))
        fs::copy_file(platform::Utf8Path(source), target, failure);
    if (failure)
        return GZephyrinExportFonts::kCouldNotCopyFile;
    mPaths.push_back(platform::Utf8Text(target));
    return CoreErrorCodes::kSuccess;
}

}  // namespace pellwick
