// The tables of the font manager's database.
#pragma once

#include "common/Protocol.h"

namespace pellwick {

class Database;

/// Makes the tables of a new database and the rows that a fresh font manager starts with; true when it was
/// new. A database of an older version is brought to the current one, or stays as it was. Throws
/// DatabaseError, also for a database that a newer version made, or another program, and leaves it as it is.
/// `session`: that of Locations. Another `target` is for tests of upgrades.
bool PrepareSchema(Database& database, uint32_t session = 0, int target = kSchemaVersion);

}  // namespace pellwick
