// What each dialog shows, and what the answer to it means: between the framework's CoreFoundation objects and
// the presenters' JSON. An answer that means nothing is logged and counts as not confirmed. Preferences and
// ResolveFonts have headers of their own.
//
// | dialog          | details                                           | choices in the answer        |
// |-----------------|---------------------------------------------------|------------------------------|
// | About           | version                                           | none                         |
// | SelectWorkgroup | workgroups: [{workgroupID, name}], workgroupID    | workgroupID, one of the list |
// | CommandBox      | IsLocalPersonal, ButtonsEnabled, IsOnline,        | command, one of the list     |
// |                 | CurrentWorkgroupID, commands: [{command, title,   |                              |
// |                 | and workgroupID if it chooses one}]               |                              |
// | RestrictedFonts | fonts: [PostScript name], onlyNew                 | none                         |
// | ChooseFolder    | prompt, initialFolder                             | folder, as for FullPath;     |
// |                 |                                                   | null when it has no path     |
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "presenters/Presenter.h"

/// The answer to a dialog without choices.
bool IsConfirmed(const DialogQuestion& question, const DialogAnswer& answer);
/// Whether the user, or nobody, decided against it: null or false.
bool IsDeclined(const DialogAnswer& answer);
/// Logs that the answer to that dialog means nothing.
void ReportWrongAnswer(const DialogQuestion& question, const DialogAnswer& answer);

DialogQuestion AboutQuestion(const std::string& version);
DialogQuestion SelectWorkgroupQuestion(CFArrayRef workgroups, int32_t currentID);
/// `language` is a two-letter code.
DialogQuestion CommandBoxQuestion(CFDictionaryRef state, std::string_view language);
DialogQuestion RestrictedFontsQuestion(CFArrayRef fonts, bool onlyNew);
DialogQuestion ChooseFolderQuestion(CFStringRef prompt, CFStringRef initialFolder);

/// Nothing when the dialog was not confirmed, or when what was chosen is not in its list.
std::optional<int32_t> ChosenWorkgroup(const DialogQuestion& question, const DialogAnswer& answer);
std::optional<int32_t> ChosenCommand(const DialogQuestion& question, const DialogAnswer& answer);
/// The full path; empty when what was chosen has none. Nothing when the dialog was not confirmed or a file
/// that is no folder stands there.
std::optional<std::string> ChosenFolder(const DialogQuestion& question, const DialogAnswer& answer);
