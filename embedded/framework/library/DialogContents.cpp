#include "library/DialogContents.h"

#include <CoreFoundation++/CFRef.h>

#include <utility>

#include "FontRecordKeys.h"
#include "MenuItems.h"
#include "StringConversion.h"
#include "VantorixPluginFramework.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "presenters/DialogJson.h"
#include "strings/StringTables.h"

namespace {

bool IsOffered(const MenuItem& item, const CommandBoxDialog& dialog) {
    if (IsDocumentCommand(item.label) && !dialog.areButtonsEnabled)
        return false;
    // All workgroups together are no workgroup to make a set in.
    return item.label == MenuLabel::kCreateDocumentSet ? dialog.currentWorkgroupID != kWorkgroupID_All
                                                       : IsCommand(item.label);
}

void AddWorkgroups(CommandBoxDialog& dialog, CFArrayRef workgroups) {
    auto number = static_cast<int32_t>(MenuLabel::kFirstWorkgroup);
    for (const CFDictionaryRef record : cf::Elements<CFDictionaryRef>(workgroups))
        dialog.workgroups.push_back({number++, cf::GetString(record, kGS_WorkgroupNameKey),
                                     cf::GetInt64(record, kGS_WorkgroupIDKey)});
}

}  // namespace

SelectWorkgroupDialog MakeSelectWorkgroupDialog(CFArrayRef workgroups, int32_t currentID) {
    SelectWorkgroupDialog dialog{{}, currentID};
    for (const CFDictionaryRef record : cf::Elements<CFDictionaryRef>(workgroups)) {
        const auto id = cf::GetInt64(record, kGS_WorkgroupIDKey);
        if (id && std::in_range<int32_t>(*id))
            dialog.workgroups.push_back(
                {static_cast<int32_t>(*id), cf::GetString(record, kGS_WorkgroupNameKey)});
    }
    return dialog;
}

CommandBoxDialog MakeCommandBoxDialog(CFDictionaryRef state, std::string_view language) {
    CommandBoxDialog dialog;
    dialog.isLocalPersonal = cf::GetBool(state, command_box::kIsLocalPersonal).value_or(false);
    dialog.areButtonsEnabled = cf::GetBool(state, command_box::kButtonsEnabled).value_or(false);
    dialog.isOnline = cf::GetBool(state, command_box::kIsOnline).value_or(false);
    dialog.currentWorkgroupID = cf::GetInt64(state, command_box::kCurrentWorkgroupID);
    for (const MenuItem& item : kMenuItems) {
        if (IsOffered(item, dialog))
            dialog.commands.push_back({static_cast<int32_t>(item.label), LocalizedText(language, item.text)});
    }
    AddWorkgroups(dialog, cf::GetArray(state, command_box::kWorkgroups));
    return dialog;
}

RestrictedFontsDialog MakeRestrictedFontsDialog(CFArrayRef fonts, bool onlyNew) {
    RestrictedFontsDialog dialog{{}, onlyNew};
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts))
        dialog.fonts.push_back(cf::GetString(font, kGS_PostScriptNameKey));
    return dialog;
}

ChooseFolderDialog MakeChooseFolderDialog(CFStringRef prompt, CFStringRef initialFolder) {
    return {cf::ToUtf8(prompt), cf::ToUtf8(initialFolder), std::nullopt};
}

std::optional<std::string> ChosenFolder(const ChooseFolderDialog& dialog) {
    if (!dialog.folder)
        return std::string();
    const std::string folder = IsValidUtf8(*dialog.folder) ? platform::FullPath(*dialog.folder) : "";
    if (!folder.empty() && !platform::IsExistingFile(folder))
        return folder;
    ReportWrongAnswer(dialog, ChosenAnswer(dialog));
    return std::nullopt;
}
