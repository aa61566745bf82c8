// The tables of the font manager's database.
#pragma once

namespace pellwick {

class Database;

/// Makes the tables of a new database and the rows that a fresh font manager starts with. Throws
/// DatabaseError, also for a database that a newer version made.
void PrepareSchema(Database& database);

}  // namespace pellwick
