// The tables of the font manager's database.
#pragma once

namespace pellwick {

class Database;

/// Makes the tables of a new database and the rows that a fresh font manager starts with; true when it was
/// new. Throws DatabaseError, also for a database that a newer version made.
bool PrepareSchema(Database& database);

}  // namespace pellwick
