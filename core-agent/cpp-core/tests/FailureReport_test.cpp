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
    constexpr char kBegin[] =
        "[FailureReportTest]\t[Error]\tError='%s'  "
        "File='core-agent/cpp-core/tests/FailureReport_test.cpp'  Line=";
    const std::tuple<Checked, ErrorCode, const char*, const char*> cases[] = {
        {{.code = GIPCClient::kServiceUnavailable},
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
    CapturedTrace trace;
    for (const auto& [checked, code, name, end] : cases) {
        trace.Clear();
        EXPECT_EQ(Check(checked), code);
        EXPECT_THAT(trace.Text(),
                    StartsWith(std::string(kBegin).replace(std::string(kBegin).find("%s"), 2, name)));
        EXPECT_THAT(trace.Text(), EndsWith(end));
        EXPECT_EQ(trace.LineCount(), 1u);
    }
    trace.Clear();
    EXPECT_EQ(Check({}), 0xFFFFFFFFu);
    EXPECT_EQ(Check({.code = 1, .level = GLogger::kDebug}), 1u) << "expected in normal use";
    EXPECT_EQ(trace.Text(), "");
}

TEST(FailureReport, ASystemFailureTellsTheSystemsErrorAndPrintsTheCodeSigned) {
    CapturedTrace trace;
    ReportSystemFailure(kLogCategory, {"open(path)", "File.cpp", 7}, 0xFFFFFFFF,
                        platform::SystemError{ENOENT});
    const std::string text = platform::SystemErrorText({ENOENT});
    EXPECT_THAT(trace.Text(),
                EndsWith("Error='Unknown error code'  File='File.cpp'  Line=7  Expression='open(path)'  "
                         "Window's Error=2: '" +
                         text + "'  Code='-1'  \n"));
    EXPECT_EQ(platform::SystemErrorText({12345678}), "FormatMessage Failed");
    EXPECT_TRUE(text.size() > 4 && text != "FormatMessage Failed" && text != "Null message");
}
