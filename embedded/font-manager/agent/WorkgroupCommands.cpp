// Workgroups.
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/NamedRecords.h"
#include "agent/NewNames.h"
#include "agent/Requests.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

constexpr char kNewName[] = "the workgroup's name";

std::string RequiredName(const Json& arguments) {
    std::string name = StringMember(arguments, member::kName);
    if (name.empty())
        throw CommandError(CoreErrorCodes::kMissingParam, "give the workgroup's name");
    return name;
}

/// One that the user may change.
Workgroup FindOwnWorkgroup(CommandContext& context, const Json& arguments) {
    Workgroup workgroup = FindWorkgroup(context, RequiredName(arguments));
    if (workgroup.type == kWorkgroupType_System || workgroup.id == context.manager.DefaultWorkgroup().id)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "\"" + workgroup.name + "\" always stays as it is");
    return workgroup;
}

void RefuseTakenName(CommandContext& context, const std::string& name) {
    if (name == kAllWorkgroupsName || context.manager.workgroups.FindByName(name))
        throw CommandError(CoreErrorCodes::kItemAlreadyExists,
                           "there is a workgroup \"" + name + "\" already; choose another name");
}

Json Changed(CommandContext& context) {
    context.audience.Announce(kPluginCallback_WorkgroupsChanged, nullptr);
    return Json::object();
}

}  // namespace

Json commands::ListWorkgroups(CommandContext& context, const Json&) {
    Json records = Json::array();
    for (const Workgroup& workgroup : context.manager.workgroups.List())
        records.push_back(WorkgroupRecord(workgroup));
    records.push_back(WorkgroupRecord({kWorkgroupID_All, kAllWorkgroupsName, kWorkgroupType_All}));
    return {{member::kWorkgroups, std::move(records)},
            {member::kCurrent, context.manager.CurrentWorkgroup().id}};
}

Json commands::CreateWorkgroup(CommandContext& context, const Json& arguments) {
    const std::string name = NewName(arguments, member::kName, kNewName);
    RefuseTakenName(context, name);
    context.manager.workgroups.Create(name, kWorkgroupType_FontLibrary);
    return Changed(context);
}

Json commands::RenameWorkgroup(CommandContext& context, const Json& arguments) {
    const Workgroup workgroup = FindOwnWorkgroup(context, arguments);
    const std::string name = NewName(arguments, member::kNewName, kNewName);
    RefuseTakenName(context, name);
    context.manager.workgroups.Rename(workgroup.id, name);
    return Changed(context);
}

Json commands::DeleteWorkgroup(CommandContext& context, const Json& arguments) {
    const Workgroup workgroup = FindOwnWorkgroup(context, arguments);
    Transaction transaction(context.manager.database);
    context.manager.workgroups.Delete(workgroup.id, context.manager.DefaultWorkgroup().id);
    transaction.Commit();
    return Changed(context);
}

Json commands::UseWorkgroup(CommandContext& context, const Json& arguments) {
    const Workgroup workgroup = FindWorkgroup(context, RequiredName(arguments));
    if (workgroup.type == kWorkgroupType_System)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "fonts cannot be added to the system's; use another workgroup");
    context.manager.settings.SetCurrentWorkgroup(workgroup.id);
    return Changed(context);
}

}  // namespace pellwick
