// The levelled logger: named loggers with a level each, lines tagged with name and level, written to a list
// of output streams.
#pragma once

#include <cstdarg>
#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

class GLogger {
public:
    enum Level : int { kUnknown = -1, kNone = 0, kError = 1, kWarning = 2, kInfo = 3, kDebug = 4 };

    /// The one logger of the process, made on first use with the debugger output as its only stream. Any
    /// thread.
    static GLogger& GetSharedInstance();

    /// A logger without streams, whose "default" level is Warning.
    GLogger();
    ~GLogger();
    GLogger(const GLogger&) = delete;
    GLogger& operator=(const GLogger&) = delete;

    /// Appends a stream; every line is written to all streams in this order. Any thread.
    void AddStream(std::shared_ptr<std::ostream> stream);

    // Levels are set while looking for a fault; the core itself sets none and reads no names yet.

    /// Sets or replaces the level of a logger name. Any thread.
    void SetLevel(const std::string& loggerName, int level);
    /// The level of the name, else that of "default". Any thread.
    int GetLevel(const std::string& loggerName);

    /// "Error", "Warning", "Warn", "Info", "Debug" and "None", exactly; kUnknown for any other text.
    static int LevelFromString(const std::string& text);
    /// Empty for a value that is not a level.
    static std::string LevelToString(int level);

    /// Writes "[name]<tab>[level]<tab>text" and flushes, when the logger's level admits it. What a stream
    /// throws stays here, and one that failed is tried again with the next line. Any thread.
    void Log(const std::string& loggerName, int level, const char* format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 4, 5)))
#endif
        ;

private:
    bool Admits(const std::string& loggerName, int level);

    std::mutex mStreamsLock;
    std::vector<std::shared_ptr<std::ostream>> mStreams;
    std::mutex mLevelsLock;
    std::map<std::string, int> mLevels;
};
