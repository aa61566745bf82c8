#include "platform/FontWatch.h"

#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <asio/posix/stream_descriptor.hpp>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "Descriptor.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                              IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

/// A folder to watch, and the only name in it that matters; empty where all do.
struct WatchedFolder {
    std::string path;
    std::string name;

    bool operator==(const WatchedFolder&) const = default;
};

/// The folder itself, or the next above it that is there.
WatchedFolder FolderToWatch(const std::string& folder) {
    std::error_code ignored;
    fs::path path = Utf8Path(folder);
    std::string name;
    while (!fs::is_directory(path, ignored) && path.has_relative_path()) {
        name = Utf8Text(path.filename());
        path = path.parent_path();
    }
    return {Utf8Text(path), name};
}

}  // namespace

struct FontWatch::State {
    State(asio::io_context& loop, std::function<void()> onChange)
        : queue(loop), handler(std::move(onChange)) {}

    /// A queue of its own for each set of folders: what the last one still reports does not matter any more.
    bool Begin(const std::vector<std::string>& folders) {
        std::vector<WatchedFolder> wanted;
        std::transform(folders.begin(), folders.end(), std::back_inserter(wanted), FolderToWatch);
        if (queue.is_open() && wanted == watched)
            return false;
        queue.close();
        names.clear();
        watched = std::move(wanted);
        Descriptor fresh(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!fresh.IsValid())
            return false;
        for (const WatchedFolder& folder : watched) {
            const int watch = inotify_add_watch(fresh.Get(), folder.path.c_str(), kChanges);
            if (watch >= 0)
                names[watch].insert(folder.name);
        }
        queue.assign(fresh.Release());
        Wait();
        return true;
    }

    void Wait() {
        queue.async_wait(asio::posix::stream_descriptor::wait_read, [this](const asio::error_code& failure) {
            if (failure)
                return;
            const bool hasChanged = TakeEvents();
            Wait();
            if (hasChanged)
                handler();
        });
    }

    /// Whether one of them matters.
    bool TakeEvents() {
        alignas(inotify_event) std::array<char, 16384> buffer;
        bool hasChanged = false;
        for (;;) {
            const ssize_t size = read(queue.native_handle(), buffer.data(), buffer.size());
            if (size <= 0)
                return hasChanged;
            for (ssize_t at = 0; at < size;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
                hasChanged = hasChanged || Matters(*event);
                at += static_cast<ssize_t>(sizeof *event + event->len);
            }
        }
    }

    bool Matters(const inotify_event& event) const {
        if ((event.mask & IN_Q_OVERFLOW) != 0)
            return true;
        const auto wanted = names.find(event.wd);
        if ((event.mask & IN_IGNORED) != 0 || wanted == names.end())
            return false;
        const std::string name = event.len != 0 ? event.name : "";
        return name.empty() || wanted->second.count("") != 0 || wanted->second.count(name) != 0;
    }

    asio::posix::stream_descriptor queue;
    std::function<void()> handler;
    std::vector<WatchedFolder> watched;
    std::map<int, std::set<std::string>> names;  ///< that matter, by the system's number for the folder
};

FontWatch::FontWatch(asio::io_context& loop, std::function<void()> handler)
    : mState(std::make_unique<State>(loop, std::move(handler))) {}

FontWatch::~FontWatch() = default;

bool FontWatch::Watch(const std::vector<std::string>& folders) {
    return mState->Begin(folders);
}

}  // namespace platform
