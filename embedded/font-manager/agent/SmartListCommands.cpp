// Smart lists.
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/NamedRecords.h"
#include "agent/NewNames.h"
#include "agent/Requests.h"
#include "agent/SmartListCommands.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

Json SmartListRecord(const SmartList& list) {
    return {{kGS_SmartListIDKey, list.id},
            {kGS_SmartListNameKey, list.name},
            {kGS_WorkgroupIDsKey, list.query.workgroupIDs},
            {kGS_SetIDsKey, list.query.setIDs},
            {kGS_SmartSetIDsKey, list.query.smartListIDs}};
}

SmartList RequiredSmartList(CommandContext& context, long long id) {
    auto list = context.manager.smartLists.Find(IDOf(id));
    if (!list)
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no such smart list any more; see \"Pellwick smartlist list\"");
    return *list;
}

SmartList RequiredSmartList(CommandContext& context, const Json& arguments) {
    return RequiredSmartList(context, IntegerMember(arguments, kGS_SmartListIDKey));
}

std::vector<int32_t> IDsMember(const Json& arguments, const char* member) {
    std::vector<int32_t> ids;
    for (const Json& value : ArrayMember(arguments, member)) {
        const long long number = value.is_number_integer() ? value.get<long long>() : 0;
        const bool isAll = number == kWorkgroupID_All && member == std::string_view(kGS_WorkgroupIDsKey);
        if (IDOf(number) == 0 && !isAll)
            throw CommandError(CoreErrorCodes::kInvalidParam,
                               std::string("what is in \"") + member + "\" must be numbers above 0");
        ids.push_back(static_cast<int32_t>(number));
    }
    return ids;
}

SmartListQuery QueryMember(const Json& arguments) {
    return {IDsMember(arguments, kGS_WorkgroupIDsKey), IDsMember(arguments, kGS_SetIDsKey),
            IDsMember(arguments, kGS_SmartSetIDsKey)};
}

/// The new name of a list, which no other list has.
std::string FreeName(CommandContext& context, const Json& arguments, int32_t listID) {
    std::string name = NewName(arguments, kGS_SmartListNameKey, "the smart list's name");
    const auto other = context.manager.smartLists.FindByName(name);
    if (other && other->id != listID)
        throw CommandError(CoreErrorCodes::kItemAlreadyExists,
                           "there is a smart list \"" + name + "\" already; choose another name");
    return name;
}

Json Changed(CommandContext& context, int32_t listID) {
    context.audience.Announce(kPluginCallback_SmartListsChanged, nullptr);
    const auto list = context.manager.smartLists.Find(listID);
    return list ? SmartListRecord(*list) : Json::object();
}

}  // namespace

Json commands::ListSmartLists(CommandContext& context, const Json&) {
    Json records = Json::array();
    for (const SmartList& list : context.manager.smartLists.List())
        records.push_back(SmartListRecord(list));
    return {{kGS_SmartListsKey, std::move(records)}};
}

Json commands::FindSmartList(CommandContext& context, const Json& arguments) {
    const std::string name = StringMember(arguments, kGS_SmartListNameKey);
    const auto list = context.manager.smartLists.FindByName(name);
    if (!list)
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no smart list \"" + name + "\"; see \"Pellwick smartlist list\"");
    return SmartListRecord(*list);
}

Json commands::GetSmartList(CommandContext& context, const Json& arguments) {
    return SmartListRecord(RequiredSmartList(context, arguments));
}

Json commands::CreateSmartList(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const SmartListQuery query = QueryMember(arguments);
    Transaction transaction(context.manager.database);
    const int32_t id = context.manager.smartLists.Create(FreeName(context, arguments, 0), query);
    transaction.Commit();
    return Changed(context, id);
}

Json commands::RenameSmartList(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const SmartList list = RequiredSmartList(context, arguments);
    context.manager.smartLists.Rename(list.id, FreeName(context, arguments, list.id));
    return Changed(context, list.id);
}

Json commands::DeleteSmartList(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const SmartList list = RequiredSmartList(context, arguments);
    context.manager.smartLists.Delete(list.id);
    Changed(context, list.id);
    return SmartListRecord(list);
}

Json commands::SetSmartListQuery(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const SmartListQuery query = QueryMember(arguments);
    Transaction transaction(context.manager.database);
    const SmartList list = RequiredSmartList(context, arguments);
    context.manager.smartLists.SetQuery(list.id, query);
    transaction.Commit();
    context.client.triedQueries.erase(list.id);
    return Changed(context, list.id);
}

/// Only the client that tries a query gets its fonts for the list.
Json commands::TrySmartListQuery(CommandContext& context, const Json& arguments) {
    const long long id = IntegerMember(arguments, kGS_SmartListIDKey);
    const int32_t listID = id == 0 ? 0 : RequiredSmartList(context, id).id;
    context.client.triedQueries[listID] = QueryMember(arguments);
    return Json::object();
}

FontSources SourcesOfSmartList(CommandContext& context, long long listID) {
    SmartListStore& store = context.manager.smartLists;
    const auto tried = context.client.triedQueries.find(static_cast<int32_t>(listID));
    const bool isTried = tried != context.client.triedQueries.end() && tried->first == listID;
    if (isTried && listID == 0)
        return store.Resolve(0, tried->second);
    const SmartList list = RequiredSmartList(context, listID);
    return store.Resolve(list.id, isTried ? tried->second : list.query);
}

}  // namespace pellwick
