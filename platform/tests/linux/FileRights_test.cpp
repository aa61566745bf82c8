// What files are on a POSIX system: rights, links, pipes, limits.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "platform/Autostart.h"
#include "platform/FileLock.h"
#include "platform/FileTrust.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/PrivateFolder.h"

namespace fs = std::filesystem;

constexpr fs::perms kFile = fs::perms::owner_read | fs::perms::owner_write;

TEST(FileRights, WhatIsMadeAndWhatIsAddedToIsClosedToOthers) {
    const TemporaryFolder folder;
    const mode_t saved = umask(0);
    std::string temporary;
    platform::AppendedFile log;
    platform::FileLock lock;
    EXPECT_FALSE(platform::WriteWholeFile(folder / "file", ""));
    EXPECT_FALSE(platform::WriteTemporaryFile(folder / ".", "a", "b", "", temporary));
    EXPECT_FALSE(log.Open(folder / "log"));
    EXPECT_FALSE(lock.Acquire(folder / "lock", false));
    EXPECT_FALSE(platform::MakeFolders(folder / "a/b", true));
    umask(saved);
    for (const std::string& path : {folder / "file", temporary, folder / "log", folder / "lock"})
        EXPECT_EQ(fs::status(path).permissions(), kFile) << path;
    for (const char* name : {"a", "a/b"})
        EXPECT_EQ(fs::status(folder / name).permissions(), fs::perms::owner_all);
    fs::permissions(folder / "log", fs::perms::all);
    EXPECT_FALSE(log.Open(folder / "log"));
    EXPECT_EQ(fs::status(folder / "log").permissions(), kFile);
}

TEST(FileRights, LinksPipesAndDevicesAreNeitherFilesNorLogsNorLocksAndNothingBlocks) {
    const TemporaryFolder folder;
    platform::ReadOnlyFile file;
    folder.Write("target", "precious");
    fs::create_symlink("target", folder / "link");
    fs::create_symlink("missing", folder / "dangling");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* name : {"link", "dangling", "pipe"}) {
        EXPECT_TRUE(platform::AppendedFile().Open(folder / name)) << name;
        EXPECT_TRUE(platform::FileLock().Acquire(folder / name, false)) << name;
        EXPECT_FALSE(platform::FileLock::IsHeldByAnyone(folder / name)) << name;
    }
    EXPECT_FALSE(fs::exists(folder / "missing"));
    EXPECT_EQ(fs::file_size(folder / "target"), 8u);
    for (const std::string& path : {folder / "pipe", folder / ".", std::string("/dev/null")})
        EXPECT_TRUE(file.Open(path)) << path;
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(platform::IsExistingFile(folder / "pipe"));
}

TEST(FileRights, FoldersThatOthersMayWriteToAreClosedAtAnyDepthAndNoneBehindALink) {
    const TemporaryFolder folder, elsewhere;
    fs::create_directories(folder / "a/b");
    fs::create_directory(folder / "c");
    fs::create_directory_symlink(elsewhere.Path(), folder / "link");
    for (const fs::path& open : {fs::path(folder / "a/b"), fs::path(folder / "c"), elsewhere.Path()})
        fs::permissions(open, fs::perms::all);
    EXPECT_EQ(platform::CloseFoldersToOthers(folder / "."), 2);
    EXPECT_EQ(platform::CloseFoldersToOthers(folder / "."), 0);
    EXPECT_EQ(fs::status(folder / "a/b").permissions() & fs::perms::others_write, fs::perms::none);
    EXPECT_EQ(fs::status(elsewhere.Path()).permissions(), fs::perms::all);
    fs::permissions(folder / "c", fs::perms::all);
    for (const char* made : {"c", "c/d/e"})
        EXPECT_FALSE(platform::MakePrivateFolder(folder / made)) << made;
    for (const char* made : {"c", "c/d", "c/d/e"})
        EXPECT_EQ(fs::status(folder / made).permissions(), fs::perms::owner_all);
    EXPECT_TRUE(platform::MakePrivateFolder(folder / "link"));
}

TEST(FileRights, ACopyThatIsCutOffNeverHasItsName) {
    const TemporaryFolder folder;
    const std::string source = folder.Write("source", std::string(3 << 20, 'x'));
    const auto copyWithRoomForHalf = [&](auto onTooLarge) {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit{1 << 20, 1 << 20};
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGXFSZ, onTooLarge);
            _exit(platform::CopyToNewFile(source, folder / "copy") ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    };
    EXPECT_EQ(WEXITSTATUS(copyWithRoomForHalf(SIG_IGN)), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
    EXPECT_EQ(WTERMSIG(copyWithRoomForHalf(SIG_DFL)), SIGXFSZ);  // killed in the middle
    EXPECT_FALSE(fs::exists(folder / "copy"));
    EXPECT_FALSE(platform::CopyToNewFile(source, folder / "copy"));
}

TEST(FileRights, AFileThatThereIsNoRoomForStaysAsItWas) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    const auto writeWithoutRoom = [&] {
        const rlimit limit{1 << 20, 1 << 20};
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
        _exit(platform::WriteWholeFile(path, std::string(3 << 20, 'x')) ? 1 : 0);
    };
    EXPECT_EXIT(writeWithoutRoom(), testing::ExitedWithCode(1), "");
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
}

TEST(KnownFolders, AreFullPathsOfTheEnvironmentWithoutSlashesAtTheEnd) {
    const auto folder = [](const char* value) {
        const ScopedVariable configuration("XDG_CONFIG_HOME", value);
        return platform::Current<platform::Folders>().PathOf(platform::KnownFolder::kConfiguration);
    };
    EXPECT_EQ(folder("/a b//"), "/a b");
    EXPECT_EQ(folder("/a"), "/a");
    EXPECT_EQ(folder("/"), "/");
    EXPECT_EQ(folder("a/b"), folder("")) << "as if it were not set";
}

TEST(FileTrust, WhatOthersCouldHavePutThereIsNotTrusted) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("a/b/file", "content");
    const auto allow = [&](const std::string& path, fs::perms rights) { fs::permissions(path, rights); };
    const auto why = [&](const std::string& path, platform::FileUse use) {
        std::string fault;
        EXPECT_EQ(platform::JudgedFile().Open(path, use, fault).IsNotFound(), !fs::exists(path));
        return fault;
    };
    using platform::FileUse;
    allow(file, kFile);
    for (const char* each : {"a", "a/b"})
        allow(folder / each, fs::perms::owner_all);
    EXPECT_EQ(why(file, FileUse::kContent), "");
    for (const std::string& path : {file, folder / "a/b", folder / "a"}) {
        allow(path, fs::perms::owner_all | fs::perms::others_write);
        EXPECT_EQ(why(file, FileUse::kContent), path + " can be written to by others");
        allow(path, fs::perms::owner_all);
    }
    allow(folder / "a/b", fs::perms::all | fs::perms::sticky_bit);
    EXPECT_EQ(why(file, FileUse::kContent), "") << "others make files there, and take none away";
    EXPECT_EQ(why(file, FileUse::kProgram), folder / "a/b" + " can be written to by others")
        << "libraries, say";
    allow(folder / "a/b", fs::perms::owner_all);
    fs::create_symlink(folder / "a", folder / "link");
    EXPECT_EQ(why(folder / "link/b/file", FileUse::kProgram), "");
    EXPECT_EQ(why(folder / "none", FileUse::kContent), folder / "none" + " cannot be looked at");
    platform::JudgedFile judged;
    std::string text;
    ASSERT_FALSE(judged.Open(folder / "link/b/file", FileUse::kContent, text));
    fs::rename(folder / "a", folder / "taken");
    folder.Write("a/b/file", "planted");
    EXPECT_FALSE(judged.Read(text, 7));
    EXPECT_EQ(text, "content") << "of what was judged, whatever stands there now";
    EXPECT_EQ(judged.Path(), file);
    EXPECT_TRUE(judged.Read(text, 6));
    if (geteuid() != 0)
        return;
    ASSERT_EQ(chown((folder / "a/b").c_str(), 4711, 0), 0);
    EXPECT_EQ(why(file, FileUse::kContent), folder / "a/b" + " belongs to somebody else");
}

TEST(Autostart, TheEntryStartsAProgramOfAnyPathAndGoesAgain) {
    const TemporaryFolder folder;
    const ScopedVariable configuration("XDG_CONFIG_HOME", folder / "config");
    EXPECT_FALSE(platform::HasAutostart("Test"));
    ASSERT_FALSE(platform::SetAutostart("Test", R"(/opt/a "b" $c`\d 100%/Pell)", "serve"));
    EXPECT_TRUE(platform::HasAutostart("Test"));
    const std::string entry = ContentOf(folder / "config/autostart/Test.desktop");
    EXPECT_NE(entry.find("\nExec="
                         R"("/opt/a \\"b\\" \\$c\\`\\\\d 100%%/Pell" serve)"
                         "\n"),
              std::string::npos)
        << entry;
    EXPECT_FALSE(platform::ClearAutostart("Test"));
    EXPECT_FALSE(platform::ClearAutostart("Test"));
    EXPECT_FALSE(platform::HasAutostart("Test"));
}
