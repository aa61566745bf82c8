// Finding and activating fonts.
#include <chrono>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "collect/FontCollector.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

ErrorCode Call(PluginFacadeRef facade, const char* method, const Json& arguments, Json& result) {
    return Library::Get().Call(facade, method, arguments, result);
}

/// Splits the fonts of a request so that each part and its answer fit into messages.
class FontParts {
public:
    explicit FontParts(const Json& fonts) : mFonts(fonts) {}

    /// The next part, which begins with the font at Begin(); empty behind the last one.
    Json Next() {
        mBegin = mEnd;
        Json part = Json::array();
        for (size_t size = 0; mEnd < mFonts.size() && part.size() < kMaxFontsPerRequest; ++mEnd) {
            size += MessageSize(mFonts[mEnd]);
            if (size > kMaxFontsSize && !part.empty())
                break;
            part.push_back(mFonts[mEnd]);
        }
        return part;
    }
    size_t Begin() const { return mBegin; }

private:
    const Json& mFonts;
    size_t mBegin = 0;
    size_t mEnd = 0;
};

/// A call for any number of fonts. Parts that are begun in time are called for one after the other, and
/// `take` gets the result of each with the position of its first font; it may change the arguments for the
/// next. GIPCClient::kReplyTimeout when the time was over before the last part.
template <class Take>
ErrorCode CallInParts(PluginFacadeRef facade, const char* method, Json& arguments, const Json& fonts,
                      const Take& take) {
    const auto end = std::chrono::steady_clock::now() + kPartsLimit;
    FontParts parts(fonts);
    Json part = parts.Next();
    do {
        arguments[member::kFonts] = std::move(part);
        Json result;
        const ErrorCode code = Call(facade, method, arguments, result);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        take(result, parts.Begin());
        part = parts.Next();
        if (!part.empty() && std::chrono::steady_clock::now() > end)
            return GIPCClient::kReplyTimeout;
    } while (!part.empty());
    return CoreErrorCodes::kSuccess;
}

/// The same for fonts by their IDs, when the result holds an array that is to be appended. What was done for
/// some of the fonts when the time was over is appended as well.
ErrorCode CallInPartsForFonts(PluginFacadeRef facade, const char* method, Json arguments, CFArrayRef fonts,
                              const char* member, CFMutableArrayRef appended) {
    Json all = Json::array();
    const ErrorCode code =
        CallInParts(facade, method, arguments, IDsFromCF(fonts), [&](const Json& result, size_t) {
            const Json& part = ArrayMember(result, member);
            all.insert(all.end(), part.begin(), part.end());
        });
    AppendJson(appended, all);  // also what was done before a later part failed
    return code;
}

/// A call whose result holds an array that is to be appended.
uint32_t CallForFonts(PluginFacadeRef facade, const char* method, const Json& arguments, const char* member,
                      CFMutableArrayRef fonts) {
    Json result;
    const ErrorCode code = Call(facade, method, arguments, result);
    if (code == CoreErrorCodes::kSuccess)
        AppendJson(fonts, ArrayMember(result, member));
    return code;
}

uint32_t FindByName(PluginFacadeRef facade, const char* method, CFStringRef name, int32_t workgroupID,
                    CFMutableArrayRef fonts) {
    return Guarded([&] {
        if (name == nullptr || fonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        return ErrorCode{CallForFonts(facade, method,
                                      {{member::kName, cf::ToUtf8(name)}, {member::kWorkgroup, workgroupID}},
                                      member::kFonts, fonts)};
    });
}

/// The members of a font's record that distinguish it from others of its name, as an XML property list.
CFRef<CFStringRef> FingerprintXML(const Json& font) {
    Json fingerprint = Json::object();
    for (const char* key :
         {kGS_PostScriptNameKey, kGS_FamilyKey, kGS_FoundryKey, kGS_FontKindKey, kGS_VersionKey,
          kGS_ChecksumKey, kGS_GlyphscanChecksumKey, kGS_KerningChecksumKey, kGS_OutlineFileSizeKey}) {
        if (font.contains(key))
            fingerprint[key] = font[key];
    }
    const CFRef<CFTypeRef> list = CFFromJson(fingerprint);
    const auto data = AdoptCF(CFPropertyListCreateXMLData(kCFAllocatorDefault, list.get()));
    if (!data)
        return nullptr;
    return cf::String({reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
                       static_cast<size_t>(CFDataGetLength(data.get()))});
}

/// Answers with what `read` takes from the font's record.
template <class Value, class Read>
uint32_t AnswerFromFont(PluginFacadeRef facade, uint32_t fontID, Value* out, Read read) {
    return Guarded([&] {
        if (out == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json font;
        const ErrorCode code = Call(facade, method::kGetFont, {{member::kFont, fontID}}, font);
        if (code == CoreErrorCodes::kSuccess)
            *out = read(font);
        return code;
    });
}

/// The candidates, each with the font and the document that it is for: so the choice is known when it is activated.
Json ChoicesFor(Json replacements, const std::string& name, const std::string& document) {
    for (Json& candidate : replacements) {
        candidate[kGS_ReplacementForKey] = name;
        candidate[kGS_ReplacementInKey] = document;
    }
    return replacements;
}

/// The requested record with the candidates in place of those that it may hold from another time. A bare name
/// stays one.
CFRef<CFTypeRef> UnmatchedFont(CFTypeRef requested, const Json& replacements, const std::string& document) {
    const auto record = cf::As<CFDictionaryRef>(requested);
    if (record == nullptr)
        return RetainCF(requested);
    auto unmatched = AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, record));
    for (const char* key : {kGS_ExactMatchKey, kGS_EntireFamilyKey})
        CFDictionaryRemoveValue(unmatched.get(), cf::String(key).get());
    cf::Set(
        unmatched, kGS_PossibleReplacementsKey,
        replacements.empty()
            ? nullptr
            : CFFromJson(ChoicesFor(replacements, cf::GetString(record, kGS_PostScriptNameKey), document)));
    return unmatched;
}

/// What the parts of a request for a document's fonts came to.
struct DocumentFonts {
    Json matched = Json::array();
    Json reported = Json::array();
    std::vector<CFIndex> unmatched;     ///< positions in the request
    Json replacements = Json::array();  ///< for the first of these
    std::set<long long> matchedIDs;

    void Add(const Json& result, size_t firstFont) {
        for (const Json& font : ArrayMember(result, member::kMatched)) {
            if (matchedIDs.insert(IntegerMember(font, kGS_DatabaseIDKey)).second)
                matched.push_back(font);  // else a part before named it, too
        }
        Append(reported, ArrayMember(result, member::kReported));
        Append(replacements, ArrayMember(result, member::kReplacements));
        for (const Json& index : ArrayMember(result, member::kUnmatched))
            unmatched.push_back(static_cast<CFIndex>(firstFont) + index.get<CFIndex>());
    }
    static void Append(Json& all, const Json& part) { all.insert(all.end(), part.begin(), part.end()); }
};

/// What goes with the fonts when they are collected: the document that uses them, and what it lacks.
void NoteDocument(const std::string& path, const Json& requests, DocumentFonts& found) {
    std::set<std::string> names = {path};
    for (Json& font : found.reported) {
        font.emplace(kGS_SourceDocumentNameKey, path);  // unless the host named one
        names.insert(StringMember(font, kGS_SourceDocumentNameKey));
    }
    Json missing = Json::array();
    for (const CFIndex position : found.unmatched) {
        if (position >= 0 && static_cast<size_t>(position) < requests.size())
            missing.push_back(MissingFont(path, requests[static_cast<size_t>(position)]));
    }
    for (const std::string& name : names)
        Library::Get().Missing().Note(name, missing);
}

void AppendUnmatched(CFMutableArrayRef unmatchedFonts, CFArrayRef requestedFonts, const DocumentFonts& found,
                     const std::string& document) {
    for (size_t index = 0; index < found.unmatched.size(); ++index) {
        const CFIndex position = found.unmatched[index];
        const bool hasReplacements = index < found.replacements.size();
        if (position >= 0 && position < CFArrayGetCount(requestedFonts))
            cf::Append(unmatchedFonts,
                       UnmatchedFont(CFArrayGetValueAtIndex(requestedFonts, position),
                                     hasReplacements ? found.replacements[index] : Json::object(), document));
    }
}

/// Replacements that the user chose are offered first the next time. Nobody misses that where it fails.
void NoteChoices(PluginFacadeRef facade, const Json& fonts) {
    Json choices = Json::array();
    for (const Json& font : fonts) {
        const std::string document = font.is_object() ? StringMember(font, kGS_ReplacementInKey) : "";
        if (!document.empty())
            choices.push_back({{member::kPath, document},
                               {member::kName, StringMember(font, kGS_ReplacementForKey)},
                               {member::kFont, IntegerMember(font, kGS_DatabaseIDKey)}});
    }
    Json ignored;
    if (!choices.empty())
        (void)Call(facade, method::kNoteChoices, {{member::kChoices, std::move(choices)}}, ignored);
}

}  // namespace

uint32_t ActivateFonts(PluginFacadeRef facade, CFArrayRef fonts, CFStringRef documentIdentifier,
                       CFStringRef mode, CFMutableArrayRef matchedFonts) {
    return Guarded([&] {
        const bool isGlobal = cf::ToUtf8(mode) == kGS_ActivateGlobally;
        Json ignored;
        if (fonts == nullptr)
            return isGlobal ? Call(facade, method::kKeepFonts, Json::object(), ignored)
                            : ErrorCode{CoreErrorCodes::kNullPointer};
        const ErrorCode code = CallInPartsForFonts(facade, method::kActivateFonts,
                                                   {{member::kDocument, cf::ToUtf8(documentIdentifier)}},
                                                   fonts, member::kMatched, matchedFonts);
        if (code == CoreErrorCodes::kSuccess)
            NoteChoices(facade, JsonFromCF(fonts));
        if (code != CoreErrorCodes::kSuccess || !isGlobal)
            return code;
        Json arguments = Json::object();
        return CallInParts(facade, method::kKeepFonts, arguments, IDsFromCF(fonts),
                           [](const Json&, size_t) {});
    });
}

uint32_t ActivateDocumentFontsByPath(PluginFacadeRef facade, CFStringRef documentPath,
                                     CFArrayRef requestedFonts, CFMutableArrayRef matchedFonts,
                                     CFMutableArrayRef unmatchedFonts, CFMutableArrayRef reportedFonts) {
    return Guarded([&] {
        if (requestedFonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        DocumentFonts found;
        const std::string path = cf::ToUtf8(documentPath);
        const Json requests = JsonFromCF(requestedFonts);
        Json arguments = {{member::kDocument, path}};
        const ErrorCode code = CallInParts(facade, method::kActivateDocumentFonts, arguments, requests,
                                           [&](const Json& result, size_t first) {
                                               found.Add(result, first);
                                               arguments[member::kReplacements] =
                                                   kMaxFontsWithReplacements - found.replacements.size();
                                           });
        AppendJson(matchedFonts, found.matched);  // what is active is the caller's to let go of
        if (code != CoreErrorCodes::kSuccess)
            return code;
        NoteDocument(path, requests, found);
        AppendJson(reportedFonts, found.reported);
        if (unmatchedFonts != nullptr)
            AppendUnmatched(unmatchedFonts, requestedFonts, found, path);
        return code;
    });
}

uint32_t DeactivateFonts(PluginFacadeRef facade, CFArrayRef fonts, uint64_t,
                         CFMutableArrayRef deactivatedFonts) {
    return Guarded([&] {
        if (fonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        return CallInPartsForFonts(facade, method::kDeactivateFonts, Json::object(), fonts,
                                   member::kDeactivated, deactivatedFonts);
    });
}

uint32_t EnableDesignActivation(PluginFacadeRef facade, uint32_t fontID, bool wholeFamily, bool enable,
                                CFMutableArrayRef conflictingFonts) {
    return Guarded([&] {
        return ErrorCode{CallForFonts(
            facade, method::kEnableDesignActivation,
            {{member::kFont, fontID}, {member::kWholeFamily, wholeFamily}, {member::kEnable, enable}},
            member::kConflicts, conflictingFonts)};
    });
}

uint32_t PreviewActivateFonts(PluginFacadeRef facade, CFArrayRef fonts, bool activate) {
    return Guarded([&] {
        if (fonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json ignored;
        return Call(facade, method::kPreviewActivateFonts,
                    {{member::kFonts, JsonFromCF(fonts)}, {member::kActivate, activate}}, ignored);
    });
}

uint32_t GetFontConflicts(PluginFacadeRef facade, CFArrayRef fontIDs, CFMutableArrayRef conflictingFonts) {
    return Guarded([&] {
        if (fontIDs == nullptr || conflictingFonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        return ErrorCode{CallForFonts(facade, method::kGetFontConflicts,
                                      {{member::kFonts, JsonFromCF(fontIDs)}}, member::kConflicts,
                                      conflictingFonts)};
    });
}

uint32_t GetClientFontActivationStates(PluginFacadeRef facade, CFArrayRef fontIDs,
                                       CFMutableDictionaryRef states) {
    return Guarded([&] {
        if (fontIDs == nullptr || states == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json result;
        const ErrorCode code =
            Call(facade, method::kGetClientStates, {{member::kFonts, JsonFromCF(fontIDs)}}, result);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        for (const Json& state : ArrayMember(result, member::kStates))
            CFDictionarySetValue(states, cf::Number(IntegerMember(state, member::kFont)).get(),
                                 cf::Bool(BoolMember(state, member::kIsActive)));
        return code;
    });
}

uint32_t GetFontInfoByID(PluginFacadeRef facade, uint32_t fontID, CFDictionaryRef* outNewFont) {
    return AnswerFromFont(facade, fontID, outNewFont, [](const Json& font) {
        return static_cast<CFDictionaryRef>(CFFromJson(font).release());
    });
}

uint32_t GetGlyphscanXMPData(PluginFacadeRef facade, uint32_t fontID, CFStringRef* outNewXML) {
    return AnswerFromFont(facade, fontID, outNewXML,
                          [](const Json& font) { return FingerprintXML(font).release(); });
}

uint32_t GetFontIsActivated(PluginFacadeRef facade, uint32_t fontID, int32_t* outActivationState) {
    return AnswerFromFont(facade, fontID, outActivationState, [](const Json& font) {
        return static_cast<int32_t>(IntegerMember(font, kGS_ActivationStateKey));
    });
}

uint32_t GetFontsByPostscriptName(PluginFacadeRef facade, CFStringRef name, int32_t workgroupID,
                                  CFMutableArrayRef fonts) {
    return FindByName(facade, method::kFindByPostScriptName, name, workgroupID, fonts);
}

uint32_t GetFontsByFamilyName(PluginFacadeRef facade, CFStringRef name, int32_t workgroupID,
                              CFMutableArrayRef fonts) {
    return FindByName(facade, method::kFindByFamilyName, name, workgroupID, fonts);
}

uint32_t FindFontsInSameFamilyForActivation(PluginFacadeRef facade, uint32_t fontID,
                                            CFMutableArrayRef fonts) {
    return Guarded([&] {
        if (fonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        return ErrorCode{
            CallForFonts(facade, method::kFindSameFamily, {{member::kFont, fontID}}, member::kFonts, fonts)};
    });
}
