// Activation for design and for previews, and what stands in its way.
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/NamedRecords.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The records of active fonts that hosts may take for one of these, each once: those of the same name in
/// another file.
Json ConflictsOf(CommandContext& context, const std::vector<Font>& fonts) {
    std::map<std::string, std::set<int64_t>> filesByName;
    for (const Font& font : fonts)
        filesByName[font.postScriptName].insert(font.file.id);
    Json conflicts = Json::array();
    for (const auto& [name, files] : filesByName) {
        context.audience.KeepAlive();
        for (const Font& other : context.manager.fonts.FindActive(name)) {
            if (files.size() > 1 || *files.begin() != other.file.id)
                conflicts.push_back(FontRecord(context.manager, other));
        }
    }
    return conflicts;
}

/// The fonts that this client now holds for that purpose.
std::set<uint32_t> LeaseAll(CommandContext& context, const std::vector<Font>& fonts, LeasePurpose purpose) {
    std::set<uint32_t> leased;
    Activation activation = context.manager.BeginActivation();
    for (const Font& font : fonts) {
        context.audience.KeepAlive();
        if (activation.Lease(font, context.TermsFor(purpose)))
            leased.insert(font.id);
    }
    context.MakeProvisional();
    AnnounceChanges(context.audience, activation.Commit());
    return leased;
}

void ReleaseAll(CommandContext& context, const std::vector<Font>& fonts, LeasePurpose purpose) {
    Activation activation = context.manager.BeginActivation();
    for (const Font& font : fonts) {
        context.audience.KeepAlive();
        activation.EndLeases(font.id, context.client.process, purpose);
    }
    AnnounceChanges(context.audience, activation.Commit());
}

}  // namespace

Json commands::GetFontConflicts(CommandContext& context, const Json& arguments) {
    return {{member::kConflicts, ConflictsOf(context, KnownFonts(context, arguments))}};
}

/// Of each name the font that a document is given, and why the others are not: their records tell versions
/// and states. Pages go by names.
Json commands::ListRivals(CommandContext& context, const Json& arguments) {
    FontStore& fonts = context.manager.fonts;
    Json records = Json::array();
    std::string name;
    uint32_t chosen = 0;
    for (const Font& font : fonts.ListRivals(StringMember(arguments, member::kAfter), kListPageSize / 10)) {
        context.audience.KeepAlive();
        if (font.postScriptName != name) {
            name = font.postScriptName;
            const RequestedFont request{name, {}, {}, {}, 0};
            const std::vector<Font> matches = MatchFonts(fonts, request);
            chosen = matches.empty() ? 0 : matches[IndexOfBestMatch(matches, request)].id;
        }
        Json record = FontRecordWithFingerprint(context.manager, font);
        record[member::kIsChosen] = font.id == chosen;
        record[member::kIsPreferred] = font.isPreferred;
        records.push_back(std::move(record));
    }
    return {{member::kFonts, std::move(records)}};
}

Json commands::PreferFont(CommandContext& context, const Json& arguments) {
    Transaction transaction(context.manager.database);
    context.manager.fonts.SetPreferred(FindFont(context, arguments), BoolMember(arguments, member::kOn));
    transaction.Commit();
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return Json::object();
}

Json commands::EnableDesignActivation(CommandContext& context, const Json& arguments) {
    const Font font = FindFont(context, arguments);
    std::vector<Font> family;  // but for further versions of the font itself
    if (BoolMember(arguments, member::kWholeFamily))
        family = RestOfFamily(context.manager.fonts, font);
    if (!BoolMember(arguments, member::kEnable)) {
        family.push_back(font);
        ReleaseAll(context, family, LeasePurpose::kDesign);
        return {{member::kConflicts, Json::array()}};
    }
    RequireLogIn(context);
    std::vector<Font> fonts = BestOfEachName(family);
    fonts.insert(fonts.begin(), font);
    Json conflicts = ConflictsOf(context, fonts);
    if (LeaseAll(context, fonts, LeasePurpose::kDesign).count(font.id) == 0)
        throw CommandError(error_codes::GZephyrinAssetManager::kFontMissing,
                           "the file of \"" + font.postScriptName + "\" is gone; add it again");
    return {{member::kConflicts, std::move(conflicts)}};
}

Json commands::PreviewActivateFonts(CommandContext& context, const Json& arguments) {
    const std::vector<Font> fonts = KnownFonts(context, arguments);
    if (!BoolMember(arguments, member::kActivate)) {
        ReleaseAll(context, fonts, LeasePurpose::kPreview);
        return Json::object();
    }
    RequireLogIn(context);
    if (LeaseAll(context, fonts, LeasePurpose::kPreview).empty() &&
        !ArrayMember(arguments, member::kFonts).empty())
        throw CommandError(CoreErrorCodes::kNotFound, "there is no file of any of these fonts");
    return Json::object();
}

}  // namespace pellwick
