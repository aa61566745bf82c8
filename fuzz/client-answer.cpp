// Answers of any content, of the agent and of the process that reads fonts, are refused or kept to the limits.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "Fuzz.h"
#include "PrintableText.h"
#include "client/CFJson.h"
#include "ipc/AgentConnection.h"
#include "preview/PreviewFolder.h"
#include "workers/FontWorkMessages.h"

using namespace pellwick;

namespace {

/// From JSON to CoreFoundation and back.
Json ThroughCF(const Json& value) {
    return JsonFromCF(CFFromJson(value).get());
}

/// What is nested too deep becomes null on the way back, and nulls are lost on the way there; the rest makes the trip
/// unchanged.
void CheckMessage(std::string_view payload) {
    const auto message = DecodeMessage(payload);
    if (!message)
        return;
    const Json& result = message->contains("result") ? message->at("result") : *message;
    const Json whole = ThroughCF(ThroughCF(result));
    // As messages: not-a-number equals nothing.
    Require(EncodeMessage(ThroughCF(whole)) == EncodeMessage(whole),
            "objects and values stand for one another");
    AddPreviews(cf::MutableDictionary().get(), ArrayMember(result, "previews"));
    Require(!FailureText(static_cast<ErrorCode>(IntegerMember(result, "code")), result).empty(),
            "failures have a text");
}

void CheckName(const std::string& name) {
    Require(name.size() <= kMaxNameSize && IsPlainText(name), "names are fit to keep and to show");
}

void CheckScan(std::string_view payload) {
    const auto result = ParseScanResult(payload);
    if (!result)
        return;
    Require(result->faces.size() <= kMaxFontsPerFile, "a file has as many fonts as it may have");
    Require(result->faces.empty() != result->reason.empty(), "there is a reason where there are no fonts");
    CheckName(result->reason);
    for (const FontFace& face : result->faces) {
        for (const std::string& name :
             {face.postScriptName, face.family, face.style, face.fullName, face.foundry, face.version})
            CheckName(name);
        std::for_each(face.lookupNames.begin(), face.lookupNames.end(), CheckName);
        Require(face.face >= 0, "faces are counted from 0");
    }
    const std::string again = EncodeScanResult(*result);
    Require(EncodeScanResult(ParseScanResult(again).value()) == again, "a result arrives as it was sent");
}

void CheckImage(std::string_view payload) {
    const auto image = ParseImage(payload);
    if (!image)
        return;
    Require(image->coverage.size() == static_cast<size_t>(image->width) * static_cast<size_t>(image->height),
            "an image has all its pixels");
    const std::string again = EncodeImage(*image);
    Require(EncodeImage(ParseImage(again).value()) == again, "an image arrives as it was sent");
    Require((image->width == 0) == EncodePng(*image).empty(), "an image can be stored");
}

}  // namespace

/// The first byte chooses who reads the rest.
std::vector<std::string> Seeds() {
    const Json record = {{kGS_DatabaseIDKey, 7}, {kGS_PostScriptNameKey, "Sample-Bold"},
                         {"FullName", "x"},      {kGS_KeywordsKey, {"a", "b", nullptr}},
                         {"ratio", 0.5},         {kGS_OutlineFileSizeKey, 1 << 30},
                         {"visible", true}};
    const Json images = {{member::kFont, 1}, {"PNGFilename", "/a"}, {"2xPNGFilename", "/b"}};
    FontFace face;
    face.postScriptName = "Sample-Bold";
    face.lookupNames = {"Sample Bold", "Sample"};
    const Json result = {{"fonts", {record, record}}, {"message", "no such font"}, {"previews", {images}}};
    return {"a" + EncodeMessage({{"id", 2}, {"code", 65537}, {"result", result}})->substr(4),  // no size
            "b" + EncodeScanResult({{face, face}, ""}), "b" + EncodeScanResult({{}, "damaged font file"}),
            "c" + EncodeImage({3, 2, {0, 1, 2, 253, 254, 255}}), "c" + EncodeImage({})};
}

void TryInput(const std::string& input) {
    constexpr void (*kChecks[])(std::string_view) = {CheckMessage, CheckScan, CheckImage};
    if (!input.empty())
        kChecks[static_cast<unsigned char>(input[0] - 'a') % 3](std::string_view(input).substr(1));
}
