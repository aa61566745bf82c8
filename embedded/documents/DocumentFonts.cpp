#include "DocumentFonts.h"

#include <nlohmann/json.hpp>

namespace documents {
namespace {

using nlohmann::json;

json Encode(const DocumentFont& font) {
    return {{"postScriptName", font.postScriptName},
            {"family", font.family},
            {"style", font.style},
            {"where", font.where},
            {"embedded", font.isEmbedded}};
}

DocumentFont ParseFont(const json& font) {
    return {font.at("postScriptName"), font.at("family"), font.at("style"), font.at("where"),
            font.at("embedded")};
}

ReadStatus ParseStatus(const json& status) {
    const int number = status.get<int>();
    return number == 0 ? ReadStatus::kRead : number == 1 ? ReadStatus::kUnknown : ReadStatus::kUnreadable;
}

}  // namespace

std::string EncodeDocumentFonts(const DocumentFonts& fonts) {
    json list = json::array();
    for (const DocumentFont& font : fonts.fonts)
        list.push_back(Encode(font));
    const json message = {{"status", static_cast<int>(fonts.status)},
                          {"reader", fonts.reader},
                          {"problem", fonts.problem},
                          {"fonts", std::move(list)},
                          {"placed", fonts.placed}};
    return message.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<DocumentFonts> ParseDocumentFonts(std::string_view text) {
    try {
        const json message = json::parse(text);
        DocumentFonts fonts{
            ParseStatus(message.at("status")), message.at("reader"), message.at("problem"), {}};
        for (const json& font : message.at("fonts"))
            fonts.fonts.push_back(ParseFont(font));
        fonts.placed = message.at("placed");
        return fonts;
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

}  // namespace documents
