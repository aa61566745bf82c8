#include "store/WorkgroupStore.h"

#include "store/Database.h"

namespace pellwick {
namespace {

#define SELECT_WORKGROUPS "SELECT id, name, type FROM workgroups "

std::optional<Workgroup> NextWorkgroup(Statement& statement) {
    if (!statement.Step())
        return std::nullopt;
    return Workgroup{static_cast<int32_t>(statement.Integer(0)), statement.Text(1),
                     static_cast<int32_t>(statement.Integer(2))};
}

}  // namespace

std::vector<Workgroup> WorkgroupStore::List() {
    Statement query = mDatabase.Prepare(SELECT_WORKGROUPS "ORDER BY id");
    std::vector<Workgroup> workgroups;
    while (auto workgroup = NextWorkgroup(query))
        workgroups.push_back(std::move(*workgroup));
    return workgroups;
}

std::optional<Workgroup> WorkgroupStore::FindByName(const std::string& name) {
    Statement query = mDatabase.Prepare(SELECT_WORKGROUPS "WHERE name = ?");
    return NextWorkgroup(query.Bind(name));
}

std::optional<Workgroup> WorkgroupStore::FindByID(int32_t id) {
    Statement query = mDatabase.Prepare(SELECT_WORKGROUPS "WHERE id = ?");
    return NextWorkgroup(query.Bind(id));
}

std::optional<Workgroup> WorkgroupStore::FirstOfType(int32_t type) {
    Statement query = mDatabase.Prepare(SELECT_WORKGROUPS "WHERE type = ? ORDER BY id LIMIT 1");
    return NextWorkgroup(query.Bind(type));
}

int32_t WorkgroupStore::Create(const std::string& name, int32_t type) {
    mDatabase.Prepare("INSERT INTO workgroups (name, type) VALUES (?, ?)").Bind(name, type).Run();
    return static_cast<int32_t>(mDatabase.LastInsertedID());
}

void WorkgroupStore::Rename(int32_t id, const std::string& name) {
    mDatabase.Prepare("UPDATE workgroups SET name = ? WHERE id = ?").Bind(name, id).Run();
}

void WorkgroupStore::Delete(int32_t id, int32_t heir) {
    mDatabase
        .Prepare(
            "INSERT OR IGNORE INTO workgroup_fonts (workgroup_id, font_id)"
            " SELECT ?, font_id FROM workgroup_fonts w WHERE workgroup_id = ? AND NOT EXISTS"
            " (SELECT 1 FROM workgroup_fonts o WHERE o.font_id = w.font_id AND o.workgroup_id <> "
            "w.workgroup_id)")
        .Bind(heir, id)
        .Run();
    mDatabase.Prepare("DELETE FROM workgroups WHERE id = ?").Bind(id).Run();
}

void WorkgroupStore::AddFont(int32_t workgroupID, uint32_t fontID) {
    mDatabase.Prepare("INSERT OR IGNORE INTO workgroup_fonts (workgroup_id, font_id) VALUES (?, ?)")
        .Bind(workgroupID, fontID)
        .Run();
}

}  // namespace pellwick
