#include "TraceLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/Clock.h"
#include "platform/DebugOutput.h"

namespace {

constexpr size_t kLineBufferSize = 65536;
// A longer text leaves no room for a line feed.
constexpr size_t kLongestTextToComplete = 65534;

// Relaxed: lines of several threads may nest into one another, and that is all that can happen.
std::atomic<int> indentation{0};
std::atomic<bool> loggingEnabled{false};
std::atomic<TraceSink*> traceSink{nullptr};

TraceSink* ReadySink() {
    TraceSink* sink = traceSink.load(std::memory_order_acquire);
    return sink != nullptr && sink->IsReady() ? sink : nullptr;
}

void WritePiece(const char* piece) {
    platform::Current<platform::DebugOutput>().Write(piece);
    if (!loggingEnabled.load(std::memory_order_relaxed))
        return;
    if (TraceSink* sink = ReadySink())
        sink->Log(piece);
}

/// A line feed in a name would make the rest of it look like a line of ours.
void JoinLines(char* line) {
    for (; *line != '\0'; ++line) {
        if (*line == '\r' || (*line == '\n' && line[1] != '\0'))
            *line = ' ';
    }
}

void CompleteLine(char* line) {
    const size_t length = std::strlen(line);
    if (length < kLongestTextToComplete && (length == 0 || line[length - 1] != '\n'))
        std::strcpy(line + length, "\n");
}

enum class Lines { kOne, kAsTheyAre };

// Apart from Trace, which costs next to nothing while nobody listens.
void WriteLine(int indentDelta, Lines lines, const char* format, va_list arguments) {
    char line[kLineBufferSize];
    line[0] = '\0';
    std::vsnprintf(line, sizeof line, format, arguments);
    if (lines == Lines::kOne)
        JoinLines(line);
    CompleteLine(line);
    if (indentDelta < 0)
        indentation.fetch_add(indentDelta, std::memory_order_relaxed);
    // The font manager's log takes each blank as a piece of its own.
    for (int depth = indentation.load(std::memory_order_relaxed); depth > 0; --depth)
        WritePiece(" ");
    if (indentDelta >= 0)
        indentation.fetch_add(indentDelta, std::memory_order_relaxed);
    WritePiece(line);
}

void Trace(int indentDelta, Lines lines, const char* format, va_list arguments) {
    if (format == nullptr)
        return;
    if (IsTraceHeard())
        WriteLine(indentDelta, lines, format, arguments);
    else if (indentDelta != 0)
        indentation.fetch_add(indentDelta, std::memory_order_relaxed);
}

}  // namespace

void SetTraceSink(TraceSink* sink) {
    traceSink.store(sink, std::memory_order_release);
}

bool IsTraceHeard() {
    return platform::Current<platform::DebugOutput>().IsListening() ||
           (loggingEnabled.load(std::memory_order_relaxed) && ReadySink() != nullptr);
}

int TraceIndentation() {
    return indentation.load(std::memory_order_relaxed);
}

void SetTraceIndentation(int depth) {
    indentation.store(depth, std::memory_order_relaxed);
}

void LogMessage(int indentDelta, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LogMessageV(indentDelta, format, arguments);
    va_end(arguments);
}

void LogLines(int indentDelta, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Trace(indentDelta, Lines::kAsTheyAre, format, arguments);
    va_end(arguments);
}

void LogMessageV(int indentDelta, const char* format, va_list arguments) {
    Trace(indentDelta, Lines::kOne, format, arguments);
}

void SetLogFile(const char* path) {
    TraceSink* sink = ReadySink();
    if (sink == nullptr)
        return;
    sink->BeginLogging(path);
    const std::string time = platform::LocalTimeText(platform::Current<platform::Clock>().Now());
    sink->Log(("\n=======\n" + time + "=======\n").c_str());
}

void EnableLogging() {
    loggingEnabled.store(true, std::memory_order_relaxed);
}
