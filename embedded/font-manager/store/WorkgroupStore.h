// Workgroups and which fonts are in them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pellwick {

class Database;

struct Workgroup {
    int32_t id = 0;
    std::string name;
    int32_t type = 0;  ///< see WorkgroupType
};

/// Throws DatabaseError.
class WorkgroupStore {
public:
    explicit WorkgroupStore(Database& database) : mDatabase(database) {}

    std::vector<Workgroup> List();
    std::optional<Workgroup> FindByName(const std::string& name);
    std::optional<Workgroup> FindByID(int32_t id);
    /// The workgroup of that type that was made first.
    std::optional<Workgroup> FirstOfType(int32_t type);

    int32_t Create(const std::string& name, int32_t type);
    void Rename(int32_t id, const std::string& name);
    /// Deletes the workgroup; fonts that are in no other move to `heir`.
    void Delete(int32_t id, int32_t heir);

    void AddFont(int32_t workgroupID, uint32_t fontID);

private:
    Database& mDatabase;
};

}  // namespace pellwick
