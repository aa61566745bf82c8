// Sets of fonts, which the user or a plug-in puts together within a workgroup.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellwick {

class Database;

struct FontSet {
    int32_t id = 0;
    std::string name;
    int32_t workgroupID = 0;
    std::string workgroupName;
    int64_t fontCount = 0;
};

/// Throws DatabaseError.
class SetStore {
public:
    explicit SetStore(Database& database) : mDatabase(database) {}

    /// All sets, by workgroup and then by name.
    std::vector<FontSet> List();
    std::optional<FontSet> Find(int32_t id);
    /// The sets of that name, in the order of their workgroups; one workgroup has at most one.
    std::vector<FontSet> FindByName(const std::string& name);

    /// The new set's ID.
    int32_t Create(int32_t workgroupID, const std::string& name);
    /// Deletes the set; its fonts stay.
    void Delete(int32_t id);
    /// Whether the font was not in the set before.
    bool AddFont(int32_t setID, uint32_t fontID);

private:
    Database& mDatabase;
};

}  // namespace pellwick
