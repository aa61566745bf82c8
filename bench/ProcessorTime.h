// The processor time of many runs together, which others on the same machine disturb little.
#pragma once

#include <cstddef>
#include <ctime>

class ProcessorTime {
public:
    /// Runs the work; the seconds that it took.
    template <class Work>
    double Add(Work&& work) {
        const std::clock_t start = std::clock();
        work();
        const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        mSeconds += seconds;
        ++mRuns;
        return seconds;
    }
    double Seconds() const { return mSeconds; }
    /// Per one of the `count` things that each run did.
    double NanosecondsPer(size_t count) const {
        return mSeconds * 1e9 / static_cast<double>(mRuns) / static_cast<double>(count);
    }

private:
    double mSeconds = 0;
    size_t mRuns = 0;
};
