#include "cli/Fonts.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

const char* StateText(long long state) {
    switch (state) {
        case kFontActivationState_ActivatedByUser:
            return "active";
        case kFontActivationState_ActivatedByPlugin:
            return "in use";
        case kFontActivationState_Missing:
            return "missing";
        default:
            return "-";
    }
}

void PrintFontRow(const Json& font) {
    std::printf("%6lld  %-7s  %-40s  %s, %s (%s)\n", IntegerMember(font, kGS_DatabaseIDKey),
                StateText(IntegerMember(font, kGS_ActivationStateKey)),
                StringMember(font, kGS_PostScriptNameKey).c_str(), StringMember(font, kGS_FamilyKey).c_str(),
                StringMember(font, "Style").c_str(), StringMember(font, kGS_FontKindKey).c_str());
}

}  // namespace

Json FindFonts(Session& session, const std::vector<std::string>& names, bool& isComplete) {
    Json fonts = Json::array();
    isComplete = true;
    for (const std::string& name : names) {
        const Json found = session.Call(method::kFindByAnyName, {{"name", name}});
        if (ArrayMember(found, "fonts").empty()) {
            isComplete = false;
            std::fprintf(stderr, "Pellwick: no font is called \"%s\"; see \"Pellwick list\"\n", name.c_str());
        }
        for (const Json& font : ArrayMember(found, "fonts"))
            fonts.push_back(font);
    }
    return fonts;
}

void PrintFonts(const Json& fonts, const char* action) {
    for (const Json& font : fonts)
        PrintLine(std::string(action) + " " + StringMember(font, kGS_PostScriptNameKey));
}

Json ListFontsBy(Session& session, Json filter) {
    Json all = Json::array();
    const bool isOffered = BoolMember(filter, kVisibleMember);
    filter["after"] = 0;
    for (;;) {
        const Json page = session.Call(method::kListFonts, filter);
        const Json& fonts = ArrayMember(page, "fonts");
        if (fonts.empty())
            return all;
        filter["after"] = IntegerMember(fonts.back(), kGS_DatabaseIDKey);
        for (const Json& font : fonts) {
            if (isOffered && !BoolMember(font, kVisibleMember))
                continue;
            if (session.PrintsJson())
                all.push_back(font);
            else
                PrintFontRow(font);
        }
    }
}

}  // namespace pellwick::cli
