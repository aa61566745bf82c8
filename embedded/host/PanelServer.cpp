#include "PanelServer.h"

#include <fmt/core.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <unordered_set>
#include <utility>

#include "Output.h"
#include "PanelStreams.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace {

constexpr char kAddress[] = "127.0.0.1";
/// Beside those that streams hold.
constexpr size_t kNumThreadsForRequests = 16;
constexpr int kMostConnectionsWaiting = 256;
constexpr size_t kMostPostsWaiting = 1024;
constexpr size_t kLargestMessage = size_t{1} << 20;
/// A list of a million fonts has some 100 MB.
constexpr uint64_t kLargestFile = uint64_t{256} << 20;
/// How soon a connection that a page left is noticed.
constexpr std::chrono::seconds kHeartbeat{5};
constexpr size_t kLongestPanelName = 64;
/// The page gets the documents as they are after that; what it chose is carried out later.
constexpr std::chrono::seconds kReplacementLimit{30};
/// On standard error: who asks without end fills no disk.
constexpr uint64_t kMostRefusalsTold = 100;

/// 128 bits that nobody can foresee.
std::string MakeToken() {
    std::random_device random;
    std::string token;
    for (int i = 0; i < 4; ++i)
        token += fmt::format("{:08x}", random());
    return token;
}

/// Takes as long for every text of the length, so that no time tells how much of it is right.
bool IsSameSecret(std::string_view left, std::string_view right) {
    if (left.size() != right.size())
        return false;
    unsigned difference = 0;
    for (size_t i = 0; i < left.size(); ++i)
        difference |= static_cast<unsigned>(left[i] ^ right[i]);
    return difference == 0;
}

const char* ContentTypeOf(std::string_view name) {
    constexpr std::pair<std::string_view, const char*> kTypes[] = {
        {".html", "text/html; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".svg", "image/svg+xml"},
        {".png", "image/png"},
        {".json", "application/json"},
        {".txt", "text/plain; charset=utf-8"},
        {".jsonl", "text/plain; charset=utf-8"},
    };
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [&](const auto& type) { return name.ends_with(type.first); });
    return found != std::end(kTypes) ? found->second : nullptr;
}

bool IsJson(const std::string& contentType) {
    const std::string type = contentType.substr(0, contentType.find(';'));
    return type == "application/json";
}

}  // namespace

struct PanelServer::State {
    explicit State(std::string folder) : appFolder(std::move(folder)) {}

    void Route();
    /// False after a refusal.
    bool Admit(const httplib::Request& request, httplib::Response& response);
    void Refuse(const httplib::Request& request, httplib::Response& response, const char* why);
    /// Whether the post waits for the main thread now; else what to answer is in the response.
    bool TakePost(const httplib::Request& request, httplib::Response& response,
                  std::shared_ptr<std::promise<void>> documentsDone = {});
    void TakeReplacement(const httplib::Request& request, httplib::Response& response);
    void GiveDocuments(httplib::Response& response);
    void Listen(const httplib::Request& request, httplib::Response& response);
    void GiveFile(const httplib::Request& request, httplib::Response& response);
    void GiveAppFile(const std::string& name, httplib::Response& response) const;
    bool IsOffered(const std::string& path);

    const std::string appFolder;
    const std::string token = MakeToken();
    int port = 0;
    socket_t listener = INVALID_SOCKET;
    httplib::Server server;
    PanelStreams streams;
    std::thread thread;
    std::atomic<uint64_t> numRefusals{0};

    std::mutex postMutex;
    std::condition_variable postChange;
    std::deque<PanelPost> posts;

    std::mutex fileMutex;
    std::unordered_set<std::string> offered;
    std::string documents = "[]";
};

void PanelServer::State::Refuse(const httplib::Request& request, httplib::Response& response,
                                const char* why) {
    response.status = 403;
    response.set_content(std::string(why) + "\n", "text/plain");
    // Without the path: it may hold the token.
    if (++numRefusals <= kMostRefusalsTold)
        PrintError("refused a request: " + std::string(why) + " (" + request.method + ")");
}

bool PanelServer::State::Admit(const httplib::Request& request, httplib::Response& response) {
    response.set_header("X-Content-Type-Options", "nosniff");
    response.set_header("Referrer-Policy", "no-referrer");
    response.set_header("Cross-Origin-Resource-Policy", "same-origin");
    response.set_header("Cache-Control", "no-store");
    response.set_header(
        "Content-Security-Policy",
        "default-src 'none'; script-src 'self'; style-src 'self' 'unsafe-inline'; img-src "
        "'self'; connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
    const std::string here = fmt::format("{}:{}", kAddress, port);
    const std::string named = fmt::format("localhost:{}", port);
    const std::string host = request.get_header_value("Host");
    if (host != here && host != named) {
        Refuse(request, response, "a foreign Host");
        return false;
    }
    // Browsers send it with all that comes from elsewhere; programs as curl do not.
    if (request.has_header("Origin") && request.get_header_value("Origin") != "http://" + host) {
        Refuse(request, response, "a foreign Origin");
        return false;
    }
    const std::string_view path = request.path;
    const size_t end = path.find('/', 1);
    if (end == std::string_view::npos || !IsSameSecret(path.substr(1, end - 1), token)) {
        Refuse(request, response, "a wrong token");
        return false;
    }
    return true;
}

bool PanelServer::State::TakePost(const httplib::Request& request, httplib::Response& response,
                                  std::shared_ptr<std::promise<void>> documentsDone) {
    if (!IsJson(request.get_header_value("Content-Type"))) {
        response.status = 415;
        response.set_content("what is sent is application/json\n", "text/plain");
        return false;
    }
    {
        const std::lock_guard lock(postMutex);
        if (posts.size() >= kMostPostsWaiting) {
            response.status = 503;
            response.set_header("Retry-After", "1");
            return false;
        }
        posts.push_back({request.get_param_value("panel").substr(0, kLongestPanelName), request.body,
                         std::move(documentsDone)});
    }
    postChange.notify_one();
    response.status = 202;
    return true;
}

void PanelServer::State::TakeReplacement(const httplib::Request& request, httplib::Response& response) {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> wait = done->get_future();
    if (!TakePost(request, response, std::move(done)))
        return;
    // In time or not: it is how things are now.
    wait.wait_for(kReplacementLimit);
    response.status = 200;
    GiveDocuments(response);
}

void PanelServer::State::GiveDocuments(httplib::Response& response) {
    const std::lock_guard lock(fileMutex);
    response.set_content(documents, "application/json");
}

void PanelServer::State::Listen(const httplib::Request& request, httplib::Response& response) {
    const auto stream = streams.Add(request.get_param_value("panel").substr(0, kLongestPanelName));
    if (stream == nullptr) {
        response.status = 503;
        response.set_header("Retry-After", "5");
        return;
    }
    response.set_chunked_content_provider(
        "text/event-stream",
        [stream, isFirst = true](size_t, httplib::DataSink& sink) mutable {
            // A line at once, for the page to know that it is heard.
            std::string text = ": listening\n\n";
            if (!std::exchange(isFirst, false)) {
                switch (stream->Next(kHeartbeat, text)) {
                    case PanelStreams::Stream::Outcome::kEnded:
                        sink.done();
                        return true;
                    case PanelStreams::Stream::Outcome::kNothingYet:
                        text = ":\n\n";
                        break;
                    case PanelStreams::Stream::Outcome::kEvent:
                        text = "data: " + text + "\n\n";
                }
            }
            return sink.write(text.data(), text.size());
        },
        [this, stream](bool) { streams.Remove(stream); });
}

bool PanelServer::State::IsOffered(const std::string& path) {
    const std::lock_guard lock(fileMutex);
    return offered.contains(path);
}

void PanelServer::State::GiveFile(const httplib::Request& request, httplib::Response& response) {
    const std::string path = request.get_param_value("path");
    const char* type = ContentTypeOf(path);
    // The paths are those of the core, letter by letter; where one has become a link, it is not the core's file.
    if (type == nullptr || !IsOffered(path) || platform::IsLink(path) ||
        platform::ReadWholeFile(path, response.body, kLargestFile)) {
        response.body.clear();
        response.status = 404;
        return;
    }
    response.set_header("Content-Type", type);
}

void PanelServer::State::GiveAppFile(const std::string& name, httplib::Response& response) const {
    const char* type = ContentTypeOf(name);
    if (type == nullptr ||
        platform::ReadWholeFile(platform::Utf8Text(platform::Utf8Path(appFolder) / platform::Utf8Path(name)),
                                response.body, kLargestFile)) {
        response.body.clear();
        response.status = 404;
        if (name == "index.html")
            response.set_content("The app is not built; ./run --panel builds it.\n", "text/plain");
        return;
    }
    response.set_header("Content-Type", type);
}

void PanelServer::State::Route() {
    using httplib::Request;
    using httplib::Response;
    server.new_task_queue = [] {
        return new httplib::ThreadPool(kMostPanelStreams + kNumThreadsForRequests);
    };
    // The library's own choice lets another process listen at the same port.
    server.set_socket_options([this](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&yes), sizeof yes);
        listener = socket;
    });
    server.set_payload_max_length(kLargestMessage);
    server.set_read_timeout(5);
    server.set_write_timeout(5);
    // A connection that is kept holds a thread, which looks at it a hundred times a second.
    server.set_keep_alive_max_count(1);
    server.set_tcp_nodelay(true);
    server.set_pre_routing_handler([this](const Request& request, Response& response) {
        return Admit(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                        : httplib::Server::HandlerResponse::Handled;
    });
    const std::string root = "/" + token;
    server.Post(root + "/messages",
                [this](const Request& request, Response& response) { TakePost(request, response); });
    server.Get(root + "/events",
               [this](const Request& request, Response& response) { Listen(request, response); });
    server.Get(root + "/file",
               [this](const Request& request, Response& response) { GiveFile(request, response); });
    server.Get(root + "/documents", [this](const Request&, Response& response) { GiveDocuments(response); });
    server.Post(root + "/replacements",
                [this](const Request& request, Response& response) { TakeReplacement(request, response); });
    server.Get(root + "/",
               [this](const Request&, Response& response) { GiveAppFile("index.html", response); });
    // One level, and no name that begins with a dot.
    server.Get(root + "/([A-Za-z0-9][A-Za-z0-9._-]*)", [this](const Request& request, Response& response) {
        GiveAppFile(request.matches[1], response);
    });
}

PanelServer::PanelServer(const std::string& appFolder) : mState(std::make_unique<State>(appFolder)) {
    mState->Route();
}

PanelServer::~PanelServer() {
    {
        const std::lock_guard lock(mState->postMutex);
        mState->posts.clear();  // whoever waits for one goes without
    }
    mState->streams.EndAll();
    mState->server.stop();
    if (mState->thread.joinable())
        mState->thread.join();
}

std::string PanelServer::WhyUnavailable() {
    return {};
}

bool PanelServer::Start(uint16_t port) {
    httplib::Server& server = mState->server;
    mState->port = port == 0                             ? server.bind_to_any_port(kAddress)
                   : server.bind_to_port(kAddress, port) ? port
                                                         : -1;
    if (mState->port <= 0)
        return false;
    // The library has five connections wait, and the system lets the sixth try again a second later.
    listen(mState->listener, kMostConnectionsWaiting);
    // Interrupts are the main thread's; those of the pool inherit this.
    const platform::ScopedSignalBlock noSignals;
    mState->thread = std::thread([&server] { server.listen_after_bind(); });
    while (!server.is_running())  // until then it cannot be stopped
        std::this_thread::yield();
    return true;
}

std::string PanelServer::URL() const {
    return fmt::format("http://{}:{}/{}/", kAddress, mState->port, mState->token);
}

std::optional<PanelPost> PanelServer::WaitForPost(std::chrono::steady_clock::time_point until) {
    std::unique_lock lock(mState->postMutex);
    if (std::chrono::steady_clock::now() >= until ||
        !mState->postChange.wait_until(lock, until, [this] { return !mState->posts.empty(); }))
        return std::nullopt;
    PanelPost post = std::move(mState->posts.front());
    mState->posts.pop_front();
    return post;
}

void PanelServer::Publish(const std::string& text, const std::string& panel) {
    mState->streams.Publish(text, panel);
}

void PanelServer::Offer(const std::string& path) {
    const std::lock_guard lock(mState->fileMutex);
    mState->offered.insert(path);
}

void PanelServer::Withdraw(const std::string& path) {
    const std::lock_guard lock(mState->fileMutex);
    mState->offered.erase(path);
}

void PanelServer::SetDocuments(std::string json) {
    const std::lock_guard lock(mState->fileMutex);
    mState->documents = std::move(json);
}
