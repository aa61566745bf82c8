#include "NotificationQueue.h"

#include <iterator>

#include "NoDestructor.h"
#include "TraceLog.h"

namespace {

CFDictionaryRef Dictionary(const void* data) {
    return cf::As<CFDictionaryRef>(static_cast<CFTypeRef>(data));
}

/// The data outlives the call only as a copy.
CFRef<CFMutableDictionaryRef> CopyOf(CFDictionaryRef dictionary) {
    return dictionary != nullptr ? AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, dictionary))
                                 : cf::MutableDictionary();
}

CFRef<CFDictionaryRef> PayloadOf(const ReportKind& kind, const void* data) {
    const bool isPayloadItself = kind.data == ReportData::kDictionary && (kind.key == nullptr || kind.state);
    CFRef<CFMutableDictionaryRef> payload =
        CopyOf(isPayloadItself && data != nullptr ? Dictionary(data) : nullptr);
    if (kind.state)
        cf::Set(payload, kind.key, *kind.state);
    if (data == nullptr || isPayloadItself)
        return payload;
    if (kind.data == ReportData::kTruth)
        cf::Set(payload, kind.key, *static_cast<const bool*>(data));
    if (kind.data == ReportData::kFontID)
        cf::Set(payload, kind.key, *static_cast<const uint32_t*>(data));
    if (kind.data == ReportData::kDictionary)
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
    if (callbackType < 0 || static_cast<size_t>(callbackType) >= std::size(kReportKinds))
        return CoreErrorCodes::kInvalidParam;
    const ReportKind& kind = kReportKinds[callbackType];
    queue.Post({kind.name, PayloadOf(kind, pCallbackData)});
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
        AddImages(notification);
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

void NotificationQueue::AddImages(const PluginNotification& notification) {
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
