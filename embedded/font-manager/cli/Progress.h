// How far a long command is.
#pragma once

#include <cstdio>
#include <string>

#include "platform/Environment.h"

namespace pellwick::cli {

/// One line that keeps changing, where a person watches.
class Progress {
public:
    /// `things`: the plural of what is counted.
    Progress(size_t total, std::string things)
        : mTotal(total),
          mThings(std::move(things)),
          mIsShown(total > 20 && platform::IsTerminal(platform::StandardStream::kError)) {}
    ~Progress() {
        if (mIsShown)
            std::fputs("\r\033[K", stderr);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Advance(size_t count = 1) {
        mDone += count;
        if (mIsShown)
            std::fprintf(stderr, "\r%zu of %zu %s", mDone, mTotal, mThings.c_str());
    }

private:
    const size_t mTotal;
    const std::string mThings;
    const bool mIsShown;
    size_t mDone = 0;
};

}  // namespace pellwick::cli
