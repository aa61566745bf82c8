#include "GPickBestMatch.h"

#include <array>
#include <charconv>
#include <optional>
#include <tuple>

#include "FailureReport.h"
#include "GFontManagerConstants.h"
#include "GLogger.h"

namespace {

constexpr char kLogCategory[] = "GPickBestMatch";
constexpr int32_t kModeThatLosesToAll = 7;

/// What a rule says: left wins, right wins, or nothing.
using Verdict = std::optional<bool>;

/// The side for which the statement holds loses, when it holds for one side alone.
Verdict Loses(bool left, bool right) {
    return left != right ? Verdict(right) : std::nullopt;
}

/// The side for which the statement holds wins, when it holds for one side alone.
Verdict Wins(bool left, bool right) {
    return Loses(!left, !right);
}

bool IsDisfavoured(int32_t status) {
    return status >= 4 && status <= 8;
}

int StatusRank(int32_t status) {
    constexpr std::array<int, 15> kRanks = {0, 19, 18, 20, 5, 6, 4, 3, 2, 12, 11, 10, 9, 8, 13};
    return status >= 0 && static_cast<size_t>(status) < kRanks.size() ? kRanks[static_cast<size_t>(status)]
                                                                      : 0;
}

bool PrefersPostScriptFlavour(int32_t requestedKind) {
    using Kinds = GFontManagerConstants;
    return requestedKind == Kinds::kFontKind_postScript || requestedKind == Kinds::kFontKind_outline ||
           requestedKind == Kinds::kFontKind_openTypePS || requestedKind == Kinds::kFontKind_postScriptMM;
}

Verdict CompareKinds(int32_t left, int32_t right, int32_t requestedKind) {
    using Kinds = GFontManagerConstants;
    std::array<int32_t, 4> rungs = {Kinds::kFontKind_openTypeTT, Kinds::kFontKind_openTypePS,
                                    Kinds::kFontKind_trueType, Kinds::kFontKind_postScript};
    if (PrefersPostScriptFlavour(requestedKind))
        std::swap(rungs[0], rungs[1]);
    for (const int32_t rung : rungs) {
        if (left == rung || right == rung)
            return Wins(left == rung, right == rung);
    }
    return std::nullopt;
}

Verdict ComparePreferredText(const BestMatchCandidate& left, const BestMatchCandidate& right,
                             std::string_view preferredText) {
    if (preferredText.empty())
        return std::nullopt;
    return Wins(left.preferredIdentity == preferredText, right.preferredIdentity == preferredText);
}

/// Reads both versions, or reports the first that cannot be read: then the rule decides nothing.
ErrorCode ReadVersions(const std::string& left, const std::string& right,
                       std::tuple<uint32_t, uint32_t, uint32_t>& leftVersion,
                       std::tuple<uint32_t, uint32_t, uint32_t>& rightVersion) {
    const auto VersionStringToNumber = GPickBestMatch::VersionStringToNumber;
    auto& [leftMajor, leftMinor, leftBug] = leftVersion;
    RETURN_IF_FAILED(VersionStringToNumber(left, leftMajor, leftMinor, leftBug), GLogger::kDebug);
    auto& [rightMajor, rightMinor, rightBug] = rightVersion;
    RETURN_IF_FAILED(VersionStringToNumber(right, rightMajor, rightMinor, rightBug), GLogger::kDebug);
    return CoreErrorCodes::kSuccess;
}

Verdict CompareVersions(const std::string& left, const std::string& right) {
    std::tuple<uint32_t, uint32_t, uint32_t> leftVersion;
    std::tuple<uint32_t, uint32_t, uint32_t> rightVersion;
    if (ReadVersions(left, right, leftVersion, rightVersion) != CoreErrorCodes::kSuccess ||
        leftVersion == rightVersion)
        return std::nullopt;
    return leftVersion > rightVersion;
}

Verdict CompareStatusRanks(int32_t left, int32_t right) {
    const int leftRank = StatusRank(left);
    const int rightRank = StatusRank(right);
    return leftRank != rightRank ? Verdict(leftRank > rightRank) : std::nullopt;
}

bool CompareLast(const BestMatchCandidate& left, const BestMatchCandidate& right) {
    if (left.orderNumber != right.orderNumber)
        return left.orderNumber < right.orderNumber;
    GLogger::GetSharedInstance().Log(kLogCategory, GLogger::kWarning, "Called with duplicate info.");
    return left.ID < right.ID;
}

bool Decide(const BestMatchCandidate& left, const BestMatchCandidate& right, bool ignoreModeZero,
            std::string_view preferredText, int32_t requestedKind) {
    if (const Verdict verdict = Loses(left.mode == kModeThatLosesToAll, right.mode == kModeThatLosesToAll))
        return *verdict;
    if (const Verdict verdict = Loses(IsDisfavoured(left.status), IsDisfavoured(right.status)))
        return *verdict;
    if (const Verdict verdict = Loses(left.mode == 0, right.mode == 0); verdict && !ignoreModeZero)
        return *verdict;
    if (const Verdict verdict = CompareKinds(left.kind, right.kind, requestedKind))
        return *verdict;
    if (const Verdict verdict = ComparePreferredText(left, right, preferredText))
        return *verdict;
    if (const Verdict verdict = CompareVersions(left.version, right.version))
        return *verdict;
    if (const Verdict verdict = CompareStatusRanks(left.status, right.status))
        return *verdict;
    return CompareLast(left, right);
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Takes one number off the front of the text.
bool TakeNumber(std::string_view& text, uint32_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return false;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return true;
}

}  // namespace

ErrorCode GPickBestMatch::Compare(const BestMatchCandidate& left, const BestMatchCandidate& right,
                                  bool& leftIsBetter, bool ignoreModeZero, std::string_view preferredText,
                                  int32_t requestedKind) {
    leftIsBetter = true;
    RETURN_UNLESS(left.mode != kActivationMode_invalid);
    RETURN_UNLESS(right.mode != kActivationMode_invalid);
    if (left.ID != 0 && left.ID == right.ID)
        leftIsBetter = false;
    else
        leftIsBetter = Decide(left, right, ignoreModeZero, preferredText, requestedKind);
    return CoreErrorCodes::kSuccess;
}

ErrorCode GPickBestMatch::VersionStringToNumber(std::string_view text, uint32_t& major, uint32_t& minor,
                                                uint32_t& bug) {
    while (!text.empty() && !IsDigit(text.front()))
        text.remove_prefix(1);
    std::array<uint32_t, 3> parts{};
    for (size_t index = 0; index < parts.size(); ++index) {
        if (!TakeNumber(text, parts[index]))
            return CoreErrorCodes::kNotANumber;
        if (text.size() < 2 || text[0] != '.' || !IsDigit(text[1]))
            break;
        text.remove_prefix(1);
    }
    major = parts[0];
    minor = parts[1];
    bug = parts[2];
    return CoreErrorCodes::kSuccess;
}
