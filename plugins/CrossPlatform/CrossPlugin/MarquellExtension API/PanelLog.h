// Where the log tells of panels.
#pragma once

#include "FailureReport.h"

/// The category of all that they report.
inline constexpr char kLogCategory[] = "Miscellaneous";
