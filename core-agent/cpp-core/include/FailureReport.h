// Failure reports: the one log line that a failed check leaves behind, where the failure arose.
//
// A source file that checks names its log category once,
//
//     constexpr char kLogCategory[] = "PanelManager";
//
// and its functions, which return an ErrorCode, check with the three forms below. Each, on failure, reports
// and returns the failing code; what has been acquired is let go by its owner. An optional last argument sets
// the level of the line (GLogger::kDebug for a failure that is expected in normal use).
#pragma once

#include "ErrorCodes.h"
#include "GLogger.h"
#include "platform/SystemError.h"

struct CheckLocation {
    const char* expression;  ///< the check's source text
    const char* file;
    int line;
};

/// Writes the report through the shared logger. Any thread.
void ReportFailure(const char* category, const CheckLocation& location, ErrorCode code,
                   int level = GLogger::kError);

/// The same for a failed system call: adds the system's error number and text. Any thread.
void ReportSystemFailure(const char* category, const CheckLocation& location, ErrorCode code,
                         platform::SystemError error, int level = GLogger::kError);

/// Call check: the expression returns an error code; any but success fails with that code.
#define RETURN_IF_FAILED(expression, ...)                                                          \
    do {                                                                                           \
        if (const ErrorCode checkedCode = (expression); checkedCode != CoreErrorCodes::kSuccess) { \
            ReportFailure(kLogCategory, CheckLocation{#expression, __FILE__, __LINE__},            \
                          checkedCode __VA_OPT__(, ) __VA_ARGS__);                                 \
            return checkedCode;                                                                    \
        }                                                                                          \
    } while (false)

/// Condition check: fails with CoreErrorCodes::kInvalidParam when the condition does not hold.
#define RETURN_UNLESS(condition, ...)                                                           \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            ReportFailure(kLogCategory, CheckLocation{"!(" #condition ")", __FILE__, __LINE__}, \
                          CoreErrorCodes::kInvalidParam __VA_OPT__(, ) __VA_ARGS__);            \
            return CoreErrorCodes::kInvalidParam;                                               \
        }                                                                                       \
    } while (false)

/// Null check: fails with CoreErrorCodes::kNullPointer when the pointer is null.
#define RETURN_IF_NULL(pointer, ...)                                                                    \
    do {                                                                                                \
        if ((pointer) == nullptr) {                                                                     \
            ReportFailure(kLogCategory, CheckLocation{"(" #pointer ") == nullptr", __FILE__, __LINE__}, \
                          CoreErrorCodes::kNullPointer __VA_OPT__(, ) __VA_ARGS__);                     \
            return CoreErrorCodes::kNullPointer;                                                        \
        }                                                                                               \
    } while (false)
