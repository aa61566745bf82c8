// Activation for design and for previews, and what stands in its way.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "agent/Commands.h"
#include "agent/FontRecord.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The records of active fonts that hosts may take for one of these, each once.
Json ConflictsOf(CommandContext& context, const std::vector<Font>& fonts) {
    std::set<uint32_t> seen;
    Json conflicts = Json::array();
    for (const Font& font : fonts) {
        context.audience.KeepAlive();
        for (const Font& other : context.manager.fonts.FindByPostScriptName(font.postScriptName)) {
            if (other.file.id != font.file.id && IsActive(other) && seen.insert(other.id).second)
                conflicts.push_back(FontRecord(context.manager, other));
        }
    }
    return conflicts;
}

std::vector<Font> KnownFonts(CommandContext& context, const Json& arguments) {
    std::vector<Font> fonts;
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, "fonts"))) {
        if (auto font = context.manager.fonts.Find(id))
            fonts.push_back(std::move(*font));
    }
    return fonts;
}

/// Which of the fonts this client now holds for that purpose.
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

void AppendFamily(CommandContext& context, const Font& font, std::vector<Font>& fonts) {
    std::vector<Font> family = RestOfFamily(context.manager.fonts, font);
    SortByMatch(family, RequestedFont());
    fonts.insert(fonts.end(), family.begin(), family.end());
}

/// Of several versions of a font the first: together they would only conflict.
void KeepBestOfEachName(std::vector<Font>& fonts) {
    std::set<std::string> seen;
    fonts.erase(std::remove_if(fonts.begin(), fonts.end(),
                               [&](const Font& font) { return !seen.insert(font.postScriptName).second; }),
                fonts.end());
}

Json GetFontConflicts(CommandContext& context, const Json& arguments) {
    return {{"conflicts", ConflictsOf(context, KnownFonts(context, arguments))}};
}

Json EnableDesignActivation(CommandContext& context, const Json& arguments) {
    const Font font = FindFont(context, arguments);
    std::vector<Font> fonts = {font};
    if (BoolMember(arguments, "wholeFamily"))
        AppendFamily(context, font, fonts);
    if (!BoolMember(arguments, "enable")) {
        ReleaseAll(context, fonts, LeasePurpose::kDesign);
        return {{"conflicts", Json::array()}};
    }
    RequireLogIn(context);
    KeepBestOfEachName(fonts);
    Json conflicts = ConflictsOf(context, fonts);
    if (LeaseAll(context, fonts, LeasePurpose::kDesign).count(font.id) == 0)
        throw CommandError(error_codes::GZephyrinAssetManager::kFontMissing,
                           "the file of \"" + font.postScriptName + "\" is gone; add it again");
    return {{"conflicts", std::move(conflicts)}};
}

Json PreviewActivateFonts(CommandContext& context, const Json& arguments) {
    const std::vector<Font> fonts = KnownFonts(context, arguments);
    if (!BoolMember(arguments, "activate")) {
        ReleaseAll(context, fonts, LeasePurpose::kPreview);
        return Json::object();
    }
    RequireLogIn(context);
    if (LeaseAll(context, fonts, LeasePurpose::kPreview).empty() && !ArrayMember(arguments, "fonts").empty())
        throw CommandError(CoreErrorCodes::kNotFound, "there is no file of any of these fonts");
    return Json::object();
}

}  // namespace

void AddDesignCommands(CommandTable& table) {
    table[method::kGetFontConflicts] = GetFontConflicts;
    table[method::kEnableDesignActivation] = EnableDesignActivation;
    table[method::kPreviewActivateFonts] = PreviewActivateFonts;
}

}  // namespace pellwick
