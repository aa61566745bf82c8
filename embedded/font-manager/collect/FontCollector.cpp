#include "collect/FontCollector.h"

#include <algorithm>
#include <deque>
#include <optional>

#include "TarnwickPluginInterface.h"
#include "collect/EmbeddingRights.h"
#include "collect/FileCopies.h"
#include "collect/LicenceFiles.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Files.h"

namespace pellwick {
namespace {

using Outcome = CollectedFont::Outcome;

constexpr char kLicenceFolder[] = "Licences";

std::optional<uint16_t> EmbeddingOf(const Json& font) {
    if (!font.contains(member::kEmbedding))
        return std::nullopt;
    return static_cast<uint16_t>(IntegerMember(font, member::kEmbedding));
}

bool IsSystems(const Json& font) {
    return IntegerMember(font, kGS_WorkgroupTypeKey) == kWorkgroupType_System;
}

Json EntryOf(const Json& font, const Json& uses) {
    const auto embedding = EmbeddingOf(font);
    return {{manifest::kPostScriptName, StringMember(font, kGS_PostScriptNameKey)},
            {manifest::kFamily, StringMember(font, kGS_FamilyKey)},
            {manifest::kStyle, StringMember(font, kGS_StyleKey)},
            {manifest::kFontVersion, StringMember(font, kGS_VersionKey)},
            {manifest::kFile, nullptr},
            {manifest::kSize, IntegerMember(font, kGS_OutlineFileSizeKey)},
            {manifest::kSHA256, StringMember(font, kGS_ChecksumKey)},
            {manifest::kRights, EmbeddingText(embedding)},
            {manifest::kEmbedding, embedding ? Json(*embedding) : Json()},
            {manifest::kLicence, StringMember(font, member::kLicence)},
            {manifest::kLicenceURL, StringMember(font, member::kLicenceURL)},
            {manifest::kLicenceFiles, Json::array()},
            {manifest::kSource, IsSystems(font) ? "system" : "font manager"},
            {manifest::kUsedIn, uses}};
}

}  // namespace

ErrorCode GetFontsToCollect(const AgentCall& call, const Json& ids, Json& fonts) {
    fonts = Json::array();
    std::deque<Json> waiting(ids.begin(), ids.end());
    while (!waiting.empty()) {
        const auto end =
            waiting.begin() + static_cast<std::ptrdiff_t>(std::min(waiting.size(), kLicenceBatchSize));
        const Json part(std::vector<Json>(waiting.begin(), end));
        waiting.erase(waiting.begin(), end);
        Json result;
        const ErrorCode code = call(method::kGetLicences, {{member::kFonts, part}}, result);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        const Json& read = ArrayMember(result, member::kFonts);
        fonts.insert(fonts.end(), read.begin(), read.end());
        const Json& left = ArrayMember(result, member::kLeft);
        if (left.size() >= part.size())
            return CoreErrorCodes::kUnknownError;
        waiting.insert(waiting.begin(), left.begin(), left.end());
    }
    return CoreErrorCodes::kSuccess;
}

Json UsesIn(const std::string& document, const Json& record) {
    std::string where = StringMember(record, kGS_WhereKey);
    const bool isTold = !where.empty();
    for (const Json& part : ArrayMember(record, kGS_SubDocumentsWithFontKey)) {
        if (!isTold && part.is_string())
            where += (where.empty() ? "" : ", ") + part.get<std::string>();
    }
    const Json use = FontUse(platform::NamePart(document), where);
    return use.is_null() ? Json::array() : Json::array({use});
}

Json MissingFont(const std::string& document, const Json& record) {
    return {{manifest::kPostScriptName,
             record.is_string() ? record.get<std::string>() : StringMember(record, kGS_PostScriptNameKey)},
            {manifest::kUsedIn, UsesIn(document, record)}};
}

CollectedFont FontCollector::Collect(const Json& font, const Json& uses) {
    CollectedFont collected;
    const Json entry = EntryOf(font, uses);
    const bool isRestricted = ForbidsEmbedding(EmbeddingOf(font));
    if (isRestricted && mRestricted == RestrictedFonts::kLeaveOut)
        collected = {Outcome::kLeftOut, {{manifest::kProblem, "its licence forbids embedding"}}};
    else
        collected = Copy(font);
    Json described = entry;
    described.update(collected.entry);
    collected.entry = std::move(described);
    collected.isRestricted = isRestricted;
    mManifest.Add(collected.entry);
    return collected;
}

CollectedFont FontCollector::Copy(const Json& font) {
    const std::string source = StringMember(font, kGS_PathKey);
    platform::ReadOnlyFile file;
    if (const auto error = file.Open(source))
        return {Outcome::kUnreadable,
                {{manifest::kProblem, "its file cannot be read: " + platform::SystemErrorText(error)}}};
    std::string& copy = mCopies[source];
    if (copy.empty()) {
        const std::string name = SafeFileName(StringMember(font, kGS_OutlineFileNameKey));
        std::string made;
        if (const auto error = CopyIntoFolder(source, mFolder, name, made))
            return {Outcome::kNotWritten,
                    {{manifest::kProblem, platform::WriteFailureText(made, error)}},
                    false,
                    error};
        copy = made;
    }
    Json entry{{manifest::kFile, copy}};
    if (IsSystems(font))
        entry[manifest::kLicenceFiles] = CopyLicences(source);
    return {Outcome::kCopied, std::move(entry)};
}

/// What cannot be copied is not a reason to go without the font.
Json FontCollector::CopyLicences(const std::string& fontPath) {
    Json copies = Json::array();
    const std::string folder = PathInFolder(mFolder, kLicenceFolder);
    for (const std::string& file : LicenceFilesBeside(fontPath)) {
        std::string copy;
        if (!platform::MakeFolders(folder) &&
            !CopyIntoFolder(file, folder, SafeFileName(platform::NamePart(file)), copy))
            copies.push_back(std::string(kLicenceFolder) + "/" + copy);
    }
    return copies;
}

}  // namespace pellwick
