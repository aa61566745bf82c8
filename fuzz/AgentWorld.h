// An agent without its loop: a font manager with some fonts, and clients that ask it. As the real one, it
// carries out a part of one client's command while the next part of another's is still to come.
#pragma once

#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ScratchFile.h"
#include "agent/Requests.h"
#include "platform/FontTable.h"

/// What all inputs have in common: font files, and the process that reads them.
class FontLibrary {
public:
    FontLibrary();

    /// Font files, and others, that can be added.
    const std::vector<std::string>& Paths() const { return mPaths; }
    /// Those that an agent has when it begins.
    struct Known {
        std::string content;
        pellwick::FontFile file;
        std::vector<pellwick::FontFace> faces;
    };
    const std::vector<Known>& KnownFonts() const { return mKnown; }
    /// A font that none of them is.
    const Known& Stranger() const { return mStranger; }
    pellwick::FontWorker& Worker() { return mWorker; }
    const ScratchFolder& Folder() const { return mFolder; }

private:
    void Write(const std::string& name, const std::string& content);
    Known Read(const std::string& path, const std::string& content);

    /// The system is not asked for its fonts: there may be many.
    class NoFontTable : public platform::FontTable {
        bool IsFilledFromFolders() override { return true; }
        bool Add(const std::string&) override { return false; }
        bool Remove(const std::string&) override { return false; }
        void AnnounceChange() override {}
        platform::VisibleFonts Visible() override { return {}; }
    };

    ScratchFolder mFolder;
    std::vector<std::string> mPaths;
    std::vector<Known> mKnown;
    Known mStranger;
    pellwick::FontWorker mWorker;
    NoFontTable mFontTable;
    platform::ScopedOverride<platform::FontTable> mOverride{mFontTable};
};

/// An agent as it is for one input.
class AgentWorld {
public:
    explicit AgentWorld(FontLibrary& library);

    /// Two hosts, of which the second is a process that is gone, and a command line.
    static constexpr size_t kClients = 3;

    /// Has the agent begin with a request. One that the client made before is finished first.
    void Request(size_t client, const pellwick::Json& request);
    /// The next part of the client's request, if there is one under way.
    void GoOn(size_t client);
    /// The client has taken the answer to its last request.
    void Acknowledge(size_t client);
    /// The client closes its connection and makes another; an answer that it has not taken is lost.
    void Reconnect(size_t client);
    /// The agent looks for processes that are gone.
    void Sweep();
    /// The agent looks at the next file of the vault.
    void CheckVault();
    /// A file of the vault is gone, or has another content of the same size.
    void LoseFile(size_t number, bool isDamaged);

    /// Puts a file into the vault that no record knows: a font, or something else under a font's name.
    void AddStray(bool isFont);
    /// What is under way comes to its end; then the agent begins anew.
    void Restart();

    /// Finishes what is under way and has the hosts end. Checks what then has to hold.
    void End();

    static constexpr int64_t kLargestID = 6;  ///< of fonts at the beginning, and some more

private:
    struct Caller {
        pellwick::Client client;
        bool isAsking = false;
        long long request = 0;
        std::optional<pellwick::Deferral> deferral;  ///< what is to be done next
    };

    template <class Step>
    void Proceed(Caller& caller, const Step& step);
    void Finish(Caller& caller, const pellwick::CommandAnswer& answer);
    void MakeLists();
    void RunOwn(const pellwick::Continuation& command);
    void FinishAll();
    void LoseAnswer(Caller& caller);
    void CheckDatabase();

    FontLibrary& mLibrary;
    std::unique_ptr<pellwick::FontManager> mManager;
    std::array<Caller, kClients + 1> mCallers;  ///< the last is the agent itself
};
