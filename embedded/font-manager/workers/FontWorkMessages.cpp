#include "workers/FontWorkMessages.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "ipc/Message.h"
#include "preview/PreviewFolder.h"
#include "scan/CleanName.h"

namespace pellwick {
namespace {

constexpr char kMethod[] = "method";
constexpr char kScan[] = "scan";
constexpr char kDraw[] = "draw";
constexpr char kLicence[] = "licence";

std::string Encode(const Json& message) {
    std::string bytes;
    Json::to_msgpack(message, nlohmann::detail::output_adapter<char>(bytes));
    return bytes;
}

Json RowOf(const FontFace& face) {
    return {face.face,    face.postScriptName, face.family,      face.style,  face.fullName, face.foundry,
            face.version, face.kind,           face.lookupNames, face.glyphs, face.widths};
}

std::string NameOf(const Json& value) {
    return CleanName(value.get<std::string>());
}

/// Throws Json::exception or std::out_of_range for what is not a whole number of that type.
template <class Integer>
Integer NumberOf(const Json& value) {
    const auto number = value.get_ref<const Json::number_integer_t&>();
    if (!std::in_range<Integer>(number))
        throw std::out_of_range("a number of a message");
    return static_cast<Integer>(number);
}

/// Throws Json::exception or std::out_of_range for what is no such row.
FontFace FaceOf(const Json& row) {
    FontFace face;
    face.face = NumberOf<uint32_t>(row.at(0));
    face.postScriptName = NameOf(row.at(1));
    face.family = NameOf(row.at(2));
    face.style = NameOf(row.at(3));
    face.fullName = NameOf(row.at(4));
    face.foundry = NameOf(row.at(5));
    face.version = NameOf(row.at(6));
    face.kind = NumberOf<int32_t>(row.at(7));
    if (row.at(8).size() > kMaxLookupNames)
        throw std::length_error("more names than a scan finds");
    for (const Json& name : row.at(8))
        face.lookupNames.push_back(NameOf(name));
    face.glyphs = NameOf(row.at(9));
    face.widths = NameOf(row.at(10));
    return face;
}

Json TextsOf(const std::vector<std::string>& paths) {
    Json texts = Json::array();
    std::copy_if(paths.begin(), paths.end(), std::back_inserter(texts), IsValidUtf8);
    return texts;
}

/// What the messages' schema does not say comes as an exception, most often of the JSON library.
template <class Parse>
auto Parsed(std::string_view message, Parse parse) -> decltype(parse(Json())) {
    const std::optional<Json> decoded = DecodeMessage(message);
    try {
        if (decoded)
            return parse(*decoded);
    } catch (const Json::exception&) {
    } catch (const std::logic_error&) {  // numbers and lists that do not fit
    }
    return std::nullopt;
}

}  // namespace

std::string EncodeRequest(const FontWorkRequest& request) {
    switch (request.work) {
        case FontWork::kLicence:
            return Encode({{kMethod, kLicence}, {"face", request.font.face}});
        case FontWork::kDraw:
            return Encode({{kMethod, kDraw},
                           {"face", request.font.face},
                           {"fullName", request.font.fullName},
                           {"postScriptName", request.font.postScriptName},
                           {"scale", request.scale}});
        default:
            return Encode({{kMethod, kScan}});
    }
}

std::optional<FontWorkRequest> ParseRequest(std::string_view message) {
    return Parsed(message, [](const Json& decoded) -> std::optional<FontWorkRequest> {
        FontWorkRequest request;
        if (decoded.at(kMethod) == kScan)
            return request;
        request.work = decoded.at(kMethod) == kDraw ? FontWork::kDraw : FontWork::kLicence;
        request.font.face = NumberOf<int64_t>(decoded.at("face"));
        if (request.work == FontWork::kDraw) {
            request.font.fullName = decoded.at("fullName").get<std::string>();
            request.font.postScriptName = decoded.at("postScriptName").get<std::string>();
            request.scale = NumberOf<int>(decoded.at("scale"));
        }
        return request;
    });
}

std::string EncodeScanResult(const ScanResult& result) {
    Json faces = Json::array();
    for (const FontFace& face : result.faces)
        faces.push_back(RowOf(face));
    return Encode({{"faces", std::move(faces)}, {"reason", result.reason}});
}

std::optional<ScanResult> ParseScanResult(std::string_view message) {
    return Parsed(message, [](const Json& decoded) -> std::optional<ScanResult> {
        ScanResult result;
        result.reason = NameOf(decoded.at("reason"));
        if (decoded.at("faces").size() > kMaxFontsPerFile)
            return std::nullopt;
        std::set<int64_t> seen;
        for (const Json& row : decoded.at("faces")) {
            result.faces.push_back(FaceOf(row));
            if (!seen.insert(result.faces.back().face).second)
                return std::nullopt;
        }
        const bool isOneOfTwo = result.faces.empty() != result.reason.empty();
        return isOneOfTwo ? std::optional(std::move(result)) : std::nullopt;
    });
}

std::string EncodeInstalledFonts(const platform::InstalledFonts& fonts) {
    return Encode({{"files", TextsOf(fonts.files)}, {"folders", TextsOf(fonts.folders)}});
}

std::optional<platform::InstalledFonts> ParseInstalledFonts(std::string_view message) {
    return Parsed(message, [](const Json& decoded) -> std::optional<platform::InstalledFonts> {
        return platform::InstalledFonts{decoded.at("files").get<std::vector<std::string>>(),
                                        decoded.at("folders").get<std::vector<std::string>>()};
    });
}

std::string EncodeImage(const NameImage& image) {
    return Encode(
        {{"width", image.width}, {"height", image.height}, {"coverage", Json::binary(image.coverage)}});
}

std::optional<NameImage> ParseImage(std::string_view message) {
    return Parsed(message, [](const Json& decoded) -> std::optional<NameImage> {
        constexpr int kLargest = kPreviewScales.back();
        NameImage image{NumberOf<int>(decoded.at("width")), NumberOf<int>(decoded.at("height")),
                        decoded.at("coverage").get_binary()};
        const bool isOfSize =
            image.width >= 0 && image.width <= kLargest * kMaxPreviewWidth && image.height >= 0 &&
            image.height <= kLargest * kPreviewHeight && (image.width == 0) == (image.height == 0) &&
            image.coverage.size() == static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
        return isOfSize ? std::optional(std::move(image)) : std::nullopt;
    });
}

std::string EncodeLicence(const FontLicence& licence) {
    return Encode({{"embedding", licence.embedding ? Json(*licence.embedding) : Json()},
                   {"text", licence.text},
                   {"url", licence.url}});
}

std::optional<FontLicence> ParseLicence(std::string_view message) {
    return Parsed(message, [](const Json& decoded) -> std::optional<FontLicence> {
        FontLicence licence;
        if (const Json& embedding = decoded.at("embedding"); !embedding.is_null())
            licence.embedding = NumberOf<uint16_t>(embedding);
        licence.text = CleanText(decoded.at("text").get<std::string>(), kMaxLicenceSize);
        licence.url = NameOf(decoded.at("url"));
        return licence;
    });
}

}  // namespace pellwick
