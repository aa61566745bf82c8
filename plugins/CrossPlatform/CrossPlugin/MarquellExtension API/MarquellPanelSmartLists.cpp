// The panel's requests about smart lists and their fonts.

#include <CoreFoundation++/Base64.h>
#include <CoreFoundation++/CFRef.h>

#include "FailureReport.h"
#include "FontManagerCall.h"
#include "MarquellPanel.h"
#include "PanelMessages.h"

using namespace panel_messages;

namespace {

constexpr char kLogCategory[] = "Miscellaneous";

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

/// Base64 in lines of 76 characters with line feeds between them, as mail has it (RFC 2045, 6.8).
std::string Base64Lines(std::string_view bytes) {
    constexpr size_t kLineLength = 76;
    std::string text = cf::EncodeBase64(bytes);
    for (size_t end = kLineLength; end < text.size(); end += kLineLength + 1)
        text.insert(end, 1, '\n');
    return text;
}

}  // namespace

ErrorCode MarquellPanel::RenameSmartList(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    std::string smartListName;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListNameKey, smartListName));
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
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfDeleteSmartList, smartListID));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetQuery(const JSONValue& jsonValue, SmartListQuery& query) {
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kWorkgroupIDsKey, query.workgroupIDs));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSetIDsKey, query.setIDs));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartSetIDsKey, query.smartSetIDs));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::CallWithQuery(const JSONValue& jsonValue, SmartListQueryFunction function) {
    int32_t smartListID = 0;
    SmartListQuery query;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    RETURN_IF_FAILED(GetQuery(jsonValue, query));
    const CFRef<CFArrayRef> workgroupIDs = cf::NumberArray(query.workgroupIDs);
    const CFRef<CFArrayRef> setIDs = cf::NumberArray(query.setIDs);
    const CFRef<CFArrayRef> smartSetIDs = cf::NumberArray(query.smartSetIDs);
    RETURN_IF_FAILED(
        CallFontManager(function, smartListID, workgroupIDs.get(), setIDs.get(), smartSetIDs.get()));
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
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListNameKey, smartListName));
    RETURN_IF_FAILED(GetQuery(jsonValue, query));
    const CFRef<CFStringRef> name = cf::String(smartListName);
    RETURN_IF_NULL(name.get());  // no UTF-8
    const CFRef<CFArrayRef> workgroupIDs = cf::NumberArray(query.workgroupIDs);
    const CFRef<CFArrayRef> setIDs = cf::NumberArray(query.setIDs);
    const CFRef<CFArrayRef> smartSetIDs = cf::NumberArray(query.smartSetIDs);
    int32_t smartListID = 0;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfCreateSmartList, name.get(), workgroupIDs.get(),
                                     setIDs.get(), smartSetIDs.get(), &smartListID));
    return SendCreatedSmartList(smartListID, smartListName);
}

ErrorCode MarquellPanel::SendCreatedSmartList(int32_t smartListID, const std::string& smartListName) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    JSONValue smartList;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kCreateSmartList, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::AddMapForKey(kSmartListKey, root, smartList));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(smartListID, kSmartListIDKey, smartList, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(smartListName, kSmartListNameKey, smartList, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::GetAllSmartLists(const JSONValue&) {
    const CFRef<CFMutableArrayRef> smartLists = cf::MutableArray();
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetAllSmartLists, smartLists.get()));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    JSONValue jsonArray;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kGetAllSmartLists, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::AddArrayForKey(kSmartListsKey, root, jsonArray));
    for (CFIndex index = 0; index < cf::Count(smartLists.get()); ++index) {
        const auto list = cf::Get<CFDictionaryRef>(smartLists.get(), index);
        JSONValue smartList;
        RETURN_IF_FAILED(GJSONUtils::AddMapToArray(jsonArray, smartList));
        RETURN_IF_FAILED(GJSONUtils::SetValueForKey(cf::GetInt64(list, kGS_SmartListIDKey).value_or(0),
                                                    kSmartListIDKey, smartList, jsonValue));
        RETURN_IF_FAILED(GJSONUtils::SetValueForKey(cf::GetString(list, kGS_SmartListNameKey),
                                                    kSmartListNameKey, smartList, jsonValue));
    }
    return SendReply(root);
}

ErrorCode MarquellPanel::ReadSmartList(const JSONValue& jsonValue, int32_t& smartListID,
                                       CFRef<CFDictionaryRef>& smartList) {
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    CFDictionaryRef newSmartList = nullptr;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetSmartList, smartListID, &newSmartList));
    smartList = CFRef<CFDictionaryRef>::Adopt(newSmartList);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::AddIDs(const char* key, CFArrayRef ids, JSONValue& root) {
    JSONValue jsonArray;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::AddArrayForKey(key, root, jsonArray));
    for (CFIndex index = 0; index < cf::Count(ids); ++index)
        RETURN_IF_FAILED(GJSONUtils::AddValueToArray(
            jsonArray, cf::ToInt64(CFArrayGetValueAtIndex(ids, index)).value_or(0), jsonValue));
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetSmartList(const JSONValue& request) {
    int32_t smartListID = 0;
    CFRef<CFDictionaryRef> list;
    RETURN_IF_FAILED(ReadSmartList(request, smartListID, list));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kGetSmartList, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(smartListID, kSmartListIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(cf::GetString(list.get(), kGS_SmartListNameKey),
                                                kSmartListNameKey, root, jsonValue));
    RETURN_IF_FAILED(AddIDs(kWorkgroupIDsKey, cf::GetArray(list.get(), kGS_WorkgroupIDsKey), root));
    RETURN_IF_FAILED(AddIDs(kSetIDsKey, cf::GetArray(list.get(), kGS_SetIDsKey), root));
    RETURN_IF_FAILED(AddIDs(kSmartSetIDsKey, cf::GetArray(list.get(), kGS_SmartSetIDsKey), root));
    return SendReply(root);
}

ErrorCode MarquellPanel::GetPanelSmartListTree(const JSONValue& request) {
    int32_t smartListID = 0;
    CFRef<CFDictionaryRef> list;
    RETURN_IF_FAILED(ReadSmartList(request, smartListID, list));
    const std::string listDefinition = Base64Lines(cf::GetString(list.get(), kGS_ListDefinitionKey));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kGetPanelSmartListTree, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(smartListID, kSmartListIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(listDefinition, kListDefinitionKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::RequestSmartListFonts(const JSONValue& jsonValue) {
    int32_t smartListID = 0;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    return GetSmartListFonts(smartListID);
}

ErrorCode MarquellPanel::GetSmartListFonts(int32_t smartListID) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetSmartListFonts, smartListID, fonts.get()));
    return SendFontList(fonts.get());
}

ErrorCode MarquellPanel::SendFontList(CFArrayRef fonts) {
    std::string lines;
    for (CFIndex index = 0; index < cf::Count(fonts); ++index)
        lines += FontListLine(cf::Get<CFDictionaryRef>(fonts, index));
    std::string url;
    const ErrorCode created = mFontListFiles.Create(lines, url);  // reported there
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    if (created != CoreErrorCodes::kSuccess) {
        RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kCouldNotCreateTmpFile, kMessageIDKey, root, jsonValue));
        return SendReply(root);
    }
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kFontList, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(url, kFilenameKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::ReleaseFontListFile(const JSONValue& jsonValue) {
    std::string filename;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFilenameKey, filename));
    RETURN_IF_FAILED(mFontListFiles.Release(filename));
    return CoreErrorCodes::kSuccess;
}
