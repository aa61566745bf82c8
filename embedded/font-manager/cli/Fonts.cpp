#include "cli/Fonts.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "common/FontManagerLimits.h"
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
    const auto text = [&](const char* key) { return PrintableText(StringMember(font, key)); };
    std::printf("%6lld  %-7s  %-40s  %s, %s (%s)\n", IntegerMember(font, kGS_DatabaseIDKey),
                StateText(IntegerMember(font, kGS_ActivationStateKey)), text(kGS_PostScriptNameKey).c_str(),
                text(kGS_FamilyKey).c_str(), text("Style").c_str(), text(kGS_FontKindKey).c_str());
}

/// Appends the fonts that go by the name.
void AppendFontsOf(AgentSession& session, const std::string& name, Json& fonts) {
    long long after = 0;
    for (size_t size = kListPageSize; size == kListPageSize;) {
        const Json found =
            session.Call(method::kFindByAnyName, {{member::kName, name}, {member::kAfter, after}});
        const Json& page = ArrayMember(found, member::kFonts);
        size = page.size();
        if (size != 0)
            after = IntegerMember(page.back(), kGS_DatabaseIDKey);
        fonts.insert(fonts.end(), page.begin(), page.end());
    }
}

}  // namespace

Json FindFonts(AgentSession& session, const std::vector<std::string>& names, bool& isComplete) {
    Json fonts = Json::array();
    isComplete = true;
    for (const std::string& name : names) {
        const size_t before = fonts.size();
        AppendFontsOf(session, name, fonts);
        if (fonts.size() == before) {
            isComplete = false;
            PrintError("no font is called \"" + name + "\"; see \"Pellwick list\"");
        }
    }
    return fonts;
}

Json IDsOf(const Json& fonts) {
    Json ids = Json::array();
    for (const Json& font : fonts)
        ids.push_back(font[kGS_DatabaseIDKey]);
    return ids;
}

Json CallForFonts(AgentSession& session, const char* method, const Json& fonts, const char* member) {
    Json all = Json::array();
    const Json ids = IDsOf(fonts);
    for (size_t begin = 0; begin < ids.size(); begin += kListPageSize) {
        const auto first = ids.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto size = static_cast<std::ptrdiff_t>(std::min<size_t>(kListPageSize, ids.size() - begin));
        const Json answer =
            session.Call(method, {{member::kFonts, Json(Json::array_t(first, first + size))}});
        const Json& part = ArrayMember(answer, member);
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

void PrintFonts(const Json& fonts, const char* action) {
    for (const Json& font : fonts)
        PrintLine(std::string(action) + " " + StringMember(font, kGS_PostScriptNameKey));
}

Json ListFontsBy(AgentSession& session, Json filter) {
    Json all = Json::array();
    const bool isOffered = BoolMember(filter, member::kVisible);
    filter[member::kAfter] = 0;
    for (;;) {
        const Json page = session.Call(method::kListFonts, filter);
        const Json& fonts = ArrayMember(page, member::kFonts);
        if (fonts.empty())
            return all;
        filter[member::kAfter] = IntegerMember(fonts.back(), kGS_DatabaseIDKey);
        for (const Json& font : fonts) {
            if (isOffered && !BoolMember(font, member::kVisible))
                continue;
            if (session.PrintsJson())
                all.push_back(font);
            else
                PrintFontRow(font);
        }
    }
}

}  // namespace pellwick::cli
