// Which of two fonts that answer to the same name is the better one to activate.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ErrorCodes.h"

/// A font as the comparison sees it.
struct BestMatchCandidate {
    uint32_t ID = 0;                ///< the font's identity; 0 means unknown
    std::string preferredIdentity;  ///< compared with the caller's preferred text
    uint32_t orderNumber = 0;       ///< the smaller number wins a late tie
    int32_t kind = 0;               ///< a kind of GFontManagerConstants
    std::string version;            ///< text with a version number in it
    int32_t status = 0;             ///< the font's activation state
    int32_t mode = 0;               ///< activation mode; -1 is kActivationMode_invalid
};

class GPickBestMatch : public error_codes::GPickBestMatch {
public:
    static constexpr int32_t kActivationMode_invalid = -1;

    /// Compares two candidates. `leftIsBetter` starts true and stays so when the comparison fails
    /// (kInvalidParam: a candidate's mode is invalid). `ignoreModeZero` switches off the rule that a
    /// candidate of mode 0 loses; `preferredText` may be empty; `requestedKind` is the kind of the font that
    /// was asked for. Any thread.
    [[nodiscard]] static ErrorCode Compare(const BestMatchCandidate& left, const BestMatchCandidate& right,
                                           bool& leftIsBetter, bool ignoreModeZero,
                                           std::string_view preferredText, int32_t requestedKind);

    /// Reads the first number of the form MAJOR[.MINOR[.BUG]] in the text ("Version 2.51;hotconv" is 2, 51,
    /// 0). kNotANumber when there is none or a part does not fit 32 bits; the outputs are untouched then.
    [[nodiscard]] static ErrorCode VersionStringToNumber(std::string_view text, uint32_t& major,
                                                         uint32_t& minor, uint32_t& bug);
};
