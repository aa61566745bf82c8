#include "client/FontExporter.h"

#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

bool HoldSameContent(const std::string& left, const std::string& right) {
    uint64_t leftSize = 0;
    uint64_t rightSize = 0;
    if (platform::FileSize(left, leftSize) || platform::FileSize(right, rightSize) || leftSize != rightSize)
        return false;
    std::string leftContent;
    std::string rightContent;
    return !platform::ReadWholeFile(left, leftContent, kMaxFontFileSize) &&
           !platform::ReadWholeFile(right, rightContent, kMaxFontFileSize) && leftContent == rightContent;
}

/// NAME.ttf, NAME 2.ttf, NAME 3.ttf and so on.
fs::path NumberedName(const fs::path& name, int number) {
    if (number == 1)
        return name;
    fs::path numbered = name.stem();
    numbered += " " + std::to_string(number);
    numbered += name.extension();
    return numbered;
}

ErrorCode CodeOf(const platform::SystemError& error) {
    if (error.IsNotPermitted())
        return GZephyrinExportFonts::kCannotWriteToDestinationFolder;
    if (error.IsPathTooLong())
        return GZephyrinExportFonts::kPathTooLong;
    return GZephyrinExportFonts::kCouldNotCopyFile;
}

}  // namespace

ErrorCode FontExporter::Export(const Json& fonts) {
    if (fonts.empty())
        return GZephyrinExportFonts::kNoFontsToExport;
    if (platform::MakeFolders(mFolder))
        return GZephyrinExportFonts::kCouldNotCreateFolder;
    ErrorCode firstFailure = CoreErrorCodes::kSuccess;
    std::set<std::string> checksums;
    for (const Json& font : fonts) {
        if (!checksums.insert(StringMember(font, kGS_ChecksumKey)).second)
            continue;
        const ErrorCode code = ExportFont(font);
        if (firstFailure == CoreErrorCodes::kSuccess)
            firstFailure = code;
    }
    return firstFailure;
}

ErrorCode FontExporter::ExportFont(const Json& font) {
    const std::string source = StringMember(font, kGS_PathKey);
    if (!platform::IsExistingFile(source))
        return GZephyrinExportFonts::kFontUnavailableToExport;
    const fs::path folder = platform::Utf8Path(mFolder);
    const fs::path name = platform::Utf8Path(StringMember(font, kGS_OutlineFileNameKey)).filename();
    for (int number = 1;; ++number) {
        const std::string target = platform::Utf8Text(folder / NumberedName(name, number));
        const platform::SystemError error = platform::CopyToNewFile(source, target);
        if (error && !error.IsExisting())
            return CodeOf(error);
        if (error && !HoldSameContent(source, target))
            continue;
        mPaths.push_back(target);
        return CoreErrorCodes::kSuccess;
    }
}

}  // namespace pellwick
