// What documents need of the font manager, as seen from below: the tracker and the plug-in's globals call it,
// the font-manager facade implements it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ErrorCodes.h"

/// The lists of one document, each of font records, handed through to the font manager unchanged. Not owned;
/// any may be null.
struct DocumentFontLists {
    CFArrayRef requestedFonts = nullptr;         ///< what the document uses
    CFMutableArrayRef matchedFonts = nullptr;    ///< filled with one record per match, states from before
    CFMutableArrayRef reportedFonts = nullptr;   ///< array A: filled with the fonts that were matched
    CFMutableArrayRef unmatchedFonts = nullptr;  ///< array B: filled with the fonts that have no match
};

using PluginActivationStates = std::map<uint32_t, bool>;  ///< by database ID

/// All calls on the host's main thread. Statuses: 0 for success, else the font manager's code.
class FontManagerAccess {
public:
    virtual ~FontManagerAccess() = default;

    virtual bool IsRunning() = 0;
    /// Whether the font manager takes activation and deactivation as batch calls.
    virtual bool IsBatchMode() = 0;
    virtual bool IsLoggedIn() = 0;

    virtual ErrorCode ActivateDocumentFonts(const std::string& documentPath,
                                            const DocumentFontLists& lists) = 0;
    virtual ErrorCode ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                        CFMutableArrayRef matchedFonts) = 0;
    /// Whether each font is still active on behalf of the plug-in; fonts that it cannot tell are left out.
    virtual PluginActivationStates GetPluginActivationStates(const std::vector<uint32_t>& databaseIDs) = 0;
    /// Deactivates one font: a 16-bit status, 0 for success.
    virtual int16_t XTDeactivateFont(CFDictionaryRef font, uint64_t context) = 0;
    /// `deactivatedFonts` may be null; receives the records of the fonts that were deactivated.
    virtual ErrorCode DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                      CFMutableArrayRef deactivatedFonts) = 0;
    /// Hands the fonts of a document over; true when the font manager took them. `hint` may be null.
    virtual bool SaveDocumentFonts(const std::string& documentPath, bool replace, CFStringRef hint) = 0;
};

/// The font manager in force, or null. Not owned. Main thread.
FontManagerAccess* GetFontManagerAccess();
void SetFontManagerAccess(FontManagerAccess* fontManager);

/// The preferences as documents see them; implemented by the plug-in's preference interface.
class PreferenceAccess {
public:
    virtual ~PreferenceAccess() = default;
    virtual bool GetBoolPreference(const char* key) = 0;
};
