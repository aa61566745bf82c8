#include <fmt/core.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <set>

#include "Commands.h"
#include "ErrorCodes.h"
#include "IdleLoop.h"
#include "OpenedDocument.h"
#include "Output.h"
#include "PanelDocuments.h"
#include "PanelEventService.h"
#include "PanelRecorder.h"
#include "PanelServer.h"
#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

/// How often the core is asked for a font manager that was lost, which has it look for one.
constexpr std::chrono::seconds kAskInterval{2};

enum MessageID { kReleaseFontListFile = 13, kEnabled = 30, kGetFontPNG = 32, kFontList = 41 };

/// Beside the programs, in a build and where they are installed.
std::string AppFolder() {
    const auto program = platform::Utf8Path(platform::Current<platform::Processes>().CurrentExecutablePath());
    return platform::Utf8Text(program.parent_path().parent_path() / "share" / "plugincore" / "panel");
}

/// The path that a URL of the core names: "file://" and a path, or three slashes and a path without its first one. A path
/// that begins with a drive has no slash in front.
std::string PathOfURL(std::string_view url) {
    constexpr std::string_view kScheme = "file://";
    if (!url.starts_with(kScheme))
        return {};
    url.remove_prefix(kScheme.size());
    if (url.size() > 2 && url.front() == '/' && url[2] == ':')
        url.remove_prefix(1);
    return std::string(url);
}

std::string TextAt(const json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Between the core's panel event service and the pages. Main thread.
class PanelHost {
public:
    PanelHost(PanelServer& server, PanelRecorder& recorder) : mServer(server), mRecorder(recorder) {}

    PanelEventService& Panels() { return mPanels; }
    bool HasFontManager() const { return mHasFontManager; }
    /// Whether it ever had one.
    bool HadFontManager() const { return mHadFontManager; }

    void Deliver(const PanelPost& post) {
        mRecorder.Note(PanelRecorder::To::kCore, post.text);
        mSender = post.panel;
        mPanels.Send(kPanelToPluginEvent, post.text);
        mSender.clear();
        const json message = json::parse(post.text, nullptr, false);
        if (message.is_object() && message.value("messageID", json()) == kReleaseFontListFile)
            mServer.Withdraw(PathOfURL(TextAt(message, "filename")));
    }

private:
    void Receive(const PlugPlugEvent& event) {
        const std::string text = event.data != nullptr ? event.data : "";
        const json message = json::parse(text, nullptr, false);
        const json id = message.is_object() ? message.value("messageID", json()) : json();
        if (id == kFontList)
            mServer.Offer(PathOfURL(TextAt(message, "filename")));
        if (id == kGetFontPNG)
            OfferImages(message);
        if (id == kEnabled)
            mHasFontManager = message.value("isEnabled", json()) == true;
        else if (const json code = message.is_object() ? message.value("returnCode", json()) : json();
                 !code.is_null())
            mHasFontManager = code != GIPCClient::kServiceUnavailable && code != GAgentIF::kShutdown;
        mHadFontManager = mHadFontManager || (id == kEnabled && mHasFontManager);
        mRecorder.Note(PanelRecorder::To::kPanel, text);
        if (id == kFontList)
            mRecorder.NoteFile(TextAt(message, "filename"), PathOfURL(TextAt(message, "filename")));
        // What is said while a page's message is handled is the answer to it, but for what concerns all.
        mServer.Publish(text, id == kEnabled || id == kGetFontPNG ? std::string() : mSender);
    }

    void OfferImages(const json& message) {
        for (const json& font : message.value("fonts", json::array())) {
            for (const char* key : {"pngFilename", "2xPNGFilename"}) {
                if (const std::string path = PathOfURL(TextAt(font, key)); !path.empty())
                    mServer.Offer(path);
            }
        }
    }

    PanelServer& mServer;
    PanelRecorder& mRecorder;
    PanelEventService mPanels{[this](const PlugPlugEvent& event) { Receive(event); }};
    std::string mSender;
    bool mHasFontManager = false;  ///< as far as is known
    bool mHadFontManager = false;
};

void Serve(const CoreLibrary& core, PanelServer& server, PanelHost& host, PanelDocuments& documents,
           const Closing& closing) {
    Clock::time_point lastAsked{};
    do {
        BeIdle(core, host.Panels());
        if (!host.HasFontManager() && Clock::now() - lastAsked > kAskInterval) {
            bool ignored = false;
            // The first finds one that was not there from the start, the second has one that was lost started again.
            if (!host.HadFontManager())
                core.PluginIsEnabled(false, &ignored);
            else
                core.ShouldShowLogin(&ignored);
            lastAsked = Clock::now();
        }
        const Clock::time_point nextIdle = Clock::now() + kIdleInterval;
        while (const std::optional<PanelPost> post = server.WaitForPost(nextIdle)) {
            if (!post->documents) {
                host.Deliver(*post);
                continue;
            }
            documents.Replace(post->text);
            server.SetDocuments(documents.Describe());
            post->documents->set_value();
        }
    } while (closing.Wait(std::chrono::milliseconds(0)));
}

/// A page that goes on to the panel, for a browser: the command lines of browsers are everybody's to read, and the token
/// is not.
class BrowserPage {
public:
    ~BrowserPage() { platform::RemoveFile(mPath); }

    void Open(const std::string& url) {
        auto& folders = platform::Current<platform::Folders>();
        std::string folder = folders.PathOf(platform::KnownFolder::kRuntime);
        if (folder.empty())
            folder = folders.PathOf(platform::KnownFolder::kCache);
        mPath = platform::Utf8Text(platform::Utf8Path(folder) /
                                   fmt::format("plugincore-panel-{}.html", platform::CurrentProcessId()));
        platform::SystemError error =
            platform::WriteWholeFile(mPath, "<meta http-equiv=\"refresh\" content=\"0;url=" + url + "\">\n");
        if (!error)
            platform::Current<platform::Processes>().Launch("/usr/bin/xdg-open",
                                                            "\"/usr/bin/xdg-open\" \"" + mPath + "\"", error);
        if (error)
            PrintError("no browser could be opened: " + platform::SystemErrorText(error));
    }

private:
    std::string mPath;
};

}  // namespace

int RunPanel(const HostOptions& host, const PanelOptions& options) {
    if (const std::string reason = PanelServer::WhyUnavailable(); !reason.empty()) {
        PrintError(reason);
        return exit_status::kFailed;
    }
    const std::vector<std::string> paths = FindDocuments(options.files);
    if (paths.size() != options.files.size())
        return exit_status::kFailed;
    platform::CatchInterrupts();
    PanelRecorder recorder;
    if (!options.recording.empty() && !recorder.Open(options.recording)) {
        PrintError(options.recording + " cannot be written");
        return exit_status::kFailed;
    }
    PanelServer server(AppFolder());
    PanelHost panelHost(server, recorder);
    HostSession session;
    if (const int startStatus = session.Start(
            host, paths.empty() ? HostSession::Needs::kPreferencesAlone : HostSession::Needs::kPlugin))
        return startStatus;
    if (!server.Start(options.port)) {
        PrintError(fmt::format("port {} cannot be listened at; another program may do so", options.port));
        return exit_status::kFailed;
    }
    PanelDocuments documents(session.Core());
    documents.Open(paths);
    server.SetDocuments(documents.Describe());
    PrintLine(server.URL());
    FlushOutput();
    BrowserPage page;
    if (options.opensBrowser)
        page.Open(server.URL());
    Serve(session.Core(), server, panelHost, documents, Closing(options.time, "end"));
    return exit_status::kDone;
}
