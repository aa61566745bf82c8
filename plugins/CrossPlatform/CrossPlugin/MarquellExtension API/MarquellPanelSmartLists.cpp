// The panel's requests about smart lists and their fonts.

#include <CoreFoundation++/Base64.h>
#include <CoreFoundation++/CFRef.h>

#include "FontManagerCall.h"
#include "MarquellPanel.h"
#include "PanelLog.h"
#include "PanelMessage.h"

using namespace panel_messages;

namespace {

/// Text that keeps its line of the font list file one line, and its column one column.
std::string Column(std::string text) {
    for (char& each : text) {
        if (static_cast<unsigned char>(each) < ' ')
            each = ' ';
    }
    return text;
}

const char* SourceWord(CFDictionaryRef font) {
    switch (cf::GetInt64(font, kGS_WorkgroupTypeKey).value_or(kWorkgroupType_FontLibrary)) {
        case kWorkgroupType_System:
            return "system";
        case kWorkgroupType_GoogleLibrary:
            return "google";
        case kWorkgroupType_TypekitLibrary:
            return "typekit";
        default:
            return "desktop";
    }
}

/// One line: database ID, PostScript name, name to show, whether it is active, where it comes from,
/// workgroup.
std::string FontListLine(CFDictionaryRef font) {
    const int64_t state = cf::GetInt64(font, kGS_ActivationStateKey).value_or(kFontActivationState_Unknown);
    std::string displayName = cf::GetString(font, kGS_DisplayNameKey);
    if (displayName.empty())
        displayName = cf::GetString(font, kGS_FamilyKey);
    return std::to_string(cf::GetInt64(font, kGS_DatabaseIDKey).value_or(0)) + "\t" +
           Column(cf::GetString(font, kGS_PostScriptNameKey)) + "\t" + Column(displayName) + "\t" +
           (FontActivationStateCountsAsActive(state) ? "1" : "0") + "\t" + SourceWord(font) + "\t" +
           std::to_string(cf::GetInt64(font, kGS_WorkgroupIDKey).value_or(0)) + "\n";
}

/// Base64 as mail has it (RFC 2045, 6.8), with a line feed behind each full line of 76 characters.
std::string Base64Lines(std::string_view bytes) {
    constexpr size_t kLineLength = 76;
    std::string text = cf::EncodeBase64(bytes);
    for (size_t end = kLineLength; end <= text.size(); end += kLineLength + 1)
        text.insert(end, 1, '\n');
    return text;
}

void AddIDs(PanelMessage& message, const Key& key, CFArrayRef ids) {
    PanelMessage::Node jsonArray = message.Root().AddArray(key);
    for (const CFNumberRef id : cf::Elements<CFNumberRef>(ids))
        jsonArray.Add(cf::ToInt64(id).value_or(0));
}

}  // namespace

ErrorCode MarquellPanel::RenameSmartList(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    std::string smartListName;
    if (const ErrorCode code =
            ReadMember(jsonValue, kSmartListIDKey, smartListID, kSmartListNameKey, smartListName))
        return code;
    const CFRef<CFStringRef> name = cf::String(smartListName);
    RETURN_IF_NULL(name.get());  // no UTF-8
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfRenameSmartList, smartListID, name.get()));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::RenameSmartListByName(const JSONValue& jsonValue) {
    return RenameSmartList(jsonValue);
}

ErrorCode MarquellPanel::DeleteSmartList(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    if (const ErrorCode code = ReadMember(jsonValue, kSmartListIDKey, smartListID))
        return code;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfDeleteSmartList, smartListID));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetQuery(const JSONValue& jsonValue, SmartListQuery& query) {
    std::vector<int32_t> workgroupIDs;
    std::vector<int32_t> setIDs;
    std::vector<int32_t> smartSetIDs;
    if (const ErrorCode code = ReadMember(jsonValue, kWorkgroupIDsKey, workgroupIDs, kSetIDsKey, setIDs,
                                          kSmartSetIDsKey, smartSetIDs))
        return code;
    query = {cf::NumberArray(workgroupIDs), cf::NumberArray(setIDs), cf::NumberArray(smartSetIDs)};
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::CallWithQuery(const JSONValue& jsonValue, SmartListQueryFunction function) {
    int32_t smartListID = 0;
    SmartListQuery query;
    ErrorCode code = ReadMember(jsonValue, kSmartListIDKey, smartListID);
    if (code == CoreErrorCodes::kSuccess)
        code = GetQuery(jsonValue, query);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    RETURN_IF_FAILED(CallFontManager(function, smartListID, query.workgroupIDs.get(), query.setIDs.get(),
                                     query.smartSetIDs.get()));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::QuerySmartListFonts(const JSONValue& jsonValue) {
    return CallWithQuery(jsonValue, &PluginFunctionTable::pfQueryForSmartListFonts);
}

ErrorCode MarquellPanel::SetSmartListQuery(const JSONValue& jsonValue) {
    return CallWithQuery(jsonValue, &PluginFunctionTable::pfSetSmartListQuery);
}

ErrorCode MarquellPanel::CreateSmartList(const JSONValue& jsonValue) {
    std::string smartListName;
    SmartListQuery query;
    ErrorCode code = ReadMember(jsonValue, kSmartListNameKey, smartListName);
    if (code == CoreErrorCodes::kSuccess)
        code = GetQuery(jsonValue, query);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    const CFRef<CFStringRef> name = cf::String(smartListName);
    RETURN_IF_NULL(name.get());  // no UTF-8
    int32_t smartListID = 0;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfCreateSmartList, name.get(),
                                     query.workgroupIDs.get(), query.setIDs.get(), query.smartSetIDs.get(),
                                     &smartListID));
    PanelMessage reply(kCreateSmartList);
    reply.Root()
        .AddMap(kSmartListKey, "smartList")
        .Set(kSmartListIDKey, smartListID)
        .Set(kSmartListNameKey, smartListName);
    return Send(reply);
}

ErrorCode MarquellPanel::GetAllSmartLists(const JSONValue&) {
    const CFRef<CFMutableArrayRef> smartLists = cf::MutableArray();
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetAllSmartLists, smartLists.get()));
    PanelMessage reply(kGetAllSmartLists);
    PanelMessage::Node jsonArray = reply.Root().AddArray(kSmartListsKey);
    for (const CFDictionaryRef list : cf::Elements<CFDictionaryRef>(smartLists.get())) {
        jsonArray.AddMap("smartList")
            .Set(kSmartListIDKey, cf::GetInt64(list, kGS_SmartListIDKey).value_or(0))
            .Set(kSmartListNameKey, cf::GetString(list, kGS_SmartListNameKey));
    }
    return Send(reply);
}

ErrorCode MarquellPanel::ReadSmartList(const JSONValue& jsonValue, int32_t& smartListID,
                                       CFRef<CFDictionaryRef>& smartList) {
    if (const ErrorCode code = ReadMember(jsonValue, kSmartListIDKey, smartListID))
        return code;
    CFDictionaryRef newSmartList = nullptr;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetSmartList, smartListID, &newSmartList));
    smartList = CFRef<CFDictionaryRef>::Adopt(newSmartList);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetSmartList(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    CFRef<CFDictionaryRef> list;
    if (const ErrorCode code = ReadSmartList(jsonValue, smartListID, list))
        return code;
    PanelMessage reply(kGetSmartList);
    reply.Set(kSmartListIDKey, smartListID)
        .Set(kSmartListNameKey, cf::GetString(list.get(), kGS_SmartListNameKey));
    AddIDs(reply, kWorkgroupIDsKey, cf::GetArray(list.get(), kGS_WorkgroupIDsKey));
    AddIDs(reply, kSetIDsKey, cf::GetArray(list.get(), kGS_SetIDsKey));
    AddIDs(reply, kSmartSetIDsKey, cf::GetArray(list.get(), kGS_SmartSetIDsKey));
    return Send(reply);
}

ErrorCode MarquellPanel::GetPanelSmartListTree(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    CFRef<CFDictionaryRef> list;
    if (const ErrorCode code = ReadSmartList(jsonValue, smartListID, list))
        return code;
    return Send(PanelMessage(kGetPanelSmartListTree)
                    .Set(kSmartListIDKey, smartListID)
                    .Set(kListDefinitionKey, Base64Lines(cf::GetString(list.get(), kGS_ListDefinitionKey))));
}

ErrorCode MarquellPanel::RequestSmartListFonts(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    if (const ErrorCode code = ReadMember(jsonValue, kSmartListIDKey, smartListID))
        return code;
    return GetSmartListFonts(smartListID);
}

ErrorCode MarquellPanel::GetSmartListFonts(int32_t smartListID) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetSmartListFonts, smartListID, fonts.get()));
    return SendFontList(fonts.get());
}

ErrorCode MarquellPanel::SendFontList(CFArrayRef fonts) {
    std::string lines;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts))
        lines += FontListLine(font);
    std::string url;
    if (mFontListFiles.Create(lines, url) != CoreErrorCodes::kSuccess)  // reported there
        return Send(PanelMessage(kCouldNotCreateTmpFile));
    return Send(PanelMessage(kFontList).Set(kFilenameKey, url));
}

ErrorCode MarquellPanel::ReleaseFontListFile(const JSONValue& jsonValue) {
    std::string filename;
    if (const ErrorCode code = ReadMember(jsonValue, kFilenameKey, filename))
        return code;
    RETURN_IF_FAILED(mFontListFiles.Release(filename));
    return CoreErrorCodes::kSuccess;
}
