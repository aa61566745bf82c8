// Programs that tests start as the product starts them.
#pragma once

#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "TestFiles.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

inline platform::Processes& Processes() {
    return platform::Current<platform::Processes>();
}

/// The test's own program under another name; its path.
inline std::string CopyOfChild(const TemporaryFolder& folder, const std::string& name) {
    const std::string program = folder / platform::ProgramFileName(name);
    EXPECT_FALSE(platform::CopyToNewFile(BuiltFile(CHILD_PROGRAM), program));
    std::filesystem::permissions(platform::Utf8Path(program), std::filesystem::perms::owner_all);
    return program;
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
