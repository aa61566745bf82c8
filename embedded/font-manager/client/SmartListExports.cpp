// Smart lists.
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

Json QueryArguments(CFArrayRef workgroupIDs, CFArrayRef setIDs, CFArrayRef smartSetIDs) {
    return {{kGS_WorkgroupIDsKey, JsonFromCF(workgroupIDs)},
            {kGS_SetIDsKey, JsonFromCF(setIDs)},
            {kGS_SmartSetIDsKey, JsonFromCF(smartSetIDs)}};
}

uint32_t CallWithoutResult(PluginFacadeRef facade, const char* method, const Json& arguments) {
    Json ignored;
    return Library::Get().Call(facade, method, arguments, ignored);
}

/// Has the agent use the query for a list.
uint32_t CallForQuery(PluginFacadeRef facade, const char* method, int32_t smartListID, Json query) {
    query[kGS_SmartListIDKey] = smartListID;
    return CallWithoutResult(facade, method, query);
}

ErrorCode ListSmartLists(PluginFacadeRef facade, Json& lists) {
    Json result;
    const ErrorCode code = Library::Get().Call(facade, method::kListSmartLists, Json::object(), result);
    lists = Json::array();
    for (const Json& list : ArrayMember(result, kGS_SmartListsKey))
        lists.push_back({{kGS_SmartListIDKey, list[kGS_SmartListIDKey]},
                         {kGS_SmartListNameKey, list[kGS_SmartListNameKey]}});
    return code;
}

/// The user's workgroups as a tree, each with its sets.
ErrorCode ListWorkgroupsWithSets(PluginFacadeRef facade, Json& workgroups) {
    Json answer;
    Json sets;
    ErrorCode code = Library::Get().Call(facade, method::kListWorkgroups, Json::object(), answer);
    if (code == CoreErrorCodes::kSuccess)
        code = Library::Get().Call(facade, method::kListSets, Json::object(), sets);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    workgroups = Json::array();
    for (Json workgroup : ArrayMember(answer, member::kWorkgroups)) {
        const long long id = IntegerMember(workgroup, kGS_WorkgroupIDKey);
        if (id == kWorkgroupID_All)
            continue;
        workgroup[kGS_SetsKey] = Json::array();
        for (const Json& set : ArrayMember(sets, member::kSets)) {
            if (IntegerMember(set, kGS_WorkgroupIDKey) == id)
                workgroup[kGS_SetsKey].push_back(
                    {{kGS_SetIDKey, set[member::kID]}, {kGS_SetNameKey, set[member::kName]}});
        }
        workgroups.push_back(std::move(workgroup));
    }
    return code;
}

ErrorCode CollectFonts(PluginFacadeRef facade, int32_t smartListID, Json& fonts) {
    fonts = Json::array();
    long long last = 0;
    for (;;) {
        Json page;
        const ErrorCode code = Library::Get().Call(
            facade, method::kListFonts, {{member::kSmartList, smartListID}, {member::kAfter, last}}, page);
        const Json& more = ArrayMember(page, member::kFonts);
        if (code != CoreErrorCodes::kSuccess || more.empty())
            return code;
        last = IntegerMember(more.back(), kGS_DatabaseIDKey);
        for (Json font : more) {
            font[kGS_DisplayNameKey] = StringMember(font, member::kFullName);
            fonts.push_back(std::move(font));
        }
    }
}

}  // namespace

uint32_t CreateSmartList(PluginFacadeRef facade, CFStringRef name, CFArrayRef workgroupIDs, CFArrayRef setIDs,
                         CFArrayRef smartSetIDs, int32_t* outSmartListID) {
    return Guarded([&] {
        if (name == nullptr || outSmartListID == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json arguments = QueryArguments(workgroupIDs, setIDs, smartSetIDs);
        arguments[kGS_SmartListNameKey] = cf::ToUtf8(name);
        Json list;
        const ErrorCode code = Library::Get().Call(facade, method::kCreateSmartList, arguments, list);
        if (code == CoreErrorCodes::kSuccess)
            *outSmartListID = static_cast<int32_t>(IntegerMember(list, kGS_SmartListIDKey));
        return code;
    });
}

uint32_t RenameSmartList(PluginFacadeRef facade, int32_t smartListID, CFStringRef name) {
    return Guarded([&]() -> ErrorCode {
        if (name == nullptr)
            return CoreErrorCodes::kNullPointer;
        return CallWithoutResult(
            facade, method::kRenameSmartList,
            {{kGS_SmartListIDKey, smartListID}, {kGS_SmartListNameKey, cf::ToUtf8(name)}});
    });
}

uint32_t DeleteSmartList(PluginFacadeRef facade, int32_t smartListID) {
    return Guarded([&] {
        return CallWithoutResult(facade, method::kDeleteSmartList, {{kGS_SmartListIDKey, smartListID}});
    });
}

uint32_t SetSmartListQuery(PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs,
                           CFArrayRef setIDs, CFArrayRef smartSetIDs) {
    return Guarded([&] {
        return CallForQuery(facade, method::kSetSmartListQuery, smartListID,
                            QueryArguments(workgroupIDs, setIDs, smartSetIDs));
    });
}

uint32_t QueryForSmartListFonts(PluginFacadeRef facade, int32_t smartListID, CFArrayRef workgroupIDs,
                                CFArrayRef setIDs, CFArrayRef smartSetIDs) {
    return Guarded([&] {
        return CallForQuery(facade, method::kTrySmartListQuery, smartListID,
                            QueryArguments(workgroupIDs, setIDs, smartSetIDs));
    });
}

uint32_t GetSmartList(PluginFacadeRef facade, int32_t smartListID, CFDictionaryRef* outNewSmartList) {
    return Guarded([&] {
        if (outNewSmartList == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json list;
        const ErrorCode code =
            Library::Get().Call(facade, method::kGetSmartList, {{kGS_SmartListIDKey, smartListID}}, list);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        list[kGS_ListDefinitionKey] = list.dump(-1, ' ', false, Json::error_handler_t::replace);
        *outNewSmartList = static_cast<CFDictionaryRef>(CFFromJson(list).release());
        return code;
    });
}

uint32_t GetAllSmartLists(PluginFacadeRef facade, CFMutableArrayRef smartLists) {
    return Guarded([&] {
        if (smartLists == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json lists;
        const ErrorCode code = ListSmartLists(facade, lists);
        if (code == CoreErrorCodes::kSuccess)
            AppendJson(smartLists, lists);
        return code;
    });
}

uint32_t GetPanelSmartListTree(PluginFacadeRef facade, CFDictionaryRef* outNewTree) {
    return Guarded([&] {
        if (outNewTree == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json workgroups;
        Json lists;
        ErrorCode code = ListWorkgroupsWithSets(facade, workgroups);
        if (code == CoreErrorCodes::kSuccess)
            code = ListSmartLists(facade, lists);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        const Json tree = {{kGS_WorkgroupsKey, std::move(workgroups)}, {kGS_SmartListsKey, std::move(lists)}};
        *outNewTree = static_cast<CFDictionaryRef>(CFFromJson(tree).release());
        return code;
    });
}

uint32_t GetSmartListFonts(PluginFacadeRef facade, int32_t smartListID, CFMutableArrayRef fonts) {
    return Guarded([&] {
        if (fonts == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json collected;
        const ErrorCode code = CollectFonts(facade, smartListID, collected);
        if (code == CoreErrorCodes::kSuccess)
            AppendJson(fonts, collected);
        return code;
    });
}
