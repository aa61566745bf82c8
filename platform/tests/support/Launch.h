// Programs that tests start as the product starts them.
#pragma once

#include <gtest/gtest.h>

#include "TestFiles.h"
#include "platform/Processes.h"

inline platform::Processes& Processes() {
    return platform::Current<platform::Processes>();
}

/// Starts the program with the words, which are quoted as they need to be: the test's own, which does as the
/// first one says, or another.
inline std::unique_ptr<platform::ChildProcess> Launch(const std::string& words,
                                                      const std::string& program = BuiltFile(CHILD_PROGRAM)) {
    platform::SystemError error;
    auto child = Processes().Launch(program, "\"" + program + "\" " + words, error);
    EXPECT_FALSE(error) << platform::SystemErrorText(error);
    return child;
}

inline std::optional<int> WaitForExit(platform::ChildProcess& child) {
    child.WaitUntilIdle(std::chrono::seconds(10));
    return child.ExitStatus();
}
