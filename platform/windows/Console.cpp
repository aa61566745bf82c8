#include "platform/Console.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>

namespace platform {
namespace {

/// Set once the user, or the system, wants the program to end.
HANDLE InterruptEvent() {
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

std::atomic<int> interruptSignal{0};

BOOL WINAPI NoteInterrupt(DWORD kind) {
    constexpr int kHangUp = 1;
    constexpr int kInterrupt = 2;
    constexpr int kTerminate = 15;
    if (kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT)
        interruptSignal = kInterrupt;
    else
        interruptSignal = kind == CTRL_CLOSE_EVENT ? kHangUp : kTerminate;
    SetEvent(InterruptEvent());
    // When a console closes or a session ends, the process ends with this call: the program, on its own
    // thread, gets the time that the system allows.
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

/// Takes what the user typed up to and with Enter out of the console's events.
bool TakeEnter(HANDLE console) {
    std::array<INPUT_RECORD, 64> events;
    DWORD count = 0;
    while (GetNumberOfConsoleInputEvents(console, &count) && count > 0 &&
           ReadConsoleInputW(console, events.data(), 1, &count) && count > 0) {
        const KEY_EVENT_RECORD& key = events[0].Event.KeyEvent;
        if (events[0].EventType == KEY_EVENT && key.bKeyDown && key.wVirtualKeyCode == VK_RETURN)
            return true;
    }
    return false;
}

bool CanReadInput() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(input, &mode))
        return TakeEnter(input);
    DWORD available = 0;
    if (GetFileType(input) == FILE_TYPE_PIPE)
        return !PeekNamedPipe(input, nullptr, 0, nullptr, &available, nullptr) || available > 0;
    return true;  // a file, or nothing at all: its end can be read
}

}  // namespace

void CatchInterrupts() {
    InterruptEvent();
    SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool WasInterrupted() {
    return WaitForSingleObject(InterruptEvent(), 0) == WAIT_OBJECT_0;
}

int InterruptStatus() {
    return WasInterrupted() ? 128 + interruptSignal : 0;
}

bool WaitForUser(std::optional<std::chrono::milliseconds> limit, bool watchInput) {
    using std::chrono::steady_clock;
    // Pipes cannot be waited for, so they are looked at.
    constexpr std::chrono::milliseconds kStep{20};
    const auto deadline = limit ? steady_clock::now() + *limit : steady_clock::time_point::max();
    while (!WasInterrupted()) {
        if (watchInput && CanReadInput())
            return true;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
        if (left.count() <= 0)
            break;
        WaitForSingleObject(InterruptEvent(), static_cast<DWORD>(std::min(left, kStep).count()));
    }
    return false;
}

}  // namespace platform
