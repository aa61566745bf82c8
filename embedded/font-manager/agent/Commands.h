// The agent's commands: one function per method of the protocol.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "ErrorCodes.h"
#include "agent/FontManager.h"
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

/// What a command says to others than the one who asked.
class Audience {
public:
    virtual ~Audience() = default;

    /// Tells every subscribed client; `type` is one of PluginNotificationType.
    virtual void Announce(int32_t type, const Json& data) = 0;
    /// To be called every now and then by a command that may take long: clients learn that the agent lives.
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
        kFiles,    ///< copies, checks and reads the files of fonts
        kPreviews  ///< draws: hosts wait for that, and it is not to wait for files that are added
    };
    LaneName lane;
    std::function<Continuation(FontWorker& worker)> work;
};

struct CommandContext {
    FontManager& manager;
    Client& client;
    Audience& audience;
    long long request = 0;               ///< the client's number for it
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

using Command = Json (*)(CommandContext& context, const Json& arguments);
using CommandTable = std::map<std::string, Command, std::less<>>;

/// All methods of the protocol.
CommandTable MakeCommandTable();

// What MakeCommandTable is made of.
void AddSessionCommands(CommandTable& table);
void AddFontCommands(CommandTable& table);
void AddVaultCommands(CommandTable& table);
void AddLookupCommands(CommandTable& table);
void AddActivationCommands(CommandTable& table);
void AddDesignCommands(CommandTable& table);
void AddWorkgroupCommands(CommandTable& table);
void AddSetCommands(CommandTable& table);
void AddSmartListCommands(CommandTable& table);
void AddDocumentCommands(CommandTable& table);
void AddPreviewCommands(CommandTable& table);

struct CommandAnswer {
    ErrorCode code;
    std::string problem;  ///< for people; empty on success
    std::string frame;
};

/// Runs the command that a request asks for and makes the answer to send back; nothing when the command has
/// left work to a lane. What the command throws is its answer; std::bad_alloc when there is no memory even
/// for that.
std::optional<CommandAnswer> BeginRequest(const CommandTable& table, CommandContext& context,
                                          const Json& request);
/// The same for the rest of a command.
std::optional<CommandAnswer> ContinueRequest(CommandContext& context, const Continuation& rest);

/// Throws CommandError when this is more than an answer may hold. To be called before what it tells of is
/// committed: what was done is not to be told as a failure.
void RequireSendable(const Json& answer);

/// Throws CommandError while nobody is logged in.
void RequireLogIn(CommandContext& context);

/// A number as an ID; 0, which is none, where it is too large for one.
int32_t IDOf(long long number);

/// The ID after which the page begins that a request asks for.
uint32_t PageStart(const Json& arguments);

/// Where the fonts of a smart list come from, by the query that the client tries, else by the list's own.
/// Throws CommandError when there is no such list.
FontSources SourcesOfSmartList(CommandContext& context, long long listID);

/// The font that a request names. Throws CommandError when there is none.
Font FindFont(CommandContext& context, const Json& arguments);

/// The other fonts of the font's family, without further versions of the font itself.
std::vector<Font> RestOfFamily(FontStore& fonts, const Font& font);

/// The workgroup of that name. Throws CommandError when there is none.
Workgroup FindWorkgroup(CommandContext& context, const std::string& name);

/// Adds a font file; see AddFontCommand.cpp.
Json AddFile(CommandContext& context, const Json& arguments);

/// Has the lane for files look at the next file of the vault that is due; see VaultCommands.cpp.
Json CheckNextFile(CommandContext& context);
/// Takes files of the vault that no record knows into the library, one after the other.
Json TakeBack(CommandContext& context, const std::shared_ptr<std::vector<std::string>>& paths);

/// Announces fonts that became active or inactive, or whose files are gone.
void AnnounceChanges(Audience& audience, const ActivationChanges& changes);

}  // namespace pellwick
