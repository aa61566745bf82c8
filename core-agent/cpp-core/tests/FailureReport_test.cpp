#include "FailureReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

#include "CapturedTrace.h"

using testing::EndsWith;
using testing::StartsWith;

namespace {

constexpr char kLogCategory[] = "FailureReportTest";

struct Checked {
    ErrorCode code = 0;
    int mode = 0;
    const void* mPlugPlug = "";
    std::optional<int> level = std::nullopt;
};

ErrorCode Check(const Checked& checked) {
    const auto& [code, mode, mPlugPlug, level] = checked;
    RETURN_IF_FAILED(code, level.value_or(GLogger::kError));
    RETURN_UNLESS(mode != -1);
    RETURN_IF_NULL(mPlugPlug);
    return 0xFFFFFFFF;
}

}  // namespace

TEST(FailureReport, AFailedCheckIsReportedInOneLineAndReturned) {
    const struct {
        Checked checked;
        ErrorCode code;
        const char *name, *end;
    } cases[] = {{{.code = GIPCClient::kServiceUnavailable},
                  GIPCClient::kServiceUnavailable,
                  "GIPCClient::kServiceUnavailable",
                  "  Expression='code'  Code='50335758'  \n"},
                 {{.code = 12345}, 12345, "Unknown error code", "  Expression='code'  Code='12345'  \n"},
                 {{.mode = -1},
                  CoreErrorCodes::kInvalidParam,
                  "CoreErrorCodes::kInvalidParam",
                  "  Expression='!(mode != -1)'  Code='67108864'  \n"},
                 {{.mPlugPlug = nullptr},
                  CoreErrorCodes::kNullPointer,
                  "CoreErrorCodes::kNullPointer",
                  "  Expression='(mPlugPlug) == nullptr'  Code='83886080'  \n"}};
    for (const auto& [checked, code, name, end] : cases) {
        CapturedTrace trace;
        EXPECT_EQ(Check(checked), code);
        EXPECT_THAT(trace.Text(),
                    StartsWith("[FailureReportTest]\t[Error]\tError='" + std::string(name) +
                               "'  File='core-agent/cpp-core/tests/FailureReport_test.cpp'  Line="));
        EXPECT_THAT(trace.Text(), EndsWith(end));
        EXPECT_EQ(trace.LineCount(), 1u);
    }
    CapturedTrace trace;
    EXPECT_EQ(Check({}), 0xFFFFFFFFu);
    EXPECT_EQ(Check({.code = 1, .level = GLogger::kDebug}), 1u) << "expected in normal use";
    EXPECT_EQ(trace.Text(), "");
}

TEST(FailureReport, ASystemFailureTellsTheSystemsErrorAndPrintsTheCodeSigned) {
    CapturedTrace trace;
    ReportSystemFailure(kLogCategory, {"open(path)", "File.cpp", 7}, 0xFFFFFFFF,
                        platform::SystemError{ENOENT});
    EXPECT_THAT(trace.Text(),
                EndsWith("File='File.cpp'  Line=7  Expression='open(path)'  Window's Error=2: '" +
                         platform::SystemErrorText({ENOENT}) + "'  Code='-1'  \n"));
}
