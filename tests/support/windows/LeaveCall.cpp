#include "LeaveCall.h"

#include <windows.h>

#include <csetjmp>
#include <cstdlib>

namespace {

// That of Microsoft's C++ exceptions.
constexpr DWORD kForeignException = 0xE06D7363;

std::jmp_buf landing;

/// The frames between are unwound as where a host catches.
LONG CALLBACK Catch(EXCEPTION_POINTERS* exception) {
    if (exception->ExceptionRecord->ExceptionCode != kForeignException)
        return EXCEPTION_CONTINUE_SEARCH;
    std::longjmp(landing, 1);
}

}  // namespace

bool IsLeft(const std::function<void()>& call) {
    void* const handler = AddVectoredExceptionHandler(1, Catch);
    const bool isLeft = setjmp(landing) != 0;
    if (!isLeft)
        call();
    RemoveVectoredExceptionHandler(handler);
    return isLeft;
}

void LeaveCall() {
    RaiseException(kForeignException, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    std::abort();
}
