// Finding fonts.
#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "agent/Commands.h"
#include "agent/FontRecord.h"
#include "common/Limits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The workgroup that the fonts are to be in; 0 and the ID of all workgroups stand for any.
int32_t WantedWorkgroup(const Json& arguments) {
    constexpr int32_t kNoWorkgroup = -1;
    const long long workgroup = IntegerMember(arguments, "workgroup", kAllWorkgroupsID);
    if (workgroup == kAllWorkgroupsID || workgroup == 0)
        return FontStore::kAnyWorkgroup;
    const int32_t id = IDOf(workgroup);
    return id != 0 ? id : kNoWorkgroup;
}

Json GetFont(CommandContext& context, const Json& arguments) {
    return FontRecord(context.manager, FindFont(context, arguments));
}

/// The records of the fonts that are known, in the order of the request.
Json GetFonts(CommandContext& context, const Json& arguments) {
    Json records = Json::array();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, "fonts"))) {
        if (const auto font = context.manager.fonts.Find(id))
            records.push_back(FontRecord(context.manager, *font));
    }
    return {{"fonts", std::move(records)}};
}

Json FindByPostScriptName(CommandContext& context, const Json& arguments) {
    RequestedFont request;
    request.postScriptName = StringMember(arguments, "name");
    std::vector<Font> fonts =
        context.manager.fonts.FindByPostScriptName(request.postScriptName, WantedWorkgroup(arguments));
    SortByMatch(fonts, request);
    return {{"fonts", FontRecords(context.manager, fonts)}};
}

Json FindByFamilyName(CommandContext& context, const Json& arguments) {
    const std::vector<Font> fonts =
        context.manager.fonts.FindByFamily(StringMember(arguments, "name"), WantedWorkgroup(arguments));
    return {{"fonts", FontRecords(context.manager, fonts)}};
}

Json FindSameFamily(CommandContext& context, const Json& arguments) {
    const std::vector<Font> family = RestOfFamily(context.manager.fonts, FindFont(context, arguments));
    return {{"fonts", FontRecords(context.manager, family)}};
}

/// What people type: a PostScript name, family and style, a whole family, or a database ID. A page of the
/// fonts, those with larger IDs than "after".
Json FindByAnyName(CommandContext& context, const Json& arguments) {
    FontStore& store = context.manager.fonts;
    const std::string name = StringMember(arguments, "name");
    const uint32_t after = PageStart(arguments);
    std::vector<Font> fonts = store.ListNamed(name, after, kListPageSize);
    uint32_t id = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    if (fonts.empty() && after == 0 && error == std::errc() && end == name.data() + name.size()) {
        if (auto font = store.Find(id))
            fonts.push_back(std::move(*font));
    }
    return {{"fonts", FontRecords(context.manager, fonts)}};
}

}  // namespace

uint32_t PageStart(const Json& arguments) {
    return static_cast<uint32_t>(std::clamp<long long>(IntegerMember(arguments, "after"), 0, UINT32_MAX));
}

Font FindFont(CommandContext& context, const Json& arguments) {
    const auto font = context.manager.fonts.Find(FontIDOf(IntegerMember(arguments, "font")));
    if (!font)
        throw CommandError(CoreErrorCodes::kNotFound, "there is no such font");
    return *font;
}

std::vector<Font> RestOfFamily(FontStore& fonts, const Font& font) {
    std::vector<Font> family = fonts.FindByFamily(font.family);
    family.erase(std::remove_if(family.begin(), family.end(),
                                [&](const Font& member) {
                                    return member.id == font.id ||
                                           member.postScriptName == font.postScriptName;
                                }),
                 family.end());
    return family;
}

void AddLookupCommands(CommandTable& table) {
    table[method::kGetFont] = GetFont;
    table[method::kGetFonts] = GetFonts;
    table[method::kFindByPostScriptName] = FindByPostScriptName;
    table[method::kFindByFamilyName] = FindByFamilyName;
    table[method::kFindSameFamily] = FindSameFamily;
    table[method::kFindByAnyName] = FindByAnyName;
}

}  // namespace pellwick
