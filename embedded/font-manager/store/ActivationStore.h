// Who holds which font active: the user, in all sessions, and host processes for their documents, each in its own.
#pragma once

#include <cstdint>
#include <optional>
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

struct LeaseTerms {
    HostProcess host;
    LeasePurpose purpose = LeasePurpose::kDocument;
    std::string document{};  ///< empty for purposes that have nothing to do with one
    long long request = 0;   ///< the host's request that takes the lease; 0 for none that could be undone
};

/// Throws DatabaseError.
class ActivationStore {
public:
    explicit ActivationStore(Database& database) : mDatabase(database) {}

    void AddUserActivation(uint32_t fontID);
    /// False when there was none.
    bool RemoveUserActivation(uint32_t fontID);

    /// A lease of those terms that is there already stays that of its own request.
    void AddLease(uint32_t fontID, const LeaseTerms& terms);
    /// Ends the host's leases on the font for that purpose, whatever the document. False when it had none.
    bool EndLeases(const HostProcess& host, LeasePurpose purpose, uint32_t fontID);
    /// Ends the host's leases on the font for every purpose.
    bool EndAllLeases(const HostProcess& host, uint32_t fontID);
    /// Ends the leases that the host's requests from `first` to `last` took; the fonts that these were on.
    std::vector<uint32_t> EndLeasesOfRequests(const HostProcess& host, long long first, long long last);
    /// For any purpose.
    bool HasLease(const HostProcess& host, uint32_t fontID);
    bool HasLease(const HostProcess& host, uint32_t fontID, LeasePurpose purpose);

    /// Of the system's earlier runs: their sessions have ended.
    void EndLeasesOfOtherSessions();
    /// Those of this session.
    std::vector<HostProcess> Hosts();
    std::vector<uint32_t> FontsLeasedBy(const HostProcess& host);
    /// For that document.
    std::vector<uint32_t> FontsLeasedFor(const HostProcess& host, const std::string& document);

    /// Keeps what a request of the host came to, in place of what is kept of an earlier one.
    void KeepAnswer(const HostProcess& host, long long request, const std::string& answer);
    /// What that request came to; nothing when it was not carried out, or another one after it.
    std::optional<std::string> FindAnswer(const HostProcess& host, long long request);
    std::vector<HostProcess> HostsWithAnswers();
    void ForgetAnswer(const HostProcess& host);

private:
    Database& mDatabase;
};

}  // namespace pellwick
