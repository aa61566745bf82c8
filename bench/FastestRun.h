// The time of the fastest of several runs: what is left when others use the machine as well.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

class FastestRun {
public:
    /// Runs the work; the seconds that it took.
    template <class Work>
    double Time(Work&& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        mSeconds = std::min(mSeconds, taken.count());
        return taken.count();
    }
    double Seconds() const { return mSeconds; }
    double NanosecondsPer(size_t count) const { return mSeconds * 1e9 / static_cast<double>(count); }

private:
    double mSeconds = std::numeric_limits<double>::infinity();
};
