// What each dialog shows, and what the answer to it means: between the framework's CoreFoundation objects and
// the presenters' JSON.
//
// | dialog          | details                                              | choices in the answer         |
// |-----------------|------------------------------------------------------|-------------------------------|
// | About           | version                                              | none                          |
// | Preferences     | none                                                 | none                          |
// | SelectWorkgroup | workgroups: [{workgroupID, name}], workgroupID       | workgroupID, one of the list  |
// | CommandBox      | the members of the state, workgroups as above        | command, a number             |
// | ResolveFonts    | fonts: [PostScript name]                             | none yet: never confirmed     |
// | RestrictedFonts | fonts: [PostScript name], onlyNew                    | none                          |
#pragma once

#include <cstdint>
#include <optional>

#include "presenters/Presenter.h"

/// Whether the dialog was confirmed at all.
bool IsConfirmed(const DialogAnswer& answer);

DialogQuestion AboutQuestion(const std::string& version);
DialogQuestion PreferencesQuestion();
DialogQuestion SelectWorkgroupQuestion(CFArrayRef workgroups, int32_t currentID);
DialogQuestion CommandBoxQuestion(CFDictionaryRef state);
DialogQuestion ResolveFontsQuestion(CFArrayRef fonts);
DialogQuestion RestrictedFontsQuestion(CFArrayRef fonts, bool onlyNew);

/// The workgroup chosen; nothing when the dialog was not confirmed or the choice is not in its list.
std::optional<int32_t> ChosenWorkgroup(const DialogQuestion& question, const DialogAnswer& answer);
/// The command chosen; nothing when the dialog was not confirmed or the answer names none.
std::optional<int32_t> ChosenCommand(const DialogAnswer& answer);
