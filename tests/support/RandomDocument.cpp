#include "RandomDocument.h"

#include <array>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

constexpr std::array kExtensions{"ai"sv,  "ait"sv, "pdf"sv,  "psd"sv, "psb"sv,
                                 "aep"sv, "aet"sv, "aepx"sv, "eps"sv, "indd"sv};

// Whole markers, halves of them, and what stands between them.
const std::vector<std::string_view>& Pieces() {
    static const std::vector<std::string_view> pieces = [] {
        constexpr auto kAll =
            "/FontName|/FontName /|/FontName/|/Font|Name /|+|/|>>|>|/FontSet [|/FontSet |[|/Name "
            "(|/Name|\xFE\xFF|\xFE"
            "|)|) |]|>> /0 << /1 << /0 [|>> /0 << /1| << /0 [|<< /99 /CoolTypeFont /0|<< /99 |/CoolTypeFont "
            "/0|/0 ("
            "|] >>|\\|\0| |\n|\xE9|\x7F|MyriadPro-Regular|Myriad-Roman|AdobeInvisFont|\0A\0r\0i\0a\0l|ABCDEF+"
            "|Name-Bold"sv;
        std::vector<std::string_view> found;
        for (size_t begin = 0, end = 0; end != kAll.npos; begin = end + 1) {
            end = kAll.find('|', begin);
            found.push_back(kAll.substr(begin, end - begin));
        }
        return found;
    }();
    return pieces;
}

std::string Name(std::mt19937_64& random) {
    constexpr std::array kNames{"Arial"sv, "MyriadPro-Regular"sv, "Myriad-Roman"sv, "AdobeInvisFont"sv,
                                "Times-Bold"sv};
    std::string name(kNames[random() % kNames.size()]);
    if (random() % 4 == 0)
        name = "ABCDEF+" + name;
    return name;
}

/// A font dictionary as one of the writers would make it, so that names are really found.
std::string WholeDictionary(std::mt19937_64& random) {
    switch (random() % 4) {
        case 0:
            return "<< /FontName /" + Name(random) + " /Flags 4 >>";
        case 1:
            return "<< /FontName/" + Name(random) + "/Flags 4>>";
        case 2: {
            std::string list = "/FontSet [ ";
            for (size_t count = random() % 4; count > 0; --count)
                list += "<< /Name (\xFE\xFF" + Name(random) + ") >> ";
            return list + "]";
        }
        default: {
            std::string layer = ">> /0 << /1 << /0 [ ";
            for (size_t count = random() % 4; count > 0; --count)
                layer += "<< /99 /CoolTypeFont /0 << /0 (\xFE\xFF" + Name(random) + ") /2 1 >> >> ";
            return layer + "] >> ";
        }
    }
}

}  // namespace

RandomDocument MakeRandomDocument(std::mt19937_64& random) {
    RandomDocument document;
    document.extension = kExtensions[random() % kExtensions.size()];
    for (size_t count = random() % 60; count > 0; --count) {
        const size_t choice = random() % 16;
        if (choice < 4)
            document.content += WholeDictionary(random);
        else if (choice == 4)
            document.content.append(random() % 200, '.');
        else
            document.content += Pieces()[random() % Pieces().size()];
    }
    document.chunkSize = 64 + random() % (document.content.size() + 64);
    document.windowSize = 1 + random() % (random() % 2 == 0 ? 64 : 1024);
    return document;
}
