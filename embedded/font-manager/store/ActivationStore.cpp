#include "store/ActivationStore.h"

#include "store/Database.h"

namespace pellwick {
namespace {

std::vector<uint32_t> FontIDs(Statement& statement) {
    std::vector<uint32_t> ids;
    while (statement.Step())
        ids.push_back(static_cast<uint32_t>(statement.Integer(0)));
    return ids;
}

std::vector<HostProcess> HostsOf(Statement& query) {
    std::vector<HostProcess> hosts;
    while (query.Step())
        hosts.push_back({query.Integer(0), static_cast<uint64_t>(query.Integer(1))});
    return hosts;
}

}  // namespace

void ActivationStore::AddUserActivation(uint32_t fontID) {
    mDatabase.Prepare("INSERT OR IGNORE INTO user_activations (font_id) VALUES (?)").Bind(fontID).Run();
}

bool ActivationStore::RemoveUserActivation(uint32_t fontID) {
    mDatabase.Prepare("DELETE FROM user_activations WHERE font_id = ?").Bind(fontID).Run();
    return mDatabase.ChangedRows() > 0;
}

void ActivationStore::AddLease(uint32_t fontID, const LeaseTerms& terms) {
    mDatabase
        .Prepare(
            "INSERT OR IGNORE INTO leases (font_id, process, start_time, purpose, document, request, session)"
            " VALUES (?, ?, ?, ?, ?, ?, (SELECT number FROM own_session))")
        .Bind(fontID, terms.host.process, terms.host.startTime, static_cast<int>(terms.purpose),
              terms.document, terms.request)
        .Run();
}

bool ActivationStore::EndLeases(const HostProcess& host, LeasePurpose purpose, uint32_t fontID) {
    mDatabase
        .Prepare("DELETE FROM leases WHERE font_id = ? AND process = ? AND start_time = ? AND purpose = ?")
        .Bind(fontID, host.process, host.startTime, static_cast<int>(purpose))
        .Run();
    return mDatabase.ChangedRows() > 0;
}

bool ActivationStore::EndAllLeases(const HostProcess& host, uint32_t fontID) {
    mDatabase.Prepare("DELETE FROM leases WHERE font_id = ? AND process = ? AND start_time = ?")
        .Bind(fontID, host.process, host.startTime)
        .Run();
    return mDatabase.ChangedRows() > 0;
}

std::vector<uint32_t> ActivationStore::EndLeasesOfRequests(const HostProcess& host, long long first,
                                                           long long last) {
    Statement ending = mDatabase.Prepare(
        "DELETE FROM leases WHERE process = ? AND start_time = ? AND request BETWEEN ? AND ?"
        " RETURNING font_id");
    return FontIDs(ending.Bind(host.process, host.startTime, first, last));
}

bool ActivationStore::HasLease(const HostProcess& host, uint32_t fontID) {
    return mDatabase
        .Prepare("SELECT 1 FROM leases WHERE font_id = ? AND process = ? AND start_time = ? LIMIT 1")
        .Bind(fontID, host.process, host.startTime)
        .Step();
}

bool ActivationStore::HasLease(const HostProcess& host, uint32_t fontID, LeasePurpose purpose) {
    return mDatabase
        .Prepare(
            "SELECT 1 FROM leases WHERE font_id = ? AND process = ? AND start_time = ? AND purpose = ?"
            " LIMIT 1")
        .Bind(fontID, host.process, host.startTime, static_cast<int>(purpose))
        .Step();
}

void ActivationStore::EndLeasesOfOtherSessions() {
    mDatabase.Execute("DELETE FROM leases WHERE session <> (SELECT number FROM own_session)");
}

std::vector<HostProcess> ActivationStore::Hosts() {
    Statement query = mDatabase.Prepare("SELECT DISTINCT process, start_time FROM own_leases");
    return HostsOf(query);
}

std::vector<uint32_t> ActivationStore::FontsLeasedBy(const HostProcess& host) {
    Statement query =
        mDatabase.Prepare("SELECT DISTINCT font_id FROM leases WHERE process = ? AND start_time = ?");
    return FontIDs(query.Bind(host.process, host.startTime));
}

std::vector<uint32_t> ActivationStore::FontsLeasedFor(const HostProcess& host, const std::string& document) {
    Statement query = mDatabase.Prepare(
        "SELECT font_id FROM leases WHERE process = ? AND start_time = ? AND purpose = ? AND document = ?");
    return FontIDs(
        query.Bind(host.process, host.startTime, static_cast<int>(LeasePurpose::kDocument), document));
}

void ActivationStore::KeepAnswer(const HostProcess& host, long long request, const std::string& answer) {
    mDatabase
        .Prepare("INSERT OR REPLACE INTO answers (process, start_time, request, answer) VALUES (?, ?, ?, ?)")
        .Bind(host.process, host.startTime, request, answer)
        .Run();
}

std::optional<std::string> ActivationStore::FindAnswer(const HostProcess& host, long long request) {
    Statement query =
        mDatabase.Prepare("SELECT answer FROM answers WHERE process = ? AND start_time = ? AND request = ?");
    if (!query.Bind(host.process, host.startTime, request).Step())
        return std::nullopt;
    return query.Text(0);
}

std::vector<HostProcess> ActivationStore::HostsWithAnswers() {
    Statement query = mDatabase.Prepare("SELECT process, start_time FROM answers");
    return HostsOf(query);
}

void ActivationStore::ForgetAnswer(const HostProcess& host) {
    mDatabase.Prepare("DELETE FROM answers WHERE process = ? AND start_time = ?")
        .Bind(host.process, host.startTime)
        .Run();
}

}  // namespace pellwick
