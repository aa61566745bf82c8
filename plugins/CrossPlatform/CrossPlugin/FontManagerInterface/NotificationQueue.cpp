#include "NotificationQueue.h"

#include <array>

#include "NoDestructor.h"
#include "TarnwickPluginInterface.h"
#include "TraceLog.h"

namespace {

/// What a callback's data is, and under which key it goes into the payload.
enum class DataKind { kNone, kTrue, kFalse, kTruth, kFontID, kPayload, kDictionary };

struct CallbackKind {
    const char* name;
    DataKind data = DataKind::kNone;
    const char* key = nullptr;
};

constexpr const char* kNames[] = {
#define NOTIFICATION_NAME(name) name,
    PLUGIN_NOTIFICATIONS(NOTIFICATION_NAME)
#undef NOTIFICATION_NAME
};
constexpr int32_t kFirstNamedType = kPluginCallback_PanelDataChanged;
constexpr int32_t kFirstNamedName = 2;
constexpr int32_t kTypeCount = kPluginCallback_Enabled + 1;
static_assert(std::size(kNames) == kTypeCount - kFirstNamedType + kFirstNamedName);

CallbackKind KindOf(int32_t callbackType) {
    switch (callbackType) {
        case kPluginCallback_WentOnline:
            return {kPluginNotification_OnlineStateChanged, DataKind::kTrue, kNotificationIsOnlineKey};
        case kPluginCallback_WentOffline:
            return {kPluginNotification_OnlineStateChanged, DataKind::kFalse, kNotificationIsOnlineKey};
        case kPluginCallback_LoggedIn:
            return {kPluginNotification_LoggedInStateChanged, DataKind::kTrue, kNotificationIsLoggedInKey};
        case kPluginCallback_LoggedOut:
            return {kPluginNotification_LoggedInStateChanged, DataKind::kFalse, kNotificationIsLoggedInKey};
        default:
            break;
    }
    const char* name = kNames[callbackType - kFirstNamedType + kFirstNamedName];
    switch (callbackType) {
        case kPluginCallback_FontActivated:
        case kPluginCallback_FontDeactivated:
        case kPluginCallback_FontMissing:
        case kPluginCallback_DesignActivationNonCompliant:
            return {name, DataKind::kFontID, kPluginNotification_FontActivation_Font_ID};
        case kPluginCallback_GoogleWebFontsEnabled:
        case kPluginCallback_Enabled:
            return {name, DataKind::kTruth, kNotificationIsEnabledKey};
        case kPluginCallback_PreviewPNGsRendered:
            return {name, DataKind::kDictionary, kPluginNotification_FontPNGs};
        case kPluginCallback_TaskStarted:
        case kPluginCallback_TaskProgress:
        case kPluginCallback_TaskFinished:
        case kPluginCallback_TaskError:
        case kPluginCallback_BulkReplicationProgress:
        case kPluginCallback_IncrementalReplicationProgress:
        case kPluginCallback_GoogleReplicationProgress:
        case kPluginCallback_FontServerReplicationProgress:
            return {name, DataKind::kPayload};
        default:
            return {name};
    }
}

CFDictionaryRef Dictionary(const void* data) {
    return cf::As<CFDictionaryRef>(static_cast<CFTypeRef>(data));
}

/// The data outlives the call only as a copy.
CFRef<CFMutableDictionaryRef> CopyOf(CFDictionaryRef dictionary) {
    return dictionary != nullptr ? AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, dictionary))
                                 : cf::MutableDictionary();
}

CFRef<CFDictionaryRef> PayloadOf(const CallbackKind& kind, int32_t callbackType, const void* data) {
    if (kind.data == DataKind::kPayload)
        return CopyOf(data != nullptr ? Dictionary(data) : nullptr);
    CFRef<CFMutableDictionaryRef> payload = cf::MutableDictionary();
    if (callbackType == kPluginCallback_LoggedIn && data != nullptr)
        payload = CopyOf(Dictionary(data));  // "serverType"
    if (kind.data == DataKind::kTrue || kind.data == DataKind::kFalse)
        cf::Set(payload, kind.key, kind.data == DataKind::kTrue);
    if (data == nullptr)
        return payload;
    if (kind.data == DataKind::kTruth)
        cf::Set(payload, kind.key, *static_cast<const bool*>(data));
    if (kind.data == DataKind::kFontID)
        cf::Set(payload, kind.key, *static_cast<const uint32_t*>(data));
    if (kind.data == DataKind::kDictionary)
        cf::Set(payload, kind.key, CopyOf(Dictionary(data)));
    return payload;
}

void JoinImages(const void* fontID, const void* image, void* images) {
    CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(images), fontID, image);
}

ErrorCode Post(int32_t callbackType, const void* pCallbackData) {
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    if (!queue.IsOpen())
        LogMessage(0, "WARNING:  CoreAgentInterface::GetFontManager() returned NULL.");
    if (callbackType < 0 || callbackType >= kTypeCount)
        return CoreErrorCodes::kInvalidParam;
    const CallbackKind kind = KindOf(callbackType);
    queue.Post({kind.name, PayloadOf(kind, callbackType, pCallbackData)});
    return CoreErrorCodes::kSuccess;
}

}  // namespace

NotificationQueue& NotificationQueue::GetSharedInstance() {
    static NoDestructor<NotificationQueue> shared;
    return *shared;
}

void NotificationQueue::Open() {
    const std::lock_guard guard(mPendingLock);
    mIsOpen = true;
}

void NotificationQueue::Close() {
    const std::lock_guard guard(mPendingLock);
    mIsOpen = false;
    mPositions.clear();
    mPending.clear();
    mImages.reset();
}

bool NotificationQueue::IsOpen() const {
    const std::lock_guard guard(mPendingLock);
    return mIsOpen;
}

NotificationQueue::Subject NotificationQueue::SubjectOf(const PluginNotification& notification) {
    const auto fontID = cf::GetInt64(notification.payload.get(), kPluginNotification_FontActivation_Font_ID);
    if (!fontID)
        return {notification.name, kNoFont};
    // A font is one or the other, and the later word is true.
    const bool isDeactivation = notification.name == kPluginNotification_FontDeactivated;
    return {isDeactivation ? kPluginNotification_FontActivated : notification.name, *fontID};
}

void NotificationQueue::Post(PluginNotification notification) {
    const Subject subject = SubjectOf(notification);
    const std::lock_guard guard(mPendingLock);
    if (!mIsOpen)
        return;
    if (notification.name == kPluginNotification_PreviewPNGsRendered)
        AddImages(std::move(notification));
    else
        Add(subject, std::move(notification));
}

void NotificationQueue::Add(const Subject& subject, PluginNotification notification) {
    auto& positions = mPositions[subject.kind];
    const auto waiting = positions.find(subject.fontID);
    if (waiting != positions.end()) {
        *waiting->second = std::move(notification);
        mPending.splice(mPending.end(), mPending, waiting->second);
    } else if (positions.size() < kMostFonts) {
        std::list<PluginNotification> added;
        added.push_back(std::move(notification));
        positions.emplace(subject.fontID, added.begin());
        mPending.splice(mPending.end(), added);
    } else {
        AddBeyondLimit(subject.kind);
    }
}

void NotificationQueue::AddBeyondLimit(std::string_view kind) {
    Add({kPluginNotification_PanelDataChanged, kNoFont},
        {kPluginNotification_PanelDataChanged, cf::MutableDictionary()});
    if (kind != kPluginNotification_FontActivated)
        return;
    for (const auto& [fontID, position] : mPositions[kind])
        mPending.erase(position);
    mPositions[kind].clear();
}

void NotificationQueue::AddImages(PluginNotification notification) {
    const CFDictionaryRef images =
        cf::GetDictionary(notification.payload.get(), kPluginNotification_FontPNGs);
    if (!mImages)
        mImages = cf::MutableDictionary();
    const size_t imageCount = static_cast<size_t>(cf::Count(mImages.get()) + cf::Count(images));
    if (cf::Count(mImages.get()) > 0 && imageCount > kMostImages)
        return AddBeyondLimit(notification.name);
    if (images != nullptr)
        CFDictionaryApplyFunction(images, JoinImages, mImages.get());
    const CFRef<CFMutableDictionaryRef> payload = cf::MutableDictionary();
    cf::Set(payload, kPluginNotification_FontPNGs, mImages);
    Add({notification.name, kNoFont}, {notification.name, payload});
}

void NotificationQueue::Remove(Position position) {
    const Subject subject = SubjectOf(*position);
    mPositions[subject.kind].erase(subject.fontID);
    if (position->name == kPluginNotification_PreviewPNGsRendered)
        mImages.reset();
    mPending.erase(position);
}

size_t NotificationQueue::Count() const {
    const std::lock_guard guard(mPendingLock);
    return mPending.size();
}

std::optional<PluginNotification> NotificationQueue::TakeNext() {
    const std::lock_guard guard(mPendingLock);
    if (mPending.empty())
        return std::nullopt;
    PluginNotification next = mPending.front();
    Remove(mPending.begin());
    return next;
}

void NotificationQueue::Drop(std::string_view name) {
    const std::lock_guard guard(mPendingLock);
    for (Position each = mPending.begin(); each != mPending.end();) {
        const Position current = each++;
        if (current->name == name)
            Remove(current);
    }
}

void CoreAgentNotificationCallback(int32_t callbackType, const void* pCallbackData) {
    ErrorCode code = CoreErrorCodes::kUnknownError;
    try {
        code = Post(callbackType, pCallbackData);
    } catch (const std::exception&) {
        code = CoreErrorCodes::kOutOfMemory;
    }
    LogMessage(0, "CoreAgentNotificationCallback(callbackType=%d, pCallbackData=0x%08x) returning %d",
               callbackType, TraceAddress(pCallbackData), static_cast<int>(code));
}
