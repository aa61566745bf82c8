// Copying fonts for whoever prints with them.
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "collect/FontCollector.h"
#include "common/Protocol.h"
#include "platform/Files.h"

using namespace pellwick;

namespace {

using Outcome = CollectedFont::Outcome;

ErrorCode CodeOf(const CollectedFont& font) {
    if (font.outcome == Outcome::kUnreadable)
        return GZephyrinExportFonts::kFontUnavailableToExport;
    if (font.error.IsNotPermitted())
        return GZephyrinExportFonts::kCannotWriteToDestinationFolder;
    if (font.error.IsPathTooLong())
        return GZephyrinExportFonts::kPathTooLong;
    return font.error ? GZephyrinExportFonts::kCouldNotCopyFile : ErrorCode{CoreErrorCodes::kSuccess};
}

/// Whether there is a file for each of the fonts that were asked for.
bool AreAllAvailable(const Json& fonts, size_t askedFor) {
    for (const Json& font : fonts) {
        if (IntegerMember(font, kGS_LocationKey) == 0)
            return false;
    }
    return fonts.size() == askedFor;
}

/// Success, or why the user may not take fonts out.
ErrorCode AskForPermission(PluginFacadeRef facade) {
    bool isPermitted = false;
    const ErrorCode code = MotherMayI(facade, kPermission_ExportFonts, &isPermitted);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    return isPermitted ? code : ErrorCode{GZephyrinExportFonts::kNotGrantedPermissionToExportFonts};
}

/// Collects the fonts that the agent knows of those that were asked for.
class Collecting {
public:
    explicit Collecting(const std::string& folder) : mCollector(folder) {}

    void Collect(const Json& font, const Json& request) {
        const std::string document = StringMember(request, kGS_SourceDocumentNameKey);
        const CollectedFont collected = mCollector.Collect(font, UsesIn(document, request));
        const std::string file = StringMember(collected.entry, manifest::kFile);
        if (!file.empty() && mFiles.insert(file).second)
            mPaths.push_back(mCollector.PathOf(file));
        NoteCode(CodeOf(collected));
        if (!mDocuments.insert(document).second)
            return;
        if (const auto missing = Library::Get().Missing().Of(document))
            mCollector.SetMissing(platform::NamePart(document), *missing);
    }
    void Finish() { NoteCode(CodeOf({Outcome::kNotWritten, {}, false, mCollector.Finish()})); }

    /// That of the first that went wrong.
    ErrorCode Code() const { return mCode; }
    const std::vector<std::string>& Paths() const { return mPaths; }

private:
    void NoteCode(ErrorCode code) { mCode = mCode == CoreErrorCodes::kSuccess ? code : mCode; }

    FontCollector mCollector;
    ErrorCode mCode = CoreErrorCodes::kSuccess;
    std::set<std::string> mFiles;
    std::set<std::string> mDocuments;
    std::vector<std::string> mPaths;
};

std::map<long long, Json> RequestsByID(const Json& requests) {
    std::map<long long, Json> byID;
    for (const Json& request : requests) {
        if (request.is_object())
            byID.emplace(IntegerMember(request, kGS_DatabaseIDKey), request);
    }
    return byID;
}

}  // namespace

uint32_t CanExportFonts(PluginFacadeRef facade, CFArrayRef fonts, bool* outCanExport) {
    return Guarded([&] {
        if (fonts == nullptr || outCanExport == nullptr)
            return CoreErrorCodes::kNullPointer;
        bool isPermitted = false;
        ErrorCode code = MotherMayI(facade, kPermission_ExportFonts, &isPermitted);
        Json result;
        if (code == CoreErrorCodes::kSuccess)
            code =
                Library::Get().Call(facade, method::kGetFonts, {{member::kFonts, JsonFromCF(fonts)}}, result);
        if (code == CoreErrorCodes::kSuccess)
            *outCanExport = isPermitted && AreAllAvailable(ArrayMember(result, member::kFonts),
                                                           static_cast<size_t>(CFArrayGetCount(fonts)));
        return code;
    });
}

uint32_t ExportFonts(PluginFacadeRef facade, CFArrayRef fonts, CFStringRef destinationFolder,
                     CFMutableArrayRef exportedPaths) {
    return Guarded([&]() -> ErrorCode {
        if (fonts == nullptr || destinationFolder == nullptr)
            return CoreErrorCodes::kNullPointer;
        if (const ErrorCode code = AskForPermission(facade))
            return code;
        const Json ids = IDsFromCF(fonts);
        if (ids.empty())
            return GZephyrinExportFonts::kNoFontsToExport;
        Json known;
        const auto call = [&](const char* method, const Json& arguments, Json& result) {
            return Library::Get().Call(facade, method, arguments, result);
        };
        if (const ErrorCode code = GetFontsToCollect(call, ids, known))
            return code;
        if (known.empty())
            return GZephyrinExportFonts::kFontUnavailableToExport;
        const std::string folder = cf::ToUtf8(destinationFolder);
        if (platform::MakeFolders(folder))
            return GZephyrinExportFonts::kCouldNotCreateFolder;
        // Copying may take long, so it is not the agent that does it.
        Collecting collecting(folder);
        const std::map<long long, Json> requests = RequestsByID(JsonFromCF(fonts));
        for (const Json& font : known) {
            const auto request = requests.find(IntegerMember(font, kGS_DatabaseIDKey));
            collecting.Collect(font, request != requests.end() ? request->second : Json::object());
        }
        collecting.Finish();
        for (const std::string& path : collecting.Paths())
            if (exportedPaths != nullptr)
                cf::Append(exportedPaths, path);
        if (collecting.Code() == CoreErrorCodes::kSuccess && known.size() != ids.size())
            return GZephyrinExportFonts::kFontUnavailableToExport;
        return collecting.Code();
    });
}
