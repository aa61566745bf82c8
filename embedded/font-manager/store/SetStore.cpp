#include "store/SetStore.h"

#include "store/Database.h"

namespace pellwick {
namespace {

#define SELECT_SETS                                               \
    "SELECT s.id, s.name, s.workgroup_id, w.name,"                \
    " (SELECT COUNT(*) FROM set_fonts sf WHERE sf.set_id = s.id)" \
    " FROM sets s JOIN workgroups w ON w.id = s.workgroup_id "

std::optional<FontSet> NextSet(Statement& statement) {
    if (!statement.Step())
        return std::nullopt;
    return FontSet{static_cast<int32_t>(statement.Integer(0)), statement.Text(1),
                   static_cast<int32_t>(statement.Integer(2)), statement.Text(3), statement.Integer(4)};
}

std::vector<FontSet> AllSets(Statement& statement) {
    std::vector<FontSet> sets;
    while (auto set = NextSet(statement))
        sets.push_back(std::move(*set));
    return sets;
}

}  // namespace

std::vector<FontSet> SetStore::List() {
    Statement query = mDatabase.Prepare(SELECT_SETS "ORDER BY s.workgroup_id, s.name, s.id");
    return AllSets(query);
}

std::optional<FontSet> SetStore::Find(int32_t id) {
    Statement query = mDatabase.Prepare(SELECT_SETS "WHERE s.id = ?");
    return NextSet(query.Bind(id));
}

std::vector<FontSet> SetStore::FindByName(const std::string& name) {
    Statement query = mDatabase.Prepare(SELECT_SETS "WHERE s.name = ? ORDER BY s.workgroup_id");
    return AllSets(query.Bind(name));
}

int32_t SetStore::Create(int32_t workgroupID, const std::string& name) {
    mDatabase.Prepare("INSERT INTO sets (workgroup_id, name) VALUES (?, ?)").Bind(workgroupID, name).Run();
    return static_cast<int32_t>(mDatabase.LastInsertedID());
}

void SetStore::Delete(int32_t id) {
    mDatabase.Prepare("DELETE FROM sets WHERE id = ?").Bind(id).Run();
}

bool SetStore::AddFont(int32_t setID, uint32_t fontID) {
    mDatabase.Prepare("INSERT OR IGNORE INTO set_fonts (set_id, font_id) VALUES (?, ?)")
        .Bind(setID, fontID)
        .Run();
    return mDatabase.ChangedRows() > 0;
}

}  // namespace pellwick
