#include "store/SmartListStore.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "FontRecordKeys.h"
#include "store/Database.h"

namespace pellwick {
namespace {

/// What a member of a query is; the numbers stand in databases.
enum MemberKind { kMember_Workgroup = 1, kMember_Set = 2, kMember_SmartList = 3 };

std::vector<int32_t>& MembersOf(SmartListQuery& query, int64_t kind) {
    return kind == kMember_Workgroup ? query.workgroupIDs
           : kind == kMember_Set     ? query.setIDs
                                     : query.smartListIDs;
}

std::optional<SmartList> NextSmartList(Statement& statement) {
    if (!statement.Step())
        return std::nullopt;
    return SmartList{static_cast<int32_t>(statement.Integer(0)), statement.Text(1), {}};
}

void Append(std::vector<int32_t>& all, const std::vector<int32_t>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

}  // namespace

std::vector<SmartList> SmartListStore::List() {
    Statement query = mDatabase.Prepare("SELECT id, name FROM smart_lists ORDER BY name, id");
    std::vector<SmartList> lists;
    while (auto list = NextSmartList(query))
        lists.push_back(std::move(*list));
    for (SmartList& list : lists)
        list.query = QueryOf(list.id);
    return lists;
}

std::optional<SmartList> SmartListStore::Find(int32_t id) {
    Statement query = mDatabase.Prepare("SELECT id, name FROM smart_lists WHERE id = ?");
    auto list = NextSmartList(query.Bind(id));
    if (list)
        list->query = QueryOf(list->id);
    return list;
}

std::optional<SmartList> SmartListStore::FindByName(const std::string& name) {
    Statement query = mDatabase.Prepare("SELECT id, name FROM smart_lists WHERE name = ?");
    auto list = NextSmartList(query.Bind(name));
    if (list)
        list->query = QueryOf(list->id);
    return list;
}

SmartListQuery SmartListStore::QueryOf(int32_t id) {
    Statement rows = mDatabase.Prepare(
        "SELECT kind, member_id FROM smart_list_members WHERE smart_list_id = ? ORDER BY kind, member_id");
    rows.Bind(id);
    SmartListQuery query;
    while (rows.Step())
        MembersOf(query, rows.Integer(0)).push_back(static_cast<int32_t>(rows.Integer(1)));
    return query;
}

int32_t SmartListStore::Create(const std::string& name, const SmartListQuery& query) {
    mDatabase.Prepare("INSERT INTO smart_lists (name) VALUES (?)").Bind(name).Run();
    const auto id = static_cast<int32_t>(mDatabase.LastInsertedID());
    SetQuery(id, query);
    return id;
}

void SmartListStore::Rename(int32_t id, const std::string& name) {
    mDatabase.Prepare("UPDATE smart_lists SET name = ? WHERE id = ?").Bind(name, id).Run();
}

void SmartListStore::SetQuery(int32_t id, const SmartListQuery& query) {
    mDatabase.Prepare("DELETE FROM smart_list_members WHERE smart_list_id = ?").Bind(id).Run();
    SmartListQuery members = query;
    for (const MemberKind kind : {kMember_Workgroup, kMember_Set, kMember_SmartList}) {
        for (const int32_t member : MembersOf(members, kind))
            mDatabase
                .Prepare(
                    "INSERT OR IGNORE INTO smart_list_members (smart_list_id, kind, member_id)"
                    " VALUES (?, ?, ?)")
                .Bind(id, int{kind}, member)
                .Run();
    }
}

void SmartListStore::Delete(int32_t id) {
    mDatabase.Prepare("DELETE FROM smart_lists WHERE id = ?").Bind(id).Run();
}

FontSources SmartListStore::Resolve(int32_t id, const SmartListQuery& query) {
    FontSources sources;
    std::set<int32_t> followed = {id};
    std::vector<SmartListQuery> pending = {query};
    while (!pending.empty()) {
        const SmartListQuery current = std::move(pending.back());
        pending.pop_back();
        const auto& workgroups = current.workgroupIDs;
        sources.isEverything =
            sources.isEverything || current.IsEmpty() ||
            std::find(workgroups.begin(), workgroups.end(), kWorkgroupID_All) != workgroups.end();
        Append(sources.workgroupIDs, workgroups);
        Append(sources.setIDs, current.setIDs);
        for (const int32_t listID : current.smartListIDs) {
            const auto list = followed.insert(listID).second ? Find(listID) : std::nullopt;
            if (list)
                pending.push_back(list->query);
        }
    }
    return sources;
}

}  // namespace pellwick
