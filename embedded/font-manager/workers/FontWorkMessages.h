// The messages between the agent and the process that reads fonts for it.
//
// Messages are MessagePack objects. A request comes with a font file: {"method": "scan"} for its faces, or
// {"method": "draw", "face", "fullName", "postScriptName", "scale"} for the image of a name, or {"method":
// "licence", "face"}. Answers are {"faces": [[face, PostScript name, family, style, full name, foundry, version,
// kind, [lookup names]]]} or {"reason"}, {"width", "height", "coverage"}, and {"embedding", "text", "url"}.
// The process reads untrusted files, so its answers are trusted no more than fonts are.
//
// The process that asks the system for its fonts gets any request, and answers {"files": [path],
// "folders": [path]}, or nothing where the system does not tell.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/FontManagerLimits.h"
#include "platform/FontTable.h"
#include "platform/Worker.h"
#include "preview/NameImage.h"
#include "scan/FontLicence.h"
#include "store/FontStore.h"

namespace pellwick {

/// The program, which stands beside the agent's.
inline constexpr char kFontWorkerProgram[] = "PellwickFontWorker";
/// The one that asks the system for its fonts, which stands there too.
inline constexpr char kSystemFontsProgram[] = "PellwickSystemFonts";

inline constexpr platform::WorkerLimits kFontWorkerLimits = {kWorkerMemory, kWorkerProcessorTime, kWorkerTime,
                                                             kMaxMessageSize};
/// It reads nothing but lists, unless the system has to look at new fonts.
inline constexpr platform::WorkerLimits kSystemFontsLimits = {kWorkerMemory, kSystemFontsTime,
                                                              kSystemFontsTime, kMaxMessageSize};

enum class FontWork { kScan, kDraw, kLicence };

struct FontWorkRequest {
    FontWork work = FontWork::kScan;
    FontFace font{};  ///< its face and the names to draw
    int scale = 1;
};

struct ScanResult {
    std::vector<FontFace> faces;  ///< empty when it is not a font that can be used
    std::string reason;           ///< why, for people
    bool isJudged = true;         ///< the file was read; false where the process came to an end over it
};

std::string EncodeRequest(const FontWorkRequest& request);
std::optional<FontWorkRequest> ParseRequest(std::string_view message);

std::string EncodeScanResult(const ScanResult& result);
/// Nothing for a malformed answer.
std::optional<ScanResult> ParseScanResult(std::string_view message);

/// Without what is not UTF-8, which nobody could be told of.
std::string EncodeInstalledFonts(const platform::InstalledFonts& fonts);
/// Nothing for a malformed answer, or an empty one.
std::optional<platform::InstalledFonts> ParseInstalledFonts(std::string_view message);

std::string EncodeImage(const NameImage& image);
/// As above.
std::optional<NameImage> ParseImage(std::string_view message);

std::string EncodeLicence(const FontLicence& licence);
/// As above.
std::optional<FontLicence> ParseLicence(std::string_view message);

}  // namespace pellwick
