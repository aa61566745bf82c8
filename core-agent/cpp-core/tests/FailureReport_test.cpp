#include "FailureReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "CapturedTrace.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr char kLogCategory[] = "FailureReportTest";

ErrorCode Answer(ErrorCode code) {
    return code;
}

ErrorCode CheckCall(ErrorCode code) {
    RETURN_IF_FAILED(Answer(code));
    return 0xFFFFFFFF;
}

ErrorCode CheckCondition(int mode) {
    RETURN_UNLESS(mode != -1);
    return CoreErrorCodes::kSuccess;
}

ErrorCode CheckPointer(const void* mPlugPlug) {
    RETURN_IF_NULL(mPlugPlug);
    return CoreErrorCodes::kSuccess;
}

ErrorCode CheckExpected(ErrorCode code) {
    RETURN_IF_FAILED(Answer(code), GLogger::kDebug);
    return CoreErrorCodes::kSuccess;
}

}  // namespace

TEST(FailureReport, AFailedCallIsReportedInOneLineAndReturned) {
    CapturedTrace trace;
    EXPECT_EQ(CheckCall(GIPCClient::kServiceUnavailable), GIPCClient::kServiceUnavailable);
    EXPECT_THAT(trace.Text(),
                StartsWith("[FailureReportTest]\t[Error]\tError='GIPCClient::kServiceUnavailable'  "
                           "File='core-agent/cpp-core/tests/FailureReport_test.cpp'  Line="));
    EXPECT_THAT(trace.Text(), EndsWith("  Expression='Answer(code)'  Code='50335758'  \n"));
    EXPECT_EQ(CheckCall(0), 0xFFFFFFFFu);
}

TEST(FailureReport, ConditionsAndPointersHaveTheirOwnTextAndCode) {
    CapturedTrace trace;
    EXPECT_EQ(CheckCondition(-1), CoreErrorCodes::kInvalidParam);
    EXPECT_THAT(trace.Text(), HasSubstr("Error='CoreErrorCodes::kInvalidParam'"));
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='!(mode != -1)'  Code='67108864'"));
    trace.Clear();
    EXPECT_EQ(CheckPointer(nullptr), CoreErrorCodes::kNullPointer);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='(mPlugPlug) == nullptr'  Code='83886080'"));
    trace.Clear();
    EXPECT_EQ(CheckCondition(0), CoreErrorCodes::kSuccess);
    EXPECT_EQ(CheckPointer(&trace), CoreErrorCodes::kSuccess);
    EXPECT_EQ(trace.Text(), "");
}

TEST(FailureReport, AnUnknownCodeIsReportedAllTheSame) {
    CapturedTrace trace;
    EXPECT_EQ(CheckCall(12345), 12345u);
    EXPECT_THAT(trace.Text(), HasSubstr("Error='Unknown error code'"));
}

TEST(FailureReport, AnExpectedFailureIsWrittenAtDebugLevelOnly) {
    CapturedTrace trace;
    EXPECT_EQ(CheckExpected(CoreErrorCodes::kNotFound), CoreErrorCodes::kNotFound);
    EXPECT_EQ(trace.Text(), "");
    GLogger::GetSharedInstance().SetLevel(kLogCategory, GLogger::kDebug);
    EXPECT_EQ(CheckExpected(CoreErrorCodes::kNotFound), CoreErrorCodes::kNotFound);
    EXPECT_THAT(trace.Text(), StartsWith("[FailureReportTest]\t[Debug]\t"));
}

TEST(FailureReport, ASystemFailureTellsTheSystemsErrorAndPrintsTheCodeSigned) {
    CapturedTrace trace;
    ReportSystemFailure(kLogCategory, {"open(path)", "File.cpp", 7}, 0xFFFFFFFF,
                        platform::SystemError{ENOENT});
    EXPECT_THAT(trace.Text(),
                EndsWith("Error='Unknown error code'  File='File.cpp'  Line=7  Expression='open(path)'  "
                         "Window's Error=2: '" +
                         platform::SystemErrorText({ENOENT}) + "'  Code='-1'  \n"));
    EXPECT_NE(platform::SystemErrorText({ENOENT}), "");
}
