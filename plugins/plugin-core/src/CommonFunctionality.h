// What several exports share.
#pragma once

#include <string>

#include "AllTrackedDocuments.h"
#include "CallScopes.h"
#include "ErrorCodes.h"

class GeneralInterface;

namespace CommonFunctionality {

/// Has the fonts of a document activated without a word to the user. `numFontsActivated` counts those that
/// were made active. What the font manager reports is kept in the record.
ErrorCode ActivateDocumentFontsSilently(int& numFontsActivated, const std::string& filePath,
                                        OneTrackedDocument& record, CFArrayRef fonts);

using Document = AllTrackedDocuments::Document;

/// The open document with that identifier, else with that path; an empty reference when there is none.
Document FindDocument(const std::string& identifierOrPath);

/// Taken by whatever moves a document's fonts in or out, any of which may show the dialogs of a lost agent:
/// from behind these, no other one may.
DialogTurn TurnToMoveFonts(const char* caller);

/// How many of the font records say that their font is active.
CFIndex CountActiveFonts(CFArrayRef fonts);

/// The host application's side, made on first use.
GeneralInterface* SharedHostAppInterface();

/// Tells the user that nobody is logged in, and notes it.
void ShowNotLoggedInMessage();

/// Tells the user that there is no workgroup to work in.
void ShowNoWorkgroupMessage();

}  // namespace CommonFunctionality
