#include "FontActivationTracker.h"

#include <cstdlib>
#include <optional>

#include "FontRecordKeys.h"
#include "ScopeExit.h"
#include "TraceLog.h"

namespace {

ErrorCode RefuseReentry(const char* function) {
    LogMessage(0, "ERROR: %s() called recursively.", function);
    return CoreErrorCodes::kUnknownError;
}

/// The text for a trace line; empty, and nothing is converted, while nobody hears the trace.
std::string TraceText(CFStringRef string) {
    return IsTraceHeard() ? cf::ToUtf8(string) : std::string();
}

/// The closing line of an activation; without a font manager nothing was asked for.
void CloseActivationStep(const char* name, const FontManagerAccess* fontManager, ErrorCode status) {
    if (fontManager != nullptr)
        LogMessage(-1, "%s returning %d", name, static_cast<int>(status));
    else
        LogMessage(-1, "%s returning kErrorMarquellNotRunning (EARLY RETURN)", name);
}

bool IsStillPluginActivated(const PluginActivationStates& states, uint32_t databaseID) {
    const auto found = states.find(databaseID);
    return found == states.end() || found->second;
}

}  // namespace

FontActivationTracker::FontActivationTracker(PreferenceAccess* preferences) : mPreferences(preferences) {}

FontManagerAccess* FontActivationTracker::RunningFontManager() {
    FontManagerAccess* fontManager = GetFontManagerAccess();
    if (fontManager == nullptr || !fontManager->IsRunning())
        return nullptr;
    const auto closes = std::exchange(mClosesToCatchUp, {});
    for (const auto& [documentIdentifier, deactivate] : closes) {
        if (CloseAllFontsForIdentifier(documentIdentifier, deactivate, nullptr) == kErrorMarquellNotRunning)
            CloseLater(documentIdentifier, deactivate);
    }
    return fontManager;
}

void FontActivationTracker::CloseLater(const std::string& documentIdentifier, bool bDeactivateClosedFonts) {
    mClosesToCatchUp.emplace_back(documentIdentifier, bDeactivateClosedFonts);
}

void FontActivationTracker::CatchUp() {
    if (HasClosesToCatchUp())
        RunningFontManager();
}

std::string FontActivationTracker::GenerateUniqueIdentifier() {
    const auto uuid = CFRef<CFUUIDRef>::Adopt(CFUUIDCreate(kCFAllocatorDefault));
    const auto text =
        CFRef<CFStringRef>::Adopt(uuid ? CFUUIDCreateString(kCFAllocatorDefault, uuid.get()) : nullptr);
    std::string identifier = IdentifierFromText(text.get());
    LogMessage(0, "FontActivationTracker::GenerateUniqueIdentifier() returning '%s'", identifier.c_str());
    return identifier;
}

std::string FontActivationTracker::IdentifierFromText(CFStringRef text) {
    char buffer[100];
    if (text != nullptr && CFStringGetCString(text, buffer, sizeof buffer, kCFStringEncodingUTF8))
        return buffer;
    return std::string(1, static_cast<char>(std::rand()));
}

ErrorCode FontActivationTracker::ActivateDocumentFonts(const std::string& documentIdentifier,
                                                       const std::string& documentPath,
                                                       const DocumentFontLists& lists) {
    FontManagerAccess* fontManager = nullptr;
    ErrorCode status = kErrorMarquellNotRunning;
    const TraceScope trace([&] { CloseActivationStep("ActivateDocumentFonts", fontManager, status); },
                           "Entering %s(documentPath = \"%s\")",
                           "FontActivationTracker::ActivateDocumentFonts", documentPath.c_str());
    fontManager = RunningFontManager();
    if (fontManager == nullptr)
        return status;
    status = CoreErrorCodes::kUnknownError;
    if (!fontManager->IsBatchMode())
        return status = CoreErrorCodes::kSuccess;
    status = fontManager->ActivateDocumentFonts(documentPath, lists);
    const ErrorCode registered = RegisterMatchedFonts(lists.matchedFonts, documentIdentifier);
    if (status == CoreErrorCodes::kSuccess)
        status = registered;
    return status;
}

ErrorCode FontActivationTracker::ActivateFontsByID(const std::string& documentIdentifier, CFArrayRef fonts,
                                                   uint32_t& outMatchedCount) {
    FontManagerAccess* fontManager = nullptr;
    ErrorCode status = kErrorMarquellNotRunning;
    const TraceScope trace([&] { CloseActivationStep("ActivateFontsByID", fontManager, status); },
                           "Entering ActivateFontsByID(documentIdentifier = \"%s\")",
                           documentIdentifier.c_str());
    fontManager = RunningFontManager();
    if (fontManager == nullptr)
        return status;
    status = CoreErrorCodes::kUnknownError;
    if (!fontManager->IsBatchMode())
        return status = CoreErrorCodes::kSuccess;
    const CFRef<CFMutableArrayRef> matchedFonts = cf::MutableArray();
    status = fontManager->ActivateFontsByID(fonts, documentIdentifier, matchedFonts.get());
    outMatchedCount = static_cast<uint32_t>(CFArrayGetCount(matchedFonts.get()));
    const ErrorCode registered = RegisterMatchedFonts(matchedFonts.get(), documentIdentifier);
    if (status == CoreErrorCodes::kSuccess)
        status = registered;
    return status;
}

ErrorCode FontActivationTracker::RegisterMatchedFonts(CFArrayRef matchedFonts,
                                                      const std::string& documentIdentifier) {
    ErrorCode status = CoreErrorCodes::kSuccess;
    Registration registration{false, documentIdentifier, 0};
    int index = 0;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(matchedFonts)) {
        const ErrorCode registered = RegisterMatchedFont(font, index++, registration);
        if (status == CoreErrorCodes::kSuccess)
            status = registered;
    }
    return status;
}

ErrorCode FontActivationTracker::RegisterMatchedFont(CFDictionaryRef font, int index,
                                                     Registration& registration) {
    const CFStringRef name = cf::Get<CFStringRef>(font, kGS_PostScriptNameKey);
    const auto databaseID = static_cast<uint32_t>(cf::GetInt64(font, kGS_DatabaseIDKey).value_or(0));
    if (name == nullptr || databaseID == 0) {
        LogMessage(0,
                   "   ...Error:  PostscriptName and/or DatabaseID not found in matched font dict for i = %d",
                   index);
        return CoreErrorCodes::kSuccess;
    }
    const std::optional<int64_t> state = cf::GetInt64(font, kGS_ActivationStateKey);
    LogMessage(0, "kGS_ActivationStateKey '%s', kGS_DatabaseIDKey %d for '%s')",
               state ? std::to_string(*state).c_str() : "NULL", static_cast<int>(databaseID),
               TraceText(name).c_str());
    registration.isAlreadyActive = state && FontActivationStateCountsAsActive(*state) != 0;
    if (!registration.documentIdentifier.empty())
        return RegisterFontWithDocument(font, name, databaseID, registration);

    const CFArrayRef subDocuments = cf::GetArray(font, kGS_SubDocumentsWithFontKey);
    if (subDocuments == nullptr)
        LogMessage(0, "WARNING:  font %d for document '%s' has no kGS_SubDocumentsWithFontKey", index,
                   registration.documentIdentifier.c_str());
    ErrorCode status = CoreErrorCodes::kSuccess;
    for (const CFStringRef subDocument : cf::Elements<CFStringRef>(subDocuments)) {
        if (subDocument == nullptr)
            continue;
        const ErrorCode registered = RegisterFontWithDocument(
            font, name, databaseID, {registration.isAlreadyActive, cf::ToUtf8(subDocument), 0});
        if (status == CoreErrorCodes::kSuccess)
            status = registered;
    }
    return status;
}

ErrorCode FontActivationTracker::RegisterFontWithDocument(CFDictionaryRef fontDictionary,
                                                          CFStringRef postscriptName, uint32_t databaseID,
                                                          const Registration& registration) {
    const TraceScope trace([] { LogMessage(-1, "Exiting RegisterFontWithDocument"); },
                           "Entering RegisterFontWithDocument(postscriptName='%s', sDocumentIdentifier='%s')",
                           TraceText(postscriptName).c_str(), registration.documentIdentifier.c_str());
    const GScopedLock lock(mRegistersLock);
    if (lock.Status() != CoreErrorCodes::kSuccess)
        return RefuseReentry("FontActivationTracker::RegisterFontWithDocument");

    TrackedFont& font =
        m_mFonts.try_emplace(databaseID, fontDictionary, postscriptName, registration).first->second;
    font.isPluginActivated = true;
    m_mDocuments[registration.documentIdentifier].push_back(databaseID);
    ++font.referenceCount;
    return CoreErrorCodes::kSuccess;
}

ErrorCode FontActivationTracker::CloseAllFontsForIdentifier(const std::string& documentIdentifier,
                                                            bool bDeactivateClosedFonts,
                                                            CFMutableArrayRef fontsDeactivated) {
    constexpr char kName[] = "FontActivationTracker::CloseAllFontsForIdentifier";
    FontManagerAccess* fontManager = RunningFontManager();
    if (fontManager == nullptr)
        return kErrorMarquellNotRunning;
    std::optional<ErrorCode> result;  // none while an exception leaves
    const TraceScope trace(
        [&] {
            if (result)
                LogMessage(-1, "%s() returning %d", kName, static_cast<int>(*result));
            else
                LogMessage(-1, "%s() exiting abnormally", kName);
        },
        "Entering %s('%s', bDeactivateClosedFonts=%d, fontsDeactivated=0x%08x)", kName,
        documentIdentifier.c_str(), bDeactivateClosedFonts, TraceAddress(fontsDeactivated));
    const GScopedLock lock(mRegistersLock);
    result = lock.Status() == CoreErrorCodes::kSuccess
                 ? CloseDocument(*fontManager, documentIdentifier, bDeactivateClosedFonts, fontsDeactivated)
                 : RefuseReentry(kName);
    return *result;
}

ErrorCode FontActivationTracker::CloseDocument(FontManagerAccess& fontManager,
                                               const std::string& documentIdentifier, bool deactivate,
                                               CFMutableArrayRef fontsDeactivated) {
    const auto document = m_mDocuments.find(documentIdentifier);
    if (document == m_mDocuments.end()) {
        LogMessage(0, "No entry in FontActivationTracker::m_mDocuments for '%s'", documentIdentifier.c_str());
        return CoreErrorCodes::kSuccess;
    }
    // Gone whatever comes, so that no font is let go twice.
    const ScopeExit erase([&] { m_mDocuments.erase(document); });
    ErrorCode result = CoreErrorCodes::kSuccess;
    const std::vector<uint32_t>& databaseIDs = document->second;
    if (databaseIDs.empty()) {
        LogMessage(0, "No fonts registered for '%s'", documentIdentifier.c_str());
    } else {
        const PluginActivationStates states = fontManager.GetPluginActivationStates(databaseIDs);
        result = fontManager.IsBatchMode()
                     ? CloseBatch(fontManager, databaseIDs, states, deactivate, fontsDeactivated)
                     : CloseFontByFont(fontManager, databaseIDs, deactivate, fontsDeactivated);
    }
    return result;
}

ErrorCode FontActivationTracker::CloseFontByFont(FontManagerAccess& fontManager,
                                                 const std::vector<uint32_t>& databaseIDs, bool deactivate,
                                                 CFMutableArrayRef fontsDeactivated) {
    ErrorCode result = CoreErrorCodes::kSuccess;
    for (const uint32_t databaseID : databaseIDs) {
        const auto found = m_mFonts.find(databaseID);
        if (found == m_mFonts.end())
            continue;
        TrackedFont& font = found->second;
        if (--font.referenceCount != 0 || !deactivate)
            continue;
        if (!font.isAlreadyActive) {
            const int16_t status =
                fontManager.XTDeactivateFont(font.fontDictionary.get(), font.deactivationContext);
            if (status == 0) {
                if (fontsDeactivated != nullptr)
                    CFArrayAppendValue(fontsDeactivated, font.fontDictionary.get());
            } else {
                LogMessage(0, "XTDeactivateFont returned %d", status);
                result = static_cast<ErrorCode>(status);
                if (result == kErrorMarquellNotRunning)
                    break;
            }
        }
        m_mFonts.erase(found);
    }
    return result;
}

ErrorCode FontActivationTracker::CloseBatch(FontManagerAccess& fontManager,
                                            const std::vector<uint32_t>& databaseIDs,
                                            const PluginActivationStates& states, bool deactivate,
                                            CFMutableArrayRef fontsDeactivated) {
    const CFRef<CFMutableArrayRef> fontsToDeactivate = cf::MutableArray();
    for (const uint32_t databaseID : databaseIDs) {
        const auto found = m_mFonts.find(databaseID);
        if (found == m_mFonts.end()) {
            LogMessage(0, "No entry found for nDatabaseID(%d) in FontManagerInterface::m_mFonts",
                       static_cast<int>(databaseID));
            continue;
        }
        TrackedFont& font = found->second;
        LogMessage(0, "Considering whether to deactivate databaseID %d", static_cast<int>(databaseID));
        --font.referenceCount;
        if (!deactivate)
            continue;
        const std::string name = TraceText(font.postScriptName.get());
        if (font.referenceCount > 0)
            LogMessage(0, "Not deactivating '%s' because its ref count is %d", name.c_str(),
                       font.referenceCount);
        if (font.referenceCount != 0)
            continue;
        if (!IsStillPluginActivated(states, databaseID)) {
            LogMessage(0, "Not deactivating '%s' because it is no longer plugin activated", name.c_str());
        } else if (!font.isAlreadyActive) {
            LogMessage(0, "Adding '%s' to fontsToDeactivate.", name.c_str());
            CFArrayAppendValue(fontsToDeactivate.get(), font.fontDictionary.get());
        } else {
            LogMessage(0, "Not deactivating '%s' because it was already active", name.c_str());
        }
        m_mFonts.erase(found);
    }
    return fontManager.DeactivateFonts(fontsToDeactivate.get(), 0, fontsDeactivated);
}

ErrorCode FontActivationTracker::CloseAllFonts(bool bDeactivateClosedFonts) {
    FontManagerAccess* fontManager = RunningFontManager();
    if (fontManager == nullptr)
        return kErrorMarquellNotRunning;
    ErrorCode result = CoreErrorCodes::kSuccess;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "FontActivationTracker::CloseAllFonts() returning %d", static_cast<int>(result));
        },
        "Entering  FontActivationTracker::CloseAllFonts(bDeactivateClosedFonts=%d)", bDeactivateClosedFonts);
    if (!m_mFonts.empty()) {
        const GScopedLock lock(mRegistersLock);
        if (lock.Status() == CoreErrorCodes::kSuccess) {
            std::vector<uint32_t> databaseIDs;
            databaseIDs.reserve(m_mFonts.size());
            for (const auto& [databaseID, font] : m_mFonts)
                databaseIDs.push_back(databaseID);
            const PluginActivationStates states = fontManager->GetPluginActivationStates(databaseIDs);
            result = fontManager->IsBatchMode()
                         ? CloseEveryFontAtOnce(*fontManager, states, bDeactivateClosedFonts)
                         : CloseEveryFontByFont(*fontManager, bDeactivateClosedFonts);
            m_mFonts.clear();
        } else {
            result = RefuseReentry("FontActivationTracker::CloseAllFonts");
        }
    }
    return result;
}

ErrorCode FontActivationTracker::CloseEveryFontByFont(FontManagerAccess& fontManager, bool deactivate) {
    ErrorCode result = CoreErrorCodes::kSuccess;
    for (auto& [databaseID, font] : m_mFonts) {
        if (!font.isPluginActivated || font.isAlreadyActive || !deactivate)
            continue;
        const int16_t status =
            fontManager.XTDeactivateFont(font.fontDictionary.get(), font.deactivationContext);
        if (status == 0)
            continue;
        LogMessage(0, "XTDeactivateFont returned %d", status);
        result = static_cast<ErrorCode>(status);
        if (result == kErrorMarquellNotRunning)
            break;
    }
    return result;
}

ErrorCode FontActivationTracker::CloseEveryFontAtOnce(FontManagerAccess& fontManager,
                                                      const PluginActivationStates& states, bool deactivate) {
    const CFRef<CFMutableArrayRef> fontsToDeactivate = cf::MutableArray();
    for (auto& [databaseID, font] : m_mFonts) {
        if (font.fontDictionary && font.isPluginActivated && !font.isAlreadyActive && deactivate &&
            IsStillPluginActivated(states, databaseID))
            CFArrayAppendValue(fontsToDeactivate.get(), font.fontDictionary.get());
    }
    return fontManager.DeactivateFonts(fontsToDeactivate.get(), 0, nullptr);
}
