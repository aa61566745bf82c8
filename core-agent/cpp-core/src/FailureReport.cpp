#include "FailureReport.h"

void ReportFailure(const char* category, const CheckLocation& location, ErrorCode code, int level) {
    GLogger::GetSharedInstance().Log(
        category, level, "Error='%s'  File='%s'  Line=%d  Expression='%s'  Code='%u'  ",
        ErrorCodeToName(code).c_str(), location.file, location.line, location.expression, code);
}

void ReportSystemFailure(const char* category, const CheckLocation& location, ErrorCode code,
                         platform::SystemError error, int level) {
    GLogger::GetSharedInstance().Log(
        category, level,
        "Error='%s'  File='%s'  Line=%d  Expression='%s'  Window's Error=%d: '%s'  Code='%d'  ",
        ErrorCodeToName(code).c_str(), location.file, location.line, location.expression, error.code,
        platform::SystemErrorText(error).c_str(), static_cast<int>(code));
}
