// The tests of what has windows. They need a screen; without one the program ends with the status that counts
// as skipped.
#include <gtest/gtest.h>

#include <cstdio>

#include "platform/NativeDialogs.h"

namespace {
constexpr int kSkipped = 77;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!platform::SystemDefault<platform::NativeDialogs>().IsAvailable()) {
        std::puts("SKIPPED: there is no screen for windows");
        return kSkipped;
    }
    return RUN_ALL_TESTS();
}
