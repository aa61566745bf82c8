#include "LeaveCall.h"

#include <csetjmp>

namespace {

std::jmp_buf landing;

}  // namespace

bool IsLeft(const std::function<void()>& call) {
    if (setjmp(landing) != 0)
        return true;
    call();
    return false;
}

void LeaveCall() {
    std::longjmp(landing, 1);
}
