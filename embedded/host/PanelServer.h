// The way between browsers and the host: events to pages, messages and files of theirs, over HTTP on the loopback.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <string>

/// What a page sent.
struct PanelPost {
    std::string panel;  ///< what the page calls itself; empty for one that does not
    std::string text;   ///< as it came, JSON or not
    /// Where it chooses a font for a document that lacks one, which is not a message to the core: to be told when that was
    /// done, for the page to get the documents then.
    std::shared_ptr<std::promise<void>> documents;
};

/// Answers on threads of its own. What pages send waits in a queue of bounded length for the main thread, which makes
/// all the calls below.
class PanelServer {
public:
    /// `appFolder`: the files of the app, full path; need not exist.
    explicit PanelServer(const std::string& appFolder);
    /// Ends all connections.
    ~PanelServer();
    PanelServer(const PanelServer&) = delete;
    PanelServer& operator=(const PanelServer&) = delete;

    /// Why there can be none in this build, for people; empty where there can.
    static std::string WhyUnavailable();

    /// Listens at 127.0.0.1. `port` 0: whichever is free. False when the port cannot be had.
    bool Start(uint16_t port);
    /// Where the app is, with the token; what is next to it is reached from there as well. Ends with a slash.
    std::string URL() const;

    /// The next post; nothing when none has come by then.
    std::optional<PanelPost> WaitForPost(std::chrono::steady_clock::time_point until);
    /// Sends the text, one line of JSON, to the pages of that name; to all when it is empty.
    void Publish(const std::string& text, const std::string& panel = {});
    /// Pages may read the file at the full path from now on, or no more.
    void Offer(const std::string& path);
    void Withdraw(const std::string& path);
    /// What pages get for "documents": JSON.
    void SetDocuments(std::string json);

private:
    struct State;
    std::unique_ptr<State> mState;
};
