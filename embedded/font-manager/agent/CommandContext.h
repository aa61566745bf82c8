// What an agent's command works with: who asks, who is told, and what it can leave for later.
#pragma once

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "ErrorCodes.h"
#include "agent/FontManager.h"
#include "common/Protocol.h"
#include "ipc/Message.h"
#include "workers/FontWorker.h"

namespace pellwick {

/// Thrown by a command that cannot do what it was asked for; the message is for people.
class CommandError : public std::runtime_error {
public:
    CommandError(ErrorCode code, const std::string& message) : std::runtime_error(message), mCode(code) {}
    ErrorCode Code() const { return mCode; }

private:
    ErrorCode mCode;
};

/// Who asks.
struct Client {
    HostProcess process;
    bool isSubscribed = false;  ///< to notifications
    bool isHost = false;        ///< holds fonts for documents, and says which answers it took
    /// What that request activated is undone unless the client takes its answer; 0: there is none.
    long long provisionalRequest = 0;
    /// The last request of which the host has taken the answer. Set while what later ones activated, over
    /// earlier connections, is still to be undone.
    std::optional<long long> lastTaken;
    /// Queries that were not saved, by smart list; 0 for a list that is not made yet.
    std::map<int32_t, SmartListQuery> triedQueries;
};

/// What a command tells anyone but the client that asked.
class Audience {
public:
    virtual ~Audience() = default;

    /// Tells every subscribed client; `type` is one of PluginNotificationType.
    virtual void Announce(int32_t type, const Json& data) = 0;
    /// To be called regularly by a command that may take long, so that clients see that the agent lives.
    virtual void KeepAlive() = 0;
    /// Writes a line into the log.
    virtual void Note(const std::string& text) = 0;
    /// Ends the agent after this command.
    virtual void RequestStop() = 0;
};

struct CommandContext;
/// The rest of a command, once the part before it is done: on the loop again, with everything that is the
/// loop's. Time has passed: what was looked up before may be gone.
using Continuation = std::function<Json(CommandContext& context)>;

/// A part of a command that takes long and does not touch what is the loop's.
struct Deferral {
    enum class LaneName {
        kFiles,       ///< copies, checks and reads the files of fonts
        kPreviews,    ///< draws: hosts wait for that, and it is not to wait for files that are added
        kSystemFonts  ///< reads those, however many files are being added
    };
    LaneName lane;
    std::function<Continuation(FontWorker& worker)> work;
};

struct CommandContext {
    FontManager& manager;
    Client& client;
    Audience& audience;
    long long request = 0;               ///< the client's number for it
    const Method* method = nullptr;      ///< null for what the agent does by itself
    std::optional<Deferral> deferral{};  ///< what the command has left to a lane

    /// To be returned by a command whose answer comes later: the other clients are served meanwhile, and this
    /// one sees signs of life. The answer is what the continuation returns, unless that defers as well.
    Json Defer(Deferral::LaneName lane, std::function<Continuation(FontWorker& worker)> work) {
        deferral = {lane, std::move(work)};
        return nullptr;
    }

    /// What a lease is to say that this request takes for the purpose.
    LeaseTerms TermsFor(LeasePurpose purpose, const std::string& document = {}) const {
        return {client.process, purpose, document, client.isHost ? request : 0};
    }
    /// What was leased is the client's only once it has taken the answer.
    void MakeProvisional() {
        if (client.isHost)
            client.provisionalRequest = request;
    }
    /// Undoes, as part of the activation, what the host does not know that it holds. To be called before
    /// anything is leased, and NoteUndone when it is committed.
    void UndoWhatWasNotTaken(Activation& activation) const;
    void NoteUndone() { client.lastTaken.reset(); }
    /// For a command that must not be carried out twice: has the agent give this answer when the request is
    /// repeated. Part of the transaction that is open.
    void KeepAnswer(const Json& answer);
};

/// What is told of an answer that no message can hold.
inline constexpr char kAnswerTooLarge[] = "the answer is too large; ask for less at a time";

/// Throws CommandError when this is more than an answer may hold. To be called before what it tells of is
/// committed: what was done is not to be told as a failure.
void RequireSendable(const Json& answer);

/// Throws CommandError while nobody is logged in.
void RequireLogIn(CommandContext& context);

/// Announces fonts that became active or inactive, or whose files are gone.
void AnnounceChanges(Audience& audience, const ActivationChanges& changes);

}  // namespace pellwick
