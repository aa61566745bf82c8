// The limits of what panels take, with the reason for each. Those of reports that wait stand in
// NotificationQueue.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace panel_limits {

/// The host's event service may come up after the plug-in. It is tried so often, and rests in between: first
/// for so many milliseconds, then twice as long each time, up to so many doublings; about a minute in all.
constexpr int32_t kMostAttempts = 12;
constexpr uint32_t kFirstWait = 500;
constexpr int32_t kMostDoublings = 4;

/// A panel and a host that deliver at once can keep each other busy for ever, on the thread that the user
/// waits for. Panels send a handful of requests for one reply.
constexpr size_t kMostRequestsInTurn = 1000;

/// Files of font lists that are kept for panels which have not let go of them.
constexpr size_t kMostFontListFiles = 100;

/// Fonts that are rendered at once: each takes a few milliseconds of the host's thread when it was never made
/// before.
constexpr size_t kFontsRenderedAtOnce = 3;
/// What the host does not notice; no further fonts are rendered after it until it is idle again.
constexpr uint32_t kRenderingMilliseconds = 50;

}  // namespace panel_limits
