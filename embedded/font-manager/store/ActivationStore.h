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

/// What a host process holds a font for; the numbers stand in databases.
enum class LeasePurpose {
    kDocument = 0,  ///< until the documents that need it are closed
    kDesign = 1,    ///< for the user, who is designing with it in that host
    kPreview = 2    ///< to show it
};

/// Throws DatabaseError.
class ActivationStore {
public:
    explicit ActivationStore(Database& database) : mDatabase(database) {}

    void AddUserActivation(uint32_t fontID);
    /// False when there was none.
    bool RemoveUserActivation(uint32_t fontID);

    /// `document` is empty for purposes that have nothing to do with one.
    void AddLease(const HostProcess& host, LeasePurpose purpose, const std::string& document,
                  uint32_t fontID);
    /// Ends the host's leases on the font for that purpose, whatever the document. False when it had none.
    bool EndLeases(const HostProcess& host, LeasePurpose purpose, uint32_t fontID);
    /// Ends the host's leases on the font for every purpose.
    bool EndAllLeases(const HostProcess& host, uint32_t fontID);
    /// For any purpose.
    bool HasLease(const HostProcess& host, uint32_t fontID);

    std::vector<HostProcess> Hosts();
    std::vector<uint32_t> FontsLeasedBy(const HostProcess& host);
    /// For that document.
    std::vector<uint32_t> FontsLeasedFor(const HostProcess& host, const std::string& document);

private:
    Database& mDatabase;
};

}  // namespace pellwick
