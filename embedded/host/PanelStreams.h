// The events that wait for the pages which listen.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <string>

/// Any thread.
class PanelStreams {
public:
    /// A page that listens. Its thread calls Next in turn.
    class Stream {
    public:
        enum class Outcome { kEvent, kNothingYet, kEnded };
        /// Waits for the next event until the time is over. Ended: all streams are, or this page was too slow.
        Outcome Next(std::chrono::milliseconds limit, std::string& event);

    private:
        friend class PanelStreams;
        std::string mPanel;
        std::mutex mMutex;
        std::condition_variable mChange;
        std::deque<std::string> mEvents;
        size_t mNumBytes = 0;
        bool mHasEnded = false;
    };

    /// Null when there are as many as there may be, or all have ended.
    std::shared_ptr<Stream> Add(const std::string& panel);
    void Remove(const std::shared_ptr<Stream>& stream);
    /// To the pages of that name; to all when it is empty.
    void Publish(const std::string& text, const std::string& panel);
    void EndAll();

private:
    std::mutex mMutex;
    std::list<std::shared_ptr<Stream>> mStreams;
    bool mHasEnded = false;
};

/// Each holds a thread.
inline constexpr size_t kMostPanelStreams = 128;
