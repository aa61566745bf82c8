// The fonts of a document, as the host tells them or as its file does.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <string>

/// Font records. `fontsJSON` is the host's list; text that does not parse counts as no fonts. Empty: the
/// names that the document's file holds stand in for it, if the plug-in can be used.
CFRef<CFMutableArrayRef> FontsOfDocument(const std::string& path, const std::string& fontsJSON);

/// The fonts of a document as the preferences have them looked for: "PickBestMatch" off asks for exact names
/// alone, "EnableGlyphscan" off leaves fingerprints out, "SupportEmbeddedObjects" off the fonts that placed
/// documents use, "ActivateEntireFamilies" on asks for the rest of each family. `fonts`: records.
CFRef<CFMutableArrayRef> RequestsByPreference(CFArrayRef fonts);
