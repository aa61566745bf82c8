#include "platform/FontWatch.h"

#include <asio/windows/object_handle.hpp>

#include "InstalledFonts.h"

namespace platform {
namespace {

/// One list in the registry.
class ListWatch {
public:
    ListWatch(asio::io_context& loop, HKEY root)
        : mKey(root), mEvent(loop, CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

    /// The list of this user may not be there before a font is installed for the user alone for the first
    /// time; that font is seen when the watch begins next.
    void Begin(const std::function<void()>& handler) {
        if (mKey.Get() == nullptr ||
            RegNotifyChangeKeyValue(mKey.Get(), FALSE, REG_NOTIFY_CHANGE_LAST_SET | kOutlivesThread,
                                    mEvent.native_handle(), TRUE) != ERROR_SUCCESS)
            return;
        mEvent.async_wait([this, &handler](const asio::error_code& failure) {
            if (failure)
                return;
            Begin(handler);
            handler();
        });
    }

private:
    // REG_NOTIFY_THREAD_AGNOSTIC; not in every system's header.
    static constexpr DWORD kOutlivesThread = 0x10000000;

    FontListKey mKey;
    asio::windows::object_handle mEvent;
};

}  // namespace

struct FontWatch::State {
    State(asio::io_context& loop, std::function<void()> onChange)
        : everybodys(loop, HKEY_LOCAL_MACHINE),
          thisUsers(loop, HKEY_CURRENT_USER),
          handler(std::move(onChange)) {}

    ListWatch everybodys;
    ListWatch thisUsers;
    std::function<void()> handler;
    bool isWatching = false;
};

FontWatch::FontWatch(asio::io_context& loop, std::function<void()> handler)
    : mState(std::make_unique<State>(loop, std::move(handler))) {}

FontWatch::~FontWatch() = default;

bool FontWatch::Watch(const std::vector<std::string>&) {
    if (mState->isWatching)
        return false;
    mState->isWatching = true;
    mState->everybodys.Begin(mState->handler);
    mState->thisUsers.Begin(mState->handler);
    return true;
}

}  // namespace platform
