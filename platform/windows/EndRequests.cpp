#include "platform/EndRequests.h"

#include <asio/windows/object_handle.hpp>
#include <future>
#include <thread>

#include "EndEvent.h"
#include "SecurityAttributes.h"

namespace platform {
namespace {

constexpr wchar_t kWindowClass[] = L"PluginCoreEndRequests";

HANDLE MakeEndEvent() {
    PrivateToUser rights;
    HANDLE event =
        CreateEventW(rights.Attributes(), TRUE, FALSE, EndEventName(GetCurrentProcessId()).c_str());
    // One that was there before may be somebody else's.
    if (event != nullptr && GetLastError() != ERROR_ALREADY_EXISTS)
        return event;
    if (event != nullptr)
        CloseHandle(event);
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

/// Set once the process is to end.
HANDLE EndEvent() {
    static const HANDLE event = MakeEndEvent();
    return event;
}

/// Set once nobody serves the requests any more.
HANDLE ServedEvent() {
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

/// Where the process ends when the caller returns, the loop's thread gets the time that the system allows.
void EndInOrder() {
    SetEvent(EndEvent());
    WaitForSingleObject(ServedEvent(), INFINITE);
}

BOOL WINAPI OnConsoleEvent(DWORD kind) {
    if (kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT)
        SetEvent(EndEvent());
    else
        EndInOrder();
    return TRUE;
}

LRESULT CALLBACK OnWindowMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_ENDSESSION && first != FALSE)
        EndInOrder();
    return DefWindowProcW(window, message, first, second);
}

/// The end of the session is told to windows alone, once a program has to do with fonts or windows: one that
/// is never shown. Where windows cannot be had, nobody tells, and the session's end is like any other death.
void WatchSession(std::promise<DWORD> threadID) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = OnWindowMessage;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);
    CreateWindowExW(0, kWindowClass, nullptr, WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                    windowClass.hInstance, nullptr);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // makes the queue that WM_QUIT is posted to
    threadID.set_value(GetCurrentThreadId());
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    UnregisterClassW(kWindowClass, windowClass.hInstance);
}

/// A handle of its own, since whoever waits closes it.
HANDLE Duplicate(HANDLE event) {
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), event, GetCurrentProcess(), &copy, SYNCHRONIZE, FALSE, 0);
    return copy;
}

}  // namespace

struct EndRequests::State {
    State(asio::io_context& loop, std::function<void()> handler) : event(loop, Duplicate(EndEvent())) {
        SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
        event.async_wait([handler = std::move(handler)](const asio::error_code& failure) {
            if (!failure)
                handler();
        });
        std::promise<DWORD> started;
        std::future<DWORD> id = started.get_future();
        sessionWatch = std::thread(WatchSession, std::move(started));
        sessionWatchID = id.get();
    }
    ~State() {
        SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
        SetEvent(ServedEvent());
        PostThreadMessageW(sessionWatchID, WM_QUIT, 0, 0);
        sessionWatch.join();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    asio::windows::object_handle event;
    std::thread sessionWatch;
    DWORD sessionWatchID = 0;
};

EndRequests::EndRequests(asio::io_context& loop, std::function<void()> handler)
    : mState(std::make_unique<State>(loop, std::move(handler))) {}

EndRequests::~EndRequests() = default;

}  // namespace platform
