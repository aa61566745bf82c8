// Carries the agent's reports from the interface library's thread to the main thread. The callback only
// records; the main thread takes the records when the host is idle.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "ErrorCodes.h"
#include "PluginNotifications.h"

/// A report replaces an earlier one on the same subject and takes the last place, so a host that is not idle
/// for long finds a short queue. Subjects are: whether a font is active; that a font is missing; that a font
/// is not compliant; and each other name by itself. Images of fonts are joined. Any thread.
class NotificationQueue {
public:
    /// The number of fonts that may wait on one subject, about 3 MB: more than a panel would take one by one.
    /// Beyond it panels are told to read their data again. That replaces all waiting activations, which the
    /// data show; reports of fonts that are missing or not compliant stay, since the data may not show them.
    static constexpr size_t kMostFonts = 4096;
    /// The number of images of fonts that may wait, about 18 MB of file names: more than a long list of fonts
    /// has. Panels ask again for those beyond it when they read their data again.
    static constexpr size_t kMostImages = 16384;

    /// The queue that the callback fills; lives to process end.
    static NotificationQueue& GetSharedInstance();

    /// From now on reports are taken.
    void Open();
    /// From now on they are not, and those that wait are dropped.
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
    /// What a notification is about.
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
