#include <thread>

#include "TestProcess.h"

bool Eventually(const std::function<bool()>& condition) {
    constexpr std::chrono::seconds kPatience{60};
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
