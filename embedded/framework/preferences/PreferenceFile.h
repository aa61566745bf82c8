// The file that holds the preferences of all plug-ins and host applications of the user, shared by all
// processes: one JSON object, written as a whole, changed under a lock between processes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/FileLock.h"

class PreferenceFile {
public:
    using Content = std::shared_ptr<const nlohmann::json>;

    /// `folder`, UTF-8, is made when something is first written. Empty when the system has no place for it;
    /// then nothing can be stored.
    explicit PreferenceFile(std::string folder);

    /// What the file holds now: always a JSON object. Empty when there is no file; what was read last when
    /// the file cannot be read. A file that is not one of preferences is set aside first. Never waits for another
    /// process. Any thread.
    Content Read();

    /// Applies `edit` to what the file holds now and writes the result, alone among all processes. False when
    /// that did not succeed; the file is as it was then. Any thread.
    bool Change(const std::function<void(nlohmann::json&)>& edit);

    /// Whether the folder is there, or can be made, and files can be made in it. Any thread.
    bool IsUsable();

private:
    enum class State { kGood, kMissing, kDamaged, kUnreadable };

    State Refresh();
    State Adopt(std::string bytes);
    State SetAsideWhenDamaged();
    bool SetAside();
    bool AcquireLock(platform::FileLock& lock);
    void SweepOnce();
    bool Write(nlohmann::json content);
    void ReportOnce(const std::string& failure);

    const std::string mFolder;
    const std::string mPath;
    std::mutex mContentLock;  ///< guards what follows
    std::string mBytes;       ///< the file as read last; mContent is what they mean
    Content mContent;
    bool mAreAbandonedWritesGone = false;
    std::string mReportedFailure;  ///< so that a failure that lasts leaves one log line, not one per call
};
