#include "PanelStreams.h"

namespace {

/// A page that is so far behind is cut off; it comes back and asks for what it missed.
constexpr size_t kMostBytesWaiting = size_t{4} << 20;

}  // namespace

PanelStreams::Stream::Outcome PanelStreams::Stream::Next(std::chrono::milliseconds limit,
                                                         std::string& event) {
    std::unique_lock lock(mMutex);
    mChange.wait_for(lock, limit, [this] { return mHasEnded || !mEvents.empty(); });
    if (mHasEnded)
        return Outcome::kEnded;
    if (mEvents.empty())
        return Outcome::kNothingYet;
    event = std::move(mEvents.front());
    mEvents.pop_front();
    mNumBytes -= event.size();
    return Outcome::kEvent;
}

std::shared_ptr<PanelStreams::Stream> PanelStreams::Add(const std::string& panel) {
    const std::lock_guard lock(mMutex);
    if (mHasEnded || mStreams.size() >= kMostPanelStreams)
        return nullptr;
    auto stream = std::make_shared<Stream>();
    stream->mPanel = panel;
    mStreams.push_back(stream);
    return stream;
}

void PanelStreams::Remove(const std::shared_ptr<Stream>& stream) {
    const std::lock_guard lock(mMutex);
    mStreams.remove(stream);
}

void PanelStreams::Publish(const std::string& text, const std::string& panel) {
    const std::lock_guard lock(mMutex);
    for (const std::shared_ptr<Stream>& stream : mStreams) {
        if (!panel.empty() && stream->mPanel != panel)
            continue;
        const std::lock_guard streamLock(stream->mMutex);
        if (stream->mNumBytes + text.size() > kMostBytesWaiting) {
            stream->mHasEnded = true;
        } else {
            stream->mNumBytes += text.size();
            stream->mEvents.push_back(text);
        }
        stream->mChange.notify_one();
    }
}

void PanelStreams::EndAll() {
    const std::lock_guard lock(mMutex);
    mHasEnded = true;
    for (const std::shared_ptr<Stream>& stream : mStreams) {
        const std::lock_guard streamLock(stream->mMutex);
        stream->mHasEnded = true;
        stream->mChange.notify_one();
    }
}
