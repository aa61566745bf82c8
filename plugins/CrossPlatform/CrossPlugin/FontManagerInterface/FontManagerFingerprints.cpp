// The facade's fingerprints: what tells one font from another of the same name.
#include <algorithm>
#include <cstdlib>

#include "FontManagerInterface.h"
#include "GFontManagerConstants.h"
#include "GPickBestMatch.h"
#include "TraceLog.h"

namespace {

/// Records do not tell a mode; any that the comparison does not set back will do.
constexpr int32_t kOrdinaryMode = 1;

CFRef<CFDictionaryRef> PropertyListFromXML(const std::string& xml) {
    const auto data = AdoptCF(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(xml.data()),
                                           static_cast<CFIndex>(xml.size())));
    if (!data) {
        LogLines(0, "...CFDataCreate could not deal with \"%s\".", xml.c_str());
        return nullptr;
    }
    CFStringRef failure = nullptr;
    const auto list = AdoptCF(
        CFPropertyListCreateFromXMLData(kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, &failure));
    const CFRef<CFStringRef> message = AdoptCF(failure);
    const auto dictionary = cf::As<CFDictionaryRef>(list.get());
    if (dictionary == nullptr)
        LogLines(0, "...CFPropertyListCreateFromXMLData failed on \"%s\".  OS message is:\n   \"%s\"",
                 xml.c_str(), cf::ToUtf8(message.get()).c_str());
    return RetainCF(dictionary);
}

/// Its file is on the server alone.
bool IsRemote(CFDictionaryRef font) {
    return cf::GetInt64(font, kGS_LocationKey) == 0;
}

/// The beginning of a checksum as a number; logs have no room for more.
int ShortChecksum(CFDictionaryRef font) {
    const std::string checksum = cf::GetString(font, kGS_ChecksumKey);
    return static_cast<int>(std::strtoul(checksum.substr(0, 8).c_str(), nullptr, 16));
}

BestMatchCandidate CandidateOf(CFDictionaryRef font) {
    BestMatchCandidate candidate;
    candidate.ID = static_cast<uint32_t>(cf::GetInt64(font, kGS_DatabaseIDKey).value_or(0));
    candidate.preferredIdentity = cf::GetString(font, kGS_FoundryKey);
    candidate.orderNumber = candidate.ID;
    candidate.kind = GFontManagerConstants::FontKindFromRecord(cf::GetString(font, kGS_FontKindKey));
    candidate.version = cf::GetString(font, kGS_VersionKey);
    candidate.status = static_cast<int32_t>(cf::GetInt64(font, kGS_ActivationStateKey).value_or(0));
    candidate.mode = kOrdinaryMode;
    return candidate;
}

bool IsBetter(CFDictionaryRef left, CFDictionaryRef right) {
    bool leftIsBetter = true;
    const ErrorCode code =
        GPickBestMatch::Compare(CandidateOf(left), CandidateOf(right), leftIsBetter, false, {}, 0);
    return code == CoreErrorCodes::kSuccess && leftIsBetter;
}

}  // namespace

std::vector<FontManagerInterface::Fingerprint> FontManagerInterface::GetGlyphscanDataForFontName(
    const std::string& name, int32_t workgroupID) {
    constexpr char kName[] = "FontManagerInterface::GetGlyphscanDataForFontName";
    std::vector<Fingerprint> fingerprints;
    const TraceScope trace(
        [&] { LogMessage(-1, "%s() returning %d match(es)", kName, static_cast<int>(fingerprints.size())); },
        "Entering %s('%s', workgroupID=%d, ...)", kName, name.c_str(), workgroupID);
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    CoreAgentInterface* const agent = sm_pFontManager;  // a dialog may outlast it
    if (agent == nullptr ||
        agent->GetFontsByPostscriptName(name, workgroupID, fonts.get()) != CoreErrorCodes::kSuccess)
        return fingerprints;
    const bool isStandalone = agent->IsRunningStandalone();
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts.get())) {
        CFRef<CFDictionaryRef> data = FingerprintOf(*agent, font);
        if (!data)
            continue;
        if (isStandalone && IsRemote(font))
            LogMessage(0,
                       "Excluding version with checksum %d because it's remote and we're running standalone.",
                       ShortChecksum(font));
        else
            fingerprints.push_back({RetainCF(font), std::move(data)});
    }
    return fingerprints;
}

CFRef<CFDictionaryRef> FontManagerInterface::FingerprintOf(CoreAgentInterface& agent, CFDictionaryRef font) {
    const auto databaseID = static_cast<uint32_t>(cf::GetInt64(font, kGS_DatabaseIDKey).value_or(0));
    const std::string name = cf::GetString(font, kGS_PostScriptNameKey);
    std::string xml;
    const ErrorCode code = agent.GetGlyphscanInfo(databaseID, xml);
    if (code == CoreErrorCodes::kSuccess && xml.empty()) {
        LogMessage(0, "...GetGlyphscanInfo returned %d but no Glyphscan info for %s (databaseID %d).",
                   static_cast<int>(code), name.c_str(), static_cast<int>(databaseID));
        return nullptr;
    }
    LogMessage(0, "...GetGlyphscanInfo returned %d for %s (databaseID %d).", static_cast<int>(code),
               name.c_str(), static_cast<int>(databaseID));
    return code == CoreErrorCodes::kSuccess ? PropertyListFromXML(xml) : nullptr;
}

CFRef<CFArrayRef> FontManagerInterface::GetGlyphscanData(const std::string& name, int32_t workgroupID) {
    std::vector<Fingerprint> fingerprints;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting GetGlyphscanData with data for %d match(es).",
                       static_cast<int>(fingerprints.size()));
        },
        "Entering GetGlyphscanData('%s', workgroupID=%d)", name.c_str(), workgroupID);
    fingerprints = GetGlyphscanDataForFontName(name, workgroupID);
    LogMessage(0, "...Sorting a %d-element array of Glyphscan data for '%s'.",
               static_cast<int>(fingerprints.size()), name.c_str());
    // By insertion: the comparison is not transitive for versions that cannot be read, which std::sort may
    // not be given.
    for (auto each = fingerprints.begin(); each != fingerprints.end(); ++each) {
        const auto place = std::find_if(fingerprints.begin(), each, [&](const Fingerprint& placed) {
            return IsBetter(each->font.get(), placed.font.get());
        });
        std::rotate(place, each, each + 1);
    }
    const CFRef<CFMutableArrayRef> data = cf::MutableArray();
    for (const Fingerprint& fingerprint : fingerprints)
        cf::Append(data, fingerprint.data);
    return data;
}
