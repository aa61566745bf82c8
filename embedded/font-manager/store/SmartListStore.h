// Smart lists: lists of fonts that say where their fonts come from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pellwick {

class Database;

/// The fonts that are in any of these; all fonts where nothing is named. IDs of what has been deleted stay
/// and match nothing: a list that loses its last set is empty, and does not become one of all fonts.
struct SmartListQuery {
    std::vector<int32_t> workgroupIDs;  ///< kWorkgroupID_All may be among them
    std::vector<int32_t> setIDs;
    std::vector<int32_t> smartListIDs;

    bool IsEmpty() const { return workgroupIDs.empty() && setIDs.empty() && smartListIDs.empty(); }
    bool operator==(const SmartListQuery&) const = default;
};

struct SmartList {
    int32_t id = 0;
    std::string name;
    SmartListQuery query;
};

/// A query without smart lists in it.
struct FontSources {
    bool isEverything = false;
    std::vector<int32_t> workgroupIDs;
    std::vector<int32_t> setIDs;
};

/// Throws DatabaseError.
class SmartListStore {
public:
    explicit SmartListStore(Database& database) : mDatabase(database) {}

    /// All smart lists, by name.
    std::vector<SmartList> List();
    std::optional<SmartList> Find(int32_t id);
    std::optional<SmartList> FindByName(const std::string& name);

    /// The new list's ID.
    int32_t Create(const std::string& name, const SmartListQuery& query);
    void Rename(int32_t id, const std::string& name);
    void SetQuery(int32_t id, const SmartListQuery& query);
    void Delete(int32_t id);

    /// Follows the smart lists in the query to where their fonts come from; each is followed once, so that
    /// lists may name one another. `id` is the list that the query is for, 0 for none.
    FontSources Resolve(int32_t id, const SmartListQuery& query);

private:
    SmartListQuery QueryOf(int32_t id);

    Database& mDatabase;
};

}  // namespace pellwick
