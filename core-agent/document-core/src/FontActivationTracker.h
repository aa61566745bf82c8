// Which fonts the plug-in holds active, and for which documents: a reference count per font across documents,
// and the list of fonts of each document. A font is deactivated when no document needs it any more, the
// plug-in itself activated it, and the user wants fonts closed with their documents.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "FontManagerAccess.h"
#include "GMutex.h"

/// Status of a request that found no font manager running.
constexpr ErrorCode kErrorMarquellNotRunning = 1000;

/// Main thread. The lock guards the registers all the same; a call that comes back on the thread that holds
/// it, from a host that pumps events behind a dialog, is refused with CoreErrorCodes::kUnknownError.
class FontActivationTracker {
public:
    struct Registration {
        bool isAlreadyActive = false;  ///< the font was active before the plug-in asked for it
        std::string documentIdentifier;
        uint64_t deactivationContext = 0;
    };

    /// `preferences` is not owned and outlives the tracker.
    explicit FontActivationTracker(PreferenceAccess* preferences);

    /// The preferences that it was made with; may be null.
    PreferenceAccess* Preferences() const { return mPreferences; }

    /// A new identifier for a document: the text form of a fresh UUID.
    static std::string GenerateUniqueIdentifier();
    /// The identifier with that text; a single random byte when there is none, or one that is too long.
    static std::string IdentifierFromText(CFStringRef text);

    /// Has the document's fonts activated and registers every matched one. With an empty identifier each font
    /// is registered with the sub-documents that it names instead.
    ErrorCode ActivateDocumentFonts(const std::string& documentIdentifier, const std::string& documentPath,
                                    const DocumentFontLists& lists);
    /// Has the given fonts activated for the document; `outMatchedCount` is the number of matched fonts.
    ErrorCode ActivateFontsByID(const std::string& documentIdentifier, CFArrayRef fonts,
                                uint32_t& outMatchedCount);

    ErrorCode RegisterFontWithDocument(CFDictionaryRef fontDictionary, CFStringRef postscriptName,
                                       uint32_t databaseID, const Registration& registration);

    /// Lets go of a document's fonts. `fontsDeactivated` may be null; receives the records of the fonts that
    /// were deactivated.
    ErrorCode CloseAllFontsForIdentifier(const std::string& documentIdentifier, bool bDeactivateClosedFonts,
                                         CFMutableArrayRef fontsDeactivated);
    /// The same for a document that is gone, as soon as there is a font manager to let go of its fonts.
    void CloseLater(const std::string& documentIdentifier, bool bDeactivateClosedFonts);
    bool HasClosesToCatchUp() const { return !mClosesToCatchUp.empty(); }
    /// Does so if the font manager is running. To be called when the host is idle; document events do it
    /// first of all.
    void CatchUp();
    /// Lets go of every font, whatever documents hold it: the host quits.
    ErrorCode CloseAllFonts(bool bDeactivateClosedFonts);

private:
    struct TrackedFont {
        TrackedFont(CFDictionaryRef dictionary, CFStringRef name, const Registration& first)
            : fontDictionary(RetainCF(dictionary)),
              postScriptName(RetainCF(name)),
              deactivationContext(first.deactivationContext),
              isAlreadyActive(first.isAlreadyActive) {}

        /// As the font manager returned it; handed back to deactivate.
        CFRef<CFDictionaryRef> fontDictionary;
        CFRef<CFStringRef> postScriptName;
        uint64_t deactivationContext;
        bool isAlreadyActive;
        bool isPluginActivated = false;
        int32_t referenceCount = 0;
    };
    using TrackedFonts = std::map<uint32_t, TrackedFont>;

    ErrorCode RegisterMatchedFonts(CFArrayRef matchedFonts, const std::string& documentIdentifier);
    /// `registration` names the document; the rest of it is filled in here.
    ErrorCode RegisterMatchedFont(CFDictionaryRef font, int index, Registration& registration);
    ErrorCode CloseFontByFont(FontManagerAccess& fontManager, const std::vector<uint32_t>& databaseIDs,
                              bool deactivate, CFMutableArrayRef fontsDeactivated);
    ErrorCode CloseBatch(FontManagerAccess& fontManager, const std::vector<uint32_t>& databaseIDs,
                         const PluginActivationStates& states, bool deactivate,
                         CFMutableArrayRef fontsDeactivated);
    ErrorCode CloseDocument(FontManagerAccess& fontManager, const std::string& documentIdentifier,
                            bool deactivate, CFMutableArrayRef fontsDeactivated);
    ErrorCode CloseEveryFontByFont(FontManagerAccess& fontManager, bool deactivate);
    ErrorCode CloseEveryFontAtOnce(FontManagerAccess& fontManager, const PluginActivationStates& states,
                                   bool deactivate);

    /// The font manager if it is running, with what was put off done first.
    FontManagerAccess* RunningFontManager();

    PreferenceAccess* mPreferences;
    std::vector<std::pair<std::string, bool>> mClosesToCatchUp;  ///< identifiers, and whether to deactivate
    GMutex mRegistersLock;                                       ///< guards m_mFonts and m_mDocuments
    TrackedFonts m_mFonts;                                       ///< by database ID
    std::map<std::string, std::vector<uint32_t>> m_mDocuments;   ///< database IDs, one per registration
};
