#include "activation/MetricAliases.h"

#include <algorithm>
#include <array>

namespace pellwick {
namespace {

using Families = std::array<std::string_view, 8>;

constexpr Families kClasses[] = {
    {"helvetica", "arial", "nimbussans", "texgyreheros", "liberationsans", "arimo", "nimbussansl", "albany"},
    // "Roman" is a word for a style.
    {"times", "timesnew", "nimbus", "texgyretermes", "liberationserif", "tinos", "nimbusno9l",
     "nimbusromno9l"},
    {"courier", "couriernew", "nimbusmono", "texgyrecursor", "liberationmono", "cousine", "nimbusmonol",
     "cumberland"},
    {"calibri", "carlito"},
    {"cambria", "caladea"},
    {"georgia", "gelasio"},
    {"palatino", "palatinolinotype", "p052", "texgyrepagella", "urwpalladiol"},
    {"bookman", "itcbookman", "urwbookman", "texgyrebonum", "urwbookmanl"},
    {"avantgarde", "itcavantgardegothic", "urwgothic", "texgyreadventor", "urwgothicl"},
    {"newcenturyschoolbook", "newcenturyschlbk", "c059", "texgyreschola", "centuryschoolbookl"},
    {"zapfchancery", "itczapfchancery", "z003", "texgyrechorus", "urwchanceryl"},
    {"symbol", "standardsymbols", "standardsymbolsl"},
    {"zapfdingbats", "itczapfdingbats", "d050000l", "dingbats"}};

}  // namespace

std::span<const std::string_view> FamiliesOfSameMeasures(std::string_view family) {
    if (family.empty())
        return {};
    for (const Families& each : kClasses) {
        if (std::find(each.begin(), each.end(), family) != each.end())
            return {each.begin(), std::find(each.begin(), each.end(), std::string_view())};
    }
    return {};
}

}  // namespace pellwick
