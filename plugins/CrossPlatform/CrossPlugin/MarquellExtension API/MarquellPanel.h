// One panel that the plug-in shows inside the host.
#pragma once

#include <cstdint>

#include "ErrorCodes.h"

/// Main thread.
class MarquellPanel {
public:
    virtual ~MarquellPanel() = default;

    /// Serves the panel's socket, if it has one; closes what it listens on when told to.
    virtual ErrorCode SelectSocket(bool closeListeningSocket) = 0;
    /// The port that the panel listens on, 0 for none.
    virtual uint32_t GetSocketPort() = 0;
    /// The plug-in became available, or is not any more.
    virtual ErrorCode SetEnabled(bool enabled) = 0;
    /// Delivers what was pushed since the last call.
    virtual ErrorCode PopNotifications() = 0;
};
