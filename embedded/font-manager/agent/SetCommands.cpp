// Sets of fonts.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/Commands.h"
#include "agent/FontRecord.h"
#include "agent/NewNames.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

Json SetRecord(const FontSet& set) {
    return {{kSetIDMember, set.id},
            {kSetNameMember, set.name},
            {kGS_WorkgroupIDKey, set.workgroupID},
            {kGS_WorkgroupNameKey, set.workgroupName},
            {kFontCountMember, set.fontCount}};
}

/// Leaves out sets of other workgroups, when the request names one.
std::vector<FontSet> InNamedWorkgroup(CommandContext& context, std::vector<FontSet> sets,
                                      const Json& arguments) {
    const std::string name = StringMember(arguments, "workgroup");
    if (name.empty())
        return sets;
    const int32_t id = FindWorkgroup(context, name).id;
    sets.erase(
        std::remove_if(sets.begin(), sets.end(), [id](const FontSet& set) { return set.workgroupID != id; }),
        sets.end());
    return sets;
}

Json ListSets(CommandContext& context, const Json& arguments) {
    Json records = Json::array();
    for (const FontSet& set : InNamedWorkgroup(context, context.manager.sets.List(), arguments))
        records.push_back(SetRecord(set));
    return {{"sets", std::move(records)}};
}

Json FindSet(CommandContext& context, const Json& arguments) {
    const std::string name = StringMember(arguments, "name");
    const auto sets = InNamedWorkgroup(context, context.manager.sets.FindByName(name), arguments);
    if (sets.empty())
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no set \"" + name + "\" there; see \"Pellwick set list\"");
    if (sets.size() > 1)
        throw CommandError(CoreErrorCodes::kInvalidParam,
                           "several workgroups have a set \"" + name + "\"; choose one with --workgroup");
    return SetRecord(sets.front());
}

Workgroup WorkgroupByID(CommandContext& context, long long id) {
    if (id == kAllWorkgroupsID)
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
    const std::string name = StringMember(arguments, "workgroup");
    Workgroup workgroup = arguments.contains("workgroupID")
                              ? WorkgroupByID(context, IntegerMember(arguments, "workgroupID"))
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

Json CreateSet(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const std::string name = NewName(arguments, "name", "the set's name");
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

FontSet RequiredSet(CommandContext& context, const Json& id) {
    const auto set = context.manager.sets.Find(id.is_number_integer() ? IDOf(id.get<long long>()) : 0);
    if (!set)
        throw CommandError(GZephyrinSetManager::kSetNotFound,
                           "there is no such set any more; see \"Pellwick set list\"");
    return *set;
}

Json DeleteSet(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    const FontSet set = RequiredSet(context, IntegerMember(arguments, "set"));
    context.manager.sets.Delete(set.id);
    context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return SetRecord(set);
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

/// All of the fonts into each of the sets, or none into any.
Json AddFontsToSets(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    Transaction transaction(context.manager.database);
    const std::vector<uint32_t> fonts = RequiredFonts(context, ArrayMember(arguments, "fonts"));
    int64_t added = 0;
    for (const Json& setID : ArrayMember(arguments, "sets")) {
        const FontSet set = RequiredSet(context, setID);
        for (const uint32_t fontID : fonts) {
            context.audience.KeepAlive();
            added += context.manager.sets.AddFont(set.id, fontID) ? 1 : 0;
        }
    }
    Json answer = {{"added", added}};
    context.KeepAnswer(answer);
    transaction.Commit();
    if (added != 0)
        context.audience.Announce(kPluginCallback_PanelDataChanged, nullptr);
    return answer;
}

}  // namespace

void AddSetCommands(CommandTable& table) {
    table[method::kListSets] = ListSets;
    table[method::kFindSet] = FindSet;
    table[method::kCreateSet] = CreateSet;
    table[method::kDeleteSet] = DeleteSet;
    table[method::kAddFontsToSets] = AddFontsToSets;
}

}  // namespace pellwick
