// Sets of fonts.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/NamedRecords.h"
#include "agent/NewNames.h"
#include "agent/Requests.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

Json SetRecord(const FontSet& set) {
    return {{member::kID, set.id},
            {member::kName, set.name},
            {kGS_WorkgroupIDKey, set.workgroupID},
            {kGS_WorkgroupNameKey, set.workgroupName},
            {member::kFontCount, set.fontCount}};
}

/// Leaves out sets of other workgroups, when the request names one.
std::vector<FontSet> InNamedWorkgroup(CommandContext& context, std::vector<FontSet> sets,
                                      const Json& arguments) {
    const std::string name = StringMember(arguments, member::kWorkgroup);
    if (name.empty())
        return sets;
    const int32_t id = FindWorkgroup(context, name).id;
    sets.erase(
        std::remove_if(sets.begin(), sets.end(), [id](const FontSet& set) { return set.workgroupID != id; }),
        sets.end());
    return sets;
}

Workgroup WorkgroupByID(CommandContext& context, long long id) {
    if (id == kWorkgroupID_All)
        throw CommandError(GZephyrinSetManager::kCannotCreateSharedSetsInAllFontsWorkgroup,
                           "a set is made in one workgroup, not in all of them together; choose one");
    const auto workgroup = context.manager.workgroups.FindByID(IDOf(id));
    if (!workgroup)
        throw CommandError(GZephyrinSetManager::kWorkGroupIDDoesNotExist,
                           "there is no workgroup " + std::to_string(id) + "; choose another");
    return *workgroup;
}

/// Where a request wants a new set: in a workgroup that it gives by ID or by name, or where new fonts go.
Workgroup WorkgroupForNewSet(CommandContext& context, const Json& arguments) {
    const std::string name = StringMember(arguments, member::kWorkgroup);
    Workgroup workgroup = arguments.contains(member::kWorkgroupID)
                              ? WorkgroupByID(context, IntegerMember(arguments, member::kWorkgroupID))
                          : name.empty() ? context.manager.CurrentWorkgroup()
                                         : FindWorkgroup(context, name);
    if (workgroup.type == kWorkgroupType_System)
        throw CommandError(GZephyrinSetManager::kCannotAddSetsToSystemWorkgroup,
                           "there are no sets in \"" + workgroup.name + "\"; choose another workgroup");
    return workgroup;
}

void RefuseTakenName(CommandContext& context, const Workgroup& workgroup, const std::string& name) {
    for (const FontSet& set : context.manager.sets.FindByName(name)) {
        if (set.workgroupID == workgroup.id)
            throw CommandError(
                CoreErrorCodes::kItemAlreadyExists,
                "there is a set \"" + name + "\" in \"" + workgroup.name + "\" already; choose another name");
    }
}

FontSet RequiredSet(CommandContext& context, const Json& id) {
    const auto set = context.manager.sets.Find(id.is_number_integer() ? IDOf(id.get<long long>()) : 0);
    if (!set)
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no such set any more; see \"Pellwick set list\"");
    return *set;
}

std::vector<uint32_t> RequiredFonts(CommandContext& context, const Json& fonts) {
    std::vector<uint32_t> ids = FontIDsOf(fonts);
    const bool areAllKnown =
        ids.size() == fonts.size() && std::all_of(ids.begin(), ids.end(), [&](uint32_t id) {
            context.audience.KeepAlive();
            return context.manager.fonts.Find(id).has_value();
        });
    if (!areAllKnown)
        throw CommandError(CoreErrorCodes::kNotFound,
                           "one of the fonts is no longer in the font manager; see \"Pellwick list\"");
    return ids;
}

}  // namespace

Json commands::ListSets(CommandContext& context, const Json& arguments) {
    Json records = Json::array();
    for (const FontSet& set : InNamedWorkgroup(context, context.manager.sets.List(), arguments))
        records.push_back(SetRecord(set));
    return {{member::kSets, std::move(records)}};
}

Json commands::FindSet(CommandContext& context, const Json& arguments) {
    const std::string name = StringMember(arguments, member::kName);
    const auto sets = InNamedWorkgroup(context, context.manager.sets.FindByName(name), arguments);
    if (sets.empty())
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no set \"" + name + "\" there; see \"Pellwick set list\"");
    if (sets.size() > 1)
        throw CommandError(CoreErrorCodes::kInvalidParam,
                           "several workgroups have a set \"" + name + "\"; choose one with --workgroup");
    return SetRecord(sets.front());
}

Json commands::CreateSet(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const std::string name = NewName(arguments, member::kName, "the set's name");
    Transaction transaction(context.manager.database);
    const Workgroup workgroup = WorkgroupForNewSet(context, arguments);
    RefuseTakenName(context, workgroup, name);
    const int32_t id = context.manager.sets.Create(workgroup.id, name);
    Json record = SetRecord({id, name, workgroup.id, workgroup.name, 0});
    context.KeepAnswer(record);
    transaction.Commit();
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return record;
}

Json commands::DeleteSet(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const FontSet set = RequiredSet(context, IntegerMember(arguments, member::kSet));
    context.manager.sets.Delete(set.id);
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return SetRecord(set);
}

/// All of the fonts into each of the sets, or none into any.
Json commands::AddFontsToSets(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    Transaction transaction(context.manager.database);
    const std::vector<uint32_t> fonts = RequiredFonts(context, ArrayMember(arguments, member::kFonts));
    int64_t added = 0;
    for (const Json& setID : ArrayMember(arguments, member::kSets)) {
        const FontSet set = RequiredSet(context, setID);
        for (const uint32_t fontID : fonts) {
            context.audience.KeepAlive();
            added += context.manager.sets.AddFont(set.id, fontID) ? 1 : 0;
        }
    }
    Json answer = {{member::kAdded, added}};
    context.KeepAnswer(answer);
    transaction.Commit();
    if (added != 0)
        context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return answer;
}

}  // namespace pellwick
