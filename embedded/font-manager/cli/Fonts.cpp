#include "cli/Fonts.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Environment.h"

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
        case kFontActivationState_SystemFont:
            return "system";
        default:
            return "-";
    }
}

/// Filled up to so many columns, for a terminal that gives each character one.
std::string Filled(std::string text, size_t width) {
    const size_t length = CountCodePoints(text);
    return length < width ? text.append(width - length, ' ') : text;
}

/// A person sees one line a font; programs and files get all of it.
void PrintFontRow(const Json& font, int width) {
    const auto text = [&](const char* key) { return PrintableText(StringMember(font, key)); };
    std::string row = Filled(std::to_string(IntegerMember(font, kGS_DatabaseIDKey)), 6) + " " +
                      Filled(StateText(IntegerMember(font, kGS_ActivationStateKey)), 7) + " " +
                      Filled(text(kGS_PostScriptNameKey), 32) + " " + text(kGS_FamilyKey) + ", " +
                      text(kGS_StyleKey) + " (" + text(kGS_FontKindKey) + ")";
    if (width > 1 && CountCodePoints(row) > static_cast<size_t>(width))
        row = FirstCodePoints(row, static_cast<size_t>(width) - 1) + "\u2026";
    std::puts(row.c_str());
}

bool IsWanted(const Json& font, const FontFilter& filter) {
    const auto contains = [&](const char* key) {
        return AsciiLowerCase(StringMember(font, key)).find(AsciiLowerCase(filter.text)) != std::string::npos;
    };
    return (!filter.isVisible || BoolMember(font, member::kVisible)) &&
           (filter.family.empty() ||
            AsciiLowerCase(StringMember(font, kGS_FamilyKey)) == AsciiLowerCase(filter.family)) &&
           (filter.state.empty() || filter.state == StateText(IntegerMember(font, kGS_ActivationStateKey))) &&
           (filter.text.empty() || contains(kGS_PostScriptNameKey) || contains(kGS_FamilyKey) ||
            contains(member::kFullName));
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

Json ListFontsBy(AgentSession& session, Json source, const FontFilter& filter) {
    const int width = platform::TerminalWidth(platform::StandardStream::kOutput);
    Json all = Json::array();
    source[member::kVisible] = filter.isVisible;
    source[member::kAfter] = 0;
    for (;;) {
        const Json page = session.Call(method::kListFonts, source);
        const Json& fonts = ArrayMember(page, member::kFonts);
        if (fonts.empty())
            return all;
        source[member::kAfter] = IntegerMember(fonts.back(), kGS_DatabaseIDKey);
        for (const Json& font : fonts) {
            if (!IsWanted(font, filter))
                continue;
            if (session.PrintsJson())
                all.push_back(font);
            else
                PrintFontRow(font, width);
        }
    }
}

Json WithoutSystemFonts(const Json& fonts, const char* why) {
    Json own = Json::array();
    Json systems = Json::array();
    for (const Json& font : fonts) {
        const bool isSystems = IntegerMember(font, kGS_ActivationStateKey) == kFontActivationState_SystemFont;
        (isSystems ? systems : own).push_back(font);
    }
    if (own.empty()) {
        for (const Json& font : systems)
            PrintError(StringMember(font, kGS_PostScriptNameKey) + " is the system's own, " + why);
    }
    return own;
}

}  // namespace pellwick::cli
