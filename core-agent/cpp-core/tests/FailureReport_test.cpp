#include "FailureReport.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "CapturedTrace.h"

using testing::EndsWith, testing::StartsWith;

namespace {

constexpr char kLogCategory[] = "FailureReportTest";

ErrorCode Check(ErrorCode code, bool holds, const void* mPlugPlug, int level) {
    RETURN_IF_FAILED(code, level);
    RETURN_UNLESS(holds);
    RETURN_IF_NULL(mPlugPlug);
    return 0xFFFFFFFF;
}

}  // namespace

TEST(FailureReport, AFailedCheckIsReportedInOneLineAndReturned) {
    const std::tuple<ErrorCode, bool, const char*, ErrorCode, std::string> cases[] = {
        {GIPCClient::kServiceUnavailable, true, "", GIPCClient::kServiceUnavailable, "code"},
        {12345, true, "", 12345, "code"},
        {0, false, "", CoreErrorCodes::kInvalidParam, "!(holds)"},
        {0, true, nullptr, CoreErrorCodes::kNullPointer, "(mPlugPlug) == nullptr"}};
    for (const auto& [given, holds, pointer, code, expression] : cases) {
        CapturedTrace trace;
        EXPECT_EQ(Check(given, holds, pointer, GLogger::kError), code);
        EXPECT_THAT(trace.Text(),
                    StartsWith("[FailureReportTest]\t[Error]\tError='" + ErrorCodeToName(code) +
                               "'  File='core-agent/cpp-core/tests/FailureReport_test.cpp'  Line="));
        EXPECT_THAT(trace.Text(),
                    EndsWith("  Expression='" + expression + "'  Code='" + std::to_string(code) + "'  \n"));
        EXPECT_EQ(trace.LineCount(), 1u);
    }
    CapturedTrace trace;
    EXPECT_EQ(Check(0, true, "", GLogger::kError), 0xFFFFFFFFu);
    EXPECT_EQ(Check(1, true, "", GLogger::kDebug), 1u) << "expected in normal use";
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
