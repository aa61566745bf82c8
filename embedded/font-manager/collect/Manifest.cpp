#include "collect/Manifest.h"

#include <algorithm>
#include <map>
#include <set>

#include "collect/FileCopies.h"
#include "collect/ManifestPage.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"

namespace pellwick {
namespace {

constexpr char kFormatName[] = "collected fonts";
constexpr int kFormatVersion = 1;

Json EmptyManifest() {
    return {{manifest::kFormat, kFormatName},
            {manifest::kVersion, kFormatVersion},
            {manifest::kFonts, Json::array()},
            {manifest::kMissing, Json::array()}};
}

std::string NameOf(const Json& font) {
    return StringMember(font, manifest::kPostScriptName);
}

/// What tells one font of a manifest from another.
std::array<std::string, 3> IdentityOf(const Json& font) {
    return {StringMember(font, manifest::kPostScriptName), StringMember(font, manifest::kStyle),
            StringMember(font, manifest::kSHA256)};
}

/// False also where that cannot be told: then nothing can be written either.
bool IsTaken(const std::string& path) {
    platform::FileIdentity ignored;
    return !platform::IdentifyFile(path, ignored);
}

void TakeText(const Json& from, const char* key, Json& to) {
    if (from.contains(key) && from[key].is_string())
        to[key] = from[key];
}

Json MendedUses(const Json& font) {
    Json uses = Json::array();
    for (const Json& use : ArrayMember(font, manifest::kUsedIn)) {
        Json mended = FontUse(StringMember(use, manifest::kDocument), StringMember(use, manifest::kWhere));
        if (!mended.is_null())
            uses.push_back(std::move(mended));
    }
    return uses;
}

// Of an entry all that this program would write. Others may have written the rest, to any depth.

Json MendedMissing(const Json& font) {
    return {{manifest::kPostScriptName, NameOf(font)}, {manifest::kUsedIn, MendedUses(font)}};
}

Json MendedFont(const Json& font) {
    using namespace manifest;
    Json mended{
        {kFile, nullptr}, {kEmbedding, nullptr}, {kLicenceFiles, Json::array()}, {kUsedIn, MendedUses(font)}};
    for (const char* key : {kPostScriptName, kFamily, kStyle, kFontVersion, kFile, kProblem, kSHA256, kRights,
                            kLicence, kLicenceURL, kSource})
        TakeText(font, key, mended);
    for (const char* key : {kSize, kEmbedding}) {
        if (font.contains(key) && font[key].is_number_integer())
            mended[key] = font[key];
    }
    for (const Json& file : ArrayMember(font, kLicenceFiles)) {
        if (file.is_string())
            mended[kLicenceFiles].push_back(file);
    }
    return mended;
}

Json MendedList(const Json& content, const char* key, Json (*mended)(const Json& font)) {
    Json fonts = Json::array();
    for (const Json& font : ArrayMember(content, key)) {
        if (!NameOf(font).empty())
            fonts.push_back(mended(font));
    }
    return fonts;
}

template <class IsUnwanted>
void EraseIf(Json& array, const IsUnwanted& isUnwanted) {
    array.erase(std::remove_if(array.begin(), array.end(), isUnwanted), array.end());
}

void SortByName(Json& fonts) {
    std::stable_sort(fonts.begin(), fonts.end(),
                     [](const Json& left, const Json& right) { return NameOf(left) < NameOf(right); });
}

}  // namespace

Json FontUse(const std::string& document, const std::string& where) {
    if (document.empty() && where.empty())
        return {};
    return {{manifest::kDocument, document}, {manifest::kWhere, where}};
}

Json MergedUses(const Json& uses, const Json& more) {
    Json merged = more;
    for (const Json& use : uses) {
        const bool isKnown = std::any_of(more.begin(), more.end(), [&](const Json& each) {
            return StringMember(each, manifest::kDocument) == StringMember(use, manifest::kDocument);
        });
        if (!isKnown)
            merged.push_back(use);
    }
    return merged;
}

Manifest::Manifest(const std::string& folder) : mFolder(folder) {
    for (int number = 1;; ++number) {
        mPath = PathInFolder(mFolder, NumberedName("fonts.json", number));
        mPagePath = PathInFolder(mFolder, NumberedName("fonts.html", number));
        if ((!IsTaken(mPath) && !IsTaken(mPagePath)) || Load())
            break;
    }
    if (mContent.is_null())
        mContent = EmptyManifest();
    NotePositions();
}

bool Manifest::Load() {
    std::string text;
    if (platform::ReadWholeFile(mPath, text, kMaxManifestSize))
        return false;
    const Json found = Json::parse(text, nullptr, false);
    if (!found.is_object() || StringMember(found, manifest::kFormat) != kFormatName ||
        IntegerMember(found, manifest::kVersion) != kFormatVersion)
        return false;
    mContent = EmptyManifest();
    mContent[manifest::kFonts] = MendedList(found, manifest::kFonts, MendedFont);
    mContent[manifest::kMissing] = MendedList(found, manifest::kMissing, MendedMissing);
    return true;
}

void Manifest::Add(Json font) {
    Json& fonts = mContent[manifest::kFonts];
    const auto [position, isNew] = mPositions.emplace(IdentityOf(font), fonts.size());
    if (isNew) {
        fonts.push_back(std::move(font));
        return;
    }
    Json& known = fonts[position->second];
    Json uses = MergedUses(known[manifest::kUsedIn], font[manifest::kUsedIn]);
    if (HasCopy(font) || !HasCopy(known))
        known = std::move(font);
    known[manifest::kUsedIn] = std::move(uses);
}

void Manifest::SetMissing(const std::string& document, const Json& fonts) {
    Json& missing = mContent[manifest::kMissing];
    for (Json& font : missing) {
        EraseIf(font[manifest::kUsedIn],
                [&](const Json& use) { return StringMember(use, manifest::kDocument) == document; });
    }
    EraseIf(missing, [](const Json& font) { return font[manifest::kUsedIn].empty(); });
    std::map<std::string, size_t> positions;
    for (size_t position = 0; position < missing.size(); ++position)
        positions.emplace(NameOf(missing[position]), position);
    for (const Json& font : fonts) {
        const auto [known, isNew] = positions.emplace(NameOf(font), missing.size());
        if (isNew) {
            missing.push_back(font);
            continue;
        }
        Json& uses = missing[known->second][manifest::kUsedIn];
        uses = MergedUses(uses, ArrayMember(font, manifest::kUsedIn));
    }
}

/// Whether the font has one, or had one at an earlier time, in the folder.
bool Manifest::HasCopy(const Json& font) const {
    const std::string file = StringMember(font, manifest::kFile);
    return file == SafeFileName(file) && platform::IsExistingFile(PathInFolder(mFolder, file));
}

void Manifest::Tidy() {
    EraseIf(mContent[manifest::kFonts],
            [&](const Json& font) { return !StringMember(font, manifest::kFile).empty() && !HasCopy(font); });
    for (const char* key : {manifest::kFonts, manifest::kMissing})
        SortByName(mContent[key]);
    NotePositions();
}

void Manifest::NotePositions() {
    const Json& fonts = mContent[manifest::kFonts];
    mPositions.clear();
    for (size_t position = 0; position < fonts.size(); ++position)
        mPositions.emplace(IdentityOf(fonts[position]), position);
}

platform::SystemError Manifest::Save() {
    constexpr auto kRights = platform::FileRights::kOfNewFiles;
    Tidy();
    const std::string text = mContent.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    if (const auto error = platform::WriteWholeFile(mPath, text, kRights))
        return error;
    return platform::WriteWholeFile(mPagePath, ManifestPage(mContent), kRights);
}

}  // namespace pellwick
