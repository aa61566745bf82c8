#include "agent/NamedRecords.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "agent/FontRecord.h"

namespace pellwick {

int32_t IDOf(long long number) {
    return number > 0 && number <= INT32_MAX ? static_cast<int32_t>(number) : 0;
}

Workgroup FindWorkgroup(CommandContext& context, const std::string& name) {
    auto workgroup = context.manager.workgroups.FindByName(name);
    if (!workgroup)  // as people are shown it
        workgroup = context.manager.workgroups.FindByName(name + kNameToBeLocalized);
    if (!workgroup && name == kAllWorkgroupsName)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "\"" + name + "\" stands for all workgroups together; name one of them");
    if (!workgroup)
        throw CommandError(GZephyrinSetManager::kWorkgroupNotFound,
                           "there is no workgroup \"" + name +
                               "\"; see \"Pellwick workgroup list\", or make it with"
                               " \"Pellwick workgroup create\"");
    return *workgroup;
}

uint32_t PageStart(const Json& arguments) {
    return static_cast<uint32_t>(
        std::clamp<long long>(IntegerMember(arguments, member::kAfter), 0, UINT32_MAX));
}

Font FindFont(CommandContext& context, const Json& arguments) {
    const auto font = context.manager.fonts.Find(FontIDOf(IntegerMember(arguments, member::kFont)));
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

std::vector<Font> KnownFonts(CommandContext& context, const Json& arguments) {
    std::vector<Font> fonts;
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        if (auto font = context.manager.fonts.Find(id))
            fonts.push_back(std::move(*font));
    }
    return fonts;
}

}  // namespace pellwick
