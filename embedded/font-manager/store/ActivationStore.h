// Who holds which font active: the user, and host processes for their documents.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pellwick {

class Database;

/// One process for as long as the system runs.
struct HostProcess {
    int64_t process = 0;     ///< its identifier
    uint64_t startTime = 0;  ///< as platform::ProcessStartTime tells it

    bool operator==(const HostProcess&) const = default;
};

/// Throws DatabaseError.
class ActivationStore {
public:
    explicit ActivationStore(Database& database) : mDatabase(database) {}

    void AddUserActivation(uint32_t fontID);
    /// False when there was none.
    bool RemoveUserActivation(uint32_t fontID);

    void AddLease(const HostProcess& host, const std::string& document, uint32_t fontID);
    /// Ends the host's leases on the font, whatever the document. False when it had none.
    bool EndLeases(const HostProcess& host, uint32_t fontID);
    bool HasLease(const HostProcess& host, uint32_t fontID);

    std::vector<HostProcess> Hosts();
    std::vector<uint32_t> FontsLeasedBy(const HostProcess& host);
    std::vector<uint32_t> FontsLeasedFor(const HostProcess& host, const std::string& document);

private:
    Database& mDatabase;
};

}  // namespace pellwick
