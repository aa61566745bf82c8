#include "preferences/PreferenceFile.h"

#include <chrono>
#include <optional>
#include <thread>

#include "GLogger.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

constexpr char kLogCategory[] = "Preferences";
constexpr char kFileName[] = "Preferences.json";

// Some hundred times what thirty plug-ins need; each read goes through the whole file.
constexpr uint64_t kLargestFile = uint64_t{1024} * 1024;
// Plug-in, host application, key, and a few levels of structure in a value.
constexpr int kDeepestNesting = 16;
constexpr int kMostDamagedFiles = 1000;
// Another process holds the lock for a few milliseconds; one that hangs must not hang this host as well.
constexpr auto kLongestWaitForLock = std::chrono::seconds(5);
constexpr auto kPauseBetweenAttempts = std::chrono::milliseconds(2);

std::optional<nlohmann::json> ParsePreferences(const std::string& bytes) {
    bool isTooDeep = false;
    const auto limitNesting = [&isTooDeep](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        isTooDeep = isTooDeep || depth > kDeepestNesting;
        return !isTooDeep;
    };
    nlohmann::json parsed = nlohmann::json::parse(bytes, limitNesting, false);
    if (isTooDeep || !parsed.is_object())
        return std::nullopt;
    return parsed;
}

/// Under a name that is swept like those of abandoned writes.
platform::SystemError TryToMakeFileIn(const std::string& folder) {
    std::string probe;
    const auto error =
        platform::WriteTemporaryFile(folder, std::string(kFileName) + ".writing-", "", "", probe);
    return error ? error : platform::RemoveFile(probe);
}

}  // namespace

PreferenceFile::PreferenceFile(std::string folder)
    : mFolder(std::move(folder)),
      mPath(mFolder + platform::kPathSeparator + kFileName),
      mContent(std::make_shared<nlohmann::json>(nlohmann::json::object())) {}

PreferenceFile::Content PreferenceFile::Read() {
    const std::lock_guard guard(mContentLock);
    if (mFolder.empty() || Refresh() != State::kDamaged)
        return mContent;
    // While another process holds the lock it sets the file aside, or replaces it; the next call will see.
    platform::FileLock lock;
    if (const platform::SystemError error = lock.Acquire(mPath + ".lock", false))
        ReportOnce("'" + mPath + "' is damaged: " + platform::SystemErrorText(error));
    else
        SetAsideWhenDamaged();
    return mContent;
}

bool PreferenceFile::Change(const std::function<void(nlohmann::json&)>& edit) {
    const std::lock_guard guard(mContentLock);
    platform::FileLock lock;
    if (mFolder.empty() || !AcquireLock(lock))
        return false;
    SweepOnce();
    const State state = SetAsideWhenDamaged();
    if (state != State::kGood && state != State::kMissing)
        return false;
    nlohmann::json changed = *mContent;
    edit(changed);
    return changed == *mContent || Write(std::move(changed));
}

bool PreferenceFile::IsUsable() {
    const std::lock_guard guard(mContentLock);
    if (mFolder.empty())
        return false;
    if (const platform::SystemError error = platform::MakeFolders(mFolder, true)) {
        ReportOnce(platform::WriteFailureText(mFolder, error));
        return false;
    }
    if (const platform::SystemError error = TryToMakeFileIn(mFolder)) {
        ReportOnce(platform::WriteFailureText(mPath, error));
        return false;
    }
    return Refresh() != State::kUnreadable;
}

// Reading a few kilobytes costs microseconds, and comparing the bytes cannot miss a change as comparing times
// and sizes can; only parsing is worth saving.
PreferenceFile::State PreferenceFile::Refresh() {
    std::string bytes;
    const platform::SystemError error = platform::ReadWholeFile(mPath, bytes, kLargestFile);
    if (!error)
        return Adopt(std::move(bytes));
    uint64_t size = 0;
    if (!platform::FileSize(mPath, size) && size > kLargestFile)
        return Adopt({});
    if (!error.IsNotFound()) {
        ReportOnce("cannot read '" + mPath + "': " + platform::SystemErrorText(error));
        return State::kUnreadable;
    }
    mBytes.clear();
    mContent = std::make_shared<nlohmann::json>(nlohmann::json::object());
    return State::kMissing;
}

PreferenceFile::State PreferenceFile::Adopt(std::string bytes) {
    if (!mBytes.empty() && bytes == mBytes)
        return State::kGood;
    std::optional<nlohmann::json> parsed = ParsePreferences(bytes);
    mContent = std::make_shared<nlohmann::json>(parsed ? std::move(*parsed) : nlohmann::json::object());
    if (!parsed) {
        mBytes.clear();
        return State::kDamaged;
    }
    mBytes = std::move(bytes);
    mReportedFailure.clear();
    return State::kGood;
}

// With the lock held, since a second process could set aside the good file that the first has just written.
PreferenceFile::State PreferenceFile::SetAsideWhenDamaged() {
    const State state = Refresh();
    return state == State::kDamaged && SetAside() ? State::kMissing : state;
}

bool PreferenceFile::SetAside() {
    for (int number = 1; number <= kMostDamagedFiles; ++number) {
        const std::string aside = mPath + ".damaged-" + std::to_string(number);
        std::error_code failure;
        if (std::filesystem::exists(std::filesystem::symlink_status(platform::Utf8Path(aside), failure)))
            continue;
        std::filesystem::rename(platform::Utf8Path(mPath), platform::Utf8Path(aside), failure);
        ReportOnce("'" + mPath + "' is not a preference file" +
                   (failure ? "; " + platform::WriteFailureText(aside, {failure.value()})
                            : " and was set aside as '" + aside + "'"));
        return !failure;
    }
    ReportOnce("'" + mPath + "' is not a preference file; too many like it are set aside already");
    return false;
}

bool PreferenceFile::AcquireLock(platform::FileLock& lock) {
    platform::SystemError error = platform::MakeFolders(mFolder, true);
    const auto limit = std::chrono::steady_clock::now() + kLongestWaitForLock;
    while (!error) {
        error = lock.Acquire(mPath + ".lock", false);
        if (!error)
            return true;
        if (!error.IsHeldByOther() || std::chrono::steady_clock::now() > limit)
            break;
        error = {};
        std::this_thread::sleep_for(kPauseBetweenAttempts);
    }
    ReportOnce(error.IsHeldByOther() ? mPath + " is in use by a program that does not let go of it"
                                     : platform::WriteFailureText(mPath, error));
    return false;
}

// With the lock held, when every temporary file is that of a writer that was killed.
void PreferenceFile::SweepOnce() {
    if (!mAreAbandonedWritesGone)
        platform::RemoveAbandonedWrites(mPath);
    mAreAbandonedWritesGone = true;
}

bool PreferenceFile::Write(nlohmann::json content) {
    std::string bytes = content.dump(2) + "\n";
    if (bytes.size() > kLargestFile) {
        ReportOnce("'" + mPath + "' would become too large");
        return false;
    }
    if (const platform::SystemError error = platform::WriteWholeFile(mPath, bytes)) {
        ReportOnce(platform::WriteFailureText(mPath, error));
        return false;
    }
    mBytes = std::move(bytes);
    mContent = std::make_shared<nlohmann::json>(std::move(content));
    mReportedFailure.clear();
    return true;
}

void PreferenceFile::ReportOnce(const std::string& failure) {
    if (failure == mReportedFailure)
        return;
    mReportedFailure = failure;
    GLogger::GetSharedInstance().Log(kLogCategory, GLogger::kWarning, "%s", failure.c_str());
}
