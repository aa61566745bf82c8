// The way of the agent's reports from the interface library's thread to the main thread: the callback only
// records, the main thread takes what was recorded when the host is idle.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "ErrorCodes.h"
#include "PluginNotifications.h"

/// What waits says how things are now: news of the same thing replaces what waits of it, and stands last. The
/// same thing is: whether one font is active; that one font is missing, or not compliant; for each other
/// name, that name. Images of fonts are joined. So a host that is not idle for long finds a short queue. Any
/// thread.
class NotificationQueue {
public:
    /// How many fonts may wait with news of one kind, about 3 MB: more than a panel would take one by one.
    /// With one more, panels are told to read their data anew: instead of all that waits of activations,
    /// which the data show; for fonts that are missing or not compliant, which they may not show, beside what
    /// waits already.
    static constexpr size_t kMostFonts = 4096;
    /// How many images of fonts may wait, about 18 MB of file names: more than the fonts of a long list.
    /// Those beyond it are asked for again by panels that read their data anew.
    static constexpr size_t kMostImages = 16384;

    /// The queue that the callback fills; lives to process end.
    static NotificationQueue& GetSharedInstance();

    /// Reports are taken from now on, or not any more; what is waiting is dropped with the latter.
    void Open();
    void Close();
    bool IsOpen() const;

    void Post(PluginNotification notification);
    size_t Count() const;
    /// The one that has waited longest; nothing when none waits.
    std::optional<PluginNotification> TakeNext();
    /// Drops what waits under that name.
    void Drop(std::string_view name);

private:
    using Position = std::list<PluginNotification>::iterator;
    static constexpr int64_t kNoFont = -1;
    /// What a notification speaks of.
    struct Subject {
        std::string_view kind;
        int64_t fontID;
    };
    static Subject SubjectOf(const PluginNotification& notification);

    // With the lock held.
    void Add(const Subject& subject, PluginNotification notification);
    void AddBeyondLimit(std::string_view kind);
    void AddImages(PluginNotification notification);
    void Remove(Position position);

    mutable std::mutex mPendingLock;  ///< guards what follows
    std::list<PluginNotification> mPending;
    std::map<std::string_view, std::map<int64_t, Position>> mPositions;  ///< by kind and font
    CFRef<CFMutableDictionaryRef> mImages;  ///< those of the one pending notification of images
    bool mIsOpen = false;
};

/// What the interface library calls, on a thread of its own. `callbackType`: a PluginNotificationType;
/// `pCallbackData`: what that type comes with, valid for the length of the call, may be null. Posts one
/// notification to the shared queue while it is open.
void CoreAgentNotificationCallback(int32_t callbackType, const void* pCallbackData);
