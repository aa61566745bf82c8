#include "FontList.h"

#include <algorithm>

#include "DocumentLimits.h"
#include "ReadProblem.h"

namespace documents {
namespace {

bool IsName(std::string_view name) {
    return name.size() <= kMaxNameSize;
}

void AddPlace(std::vector<std::string>& places, std::string&& place) {
    if (place.empty() || places.size() > kMaxPlaces ||
        std::find(places.begin(), places.end(), place) != places.end())
        return;
    places.push_back(places.size() == kMaxPlaces ? "…" : std::move(place));
}

std::string Join(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

std::string WeightName(std::string_view weight) {
    static constexpr std::string_view kNames[] = {"Thin",     "ExtraLight", "Light",     "",     "Medium",
                                                  "SemiBold", "Bold",       "ExtraBold", "Black"};
    if (weight.size() == 3 && weight[0] >= '1' && weight[0] <= '9' && weight.ends_with("00"))
        return std::string(kNames[weight[0] - '1']);
    return weight == "bold" || weight == "bolder" ? "Bold" : "";
}

std::string SlantName(std::string_view slant) {
    return slant == "italic" ? "Italic" : slant.starts_with("oblique") ? "Oblique" : "";
}

}  // namespace

void FontList::Add(DocumentFont font) {
    if (font.postScriptName.empty() || !IsName(font.postScriptName) || !IsName(font.family) ||
        !IsName(font.style))
        return;
    Use& use = mFonts[{std::move(font.postScriptName), std::move(font.family), std::move(font.style)}];
    if (mFonts.size() > kMaxFonts)
        throw ReadProblem("names more than " + std::to_string(kMaxFonts) + " fonts");
    use.isEmbedded = use.isEmbedded && font.isEmbedded;
    AddPlace(use.places, std::move(font.where));
}

void FontList::AddPlaced(std::string path) {
    constexpr size_t kMaxPath = 4096;
    if (!path.empty() && path.size() <= kMaxPath && mPlaced.size() < kMaxPlaced)
        mPlaced.insert(std::move(path));
}

std::vector<DocumentFont> FontList::Take() {
    std::vector<DocumentFont> fonts;
    for (auto& [names, use] : mFonts)
        fonts.push_back(
            {std::get<0>(names), std::get<1>(names), std::get<2>(names), Join(use.places), use.isEmbedded});
    return fonts;
}

DocumentFont FontOfFamily(std::string_view family, std::string_view style, std::string where) {
    std::string name(family);
    if (!family.empty() && !style.empty() && style != "Regular")
        name += " " + std::string(style);
    return {std::move(name), std::string(family), std::string(style), std::move(where)};
}

std::string StyleName(std::string_view weight, std::string_view slant) {
    const std::string weightName = WeightName(weight);
    const std::string slantName = SlantName(slant);
    if (weightName.empty() && slantName.empty())
        return weight.empty() && slant.empty() ? "" : "Regular";
    return weightName + (weightName.empty() || slantName.empty() ? "" : " ") + slantName;
}

std::string PagesText(const std::vector<int>& pages) {
    std::vector<std::string> ranges;
    for (size_t first = 0, last = 0; first < pages.size(); first = ++last) {
        while (last + 1 < pages.size() && pages[last + 1] == pages[last] + 1)
            ++last;
        AddPlace(ranges,
                 std::to_string(pages[first]) + (last == first ? "" : "-" + std::to_string(pages[last])));
    }
    return (pages.size() == 1 ? "page " : "pages ") + Join(ranges);
}

}  // namespace documents
