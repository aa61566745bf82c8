// The trace log: what the plug-in core did, line by line, indented by nesting.
//
// Lines go to the system's debugger output and, once logging is switched on, to a sink as well (the font
// manager's own log). There is no lock: the indentation is shared by all threads, so lines of several threads
// nest into one another.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <utility>

/// Where trace pieces go besides the debugger output. Implementations are called on any thread.
class TraceSink {
public:
    virtual ~TraceSink() = default;

    /// Whether the sink can take text at present.
    virtual bool IsReady() = 0;
    /// Starts the sink's log file.
    virtual void BeginLogging(const char* path) = 0;
    /// Appends the text as it is.
    virtual void Log(const char* text) = 0;
};

/// `sink` is not owned and must live to process end; null takes it away. Main thread.
void SetTraceSink(TraceSink* sink);

#if defined(__GNUC__)
#define TRACE_LOG_PRINTF(position) __attribute__((format(printf, position, position + 1)))
#else
#define TRACE_LOG_PRINTF(position)
#endif

/// How deep lines are indented now. For a step that ends without its closing line, as a jump past it does.
int TraceIndentation();
void SetTraceIndentation(int depth);

/// Writes one line. `indentDelta` is +1 for a line that opens a nested step, -1 for the one that closes it,
/// else 0. Line feeds within the text and carriage returns become blanks. It is cut at 65535 bytes; below
/// 65534 bytes a line feed is added when it has none at its end. A null format writes nothing. Any thread.
/// Nothing is allocated here; a sink may do so.
void LogMessage(int indentDelta, const char* format, ...) TRACE_LOG_PRINTF(2);
/// The same with the arguments as a list.
void LogMessageV(int indentDelta, const char* format, va_list arguments);
/// The same for what may have several lines, such as the content of a file.
void LogLines(int indentDelta, const char* format, ...) TRACE_LOG_PRINTF(2);

/// Whether a line written now would reach anyone; if not, its arguments need not be composed. Any thread;
/// takes no lock.
bool IsTraceHeard();

/// Starts the sink's log file at `path` and writes a banner with the time into it. Main thread, once at
/// start-up.
void SetLogFile(const char* path);

/// From now on lines go to the sink as well; cannot be undone.
void EnableLogging();

/// The text, or "NULL" for a null pointer: how string arguments stand in the trace.
inline const char* OrNull(const char* text) {
    return text != nullptr ? text : "NULL";
}

/// The low 32 bits of an address: how pointers stand in the trace ("0x%08x").
inline unsigned TraceAddress(const void* pointer) {
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer));
}

/// A nested step of the trace: the opening line is written at once, the closing one when the scope is left,
/// however it is left.
///
///     ErrorCode code = CoreErrorCodes::kUnknownError;
///     const TraceScope trace([&] { LogMessage(-1, "%s() returning %d", kName, static_cast<int>(code)); },
///                            "Entering %s('%s', ...)", kName, path.c_str());
template <class Closing>
class TraceScope {
public:
    /// `closing` writes the closing line, with an indentDelta of -1, and refers to what outlives the scope;
    /// in it stand the values that there are then. `format` and what follows are the opening line.
    /// By reference: with an object that has no members by value, a compiler for Windows loses the arguments.
    TraceScope(const Closing& closing, const char* format, ...) TRACE_LOG_PRINTF(3);
    ~TraceScope();
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

private:
    Closing mClosing;
};

/// A closing line as most functions have it; `name` and `code` outlive the scope.
inline auto ReturningCode(const char* name, const uint32_t& code) {
    return [name, &code] { LogMessage(-1, "%s() returning %d", name, static_cast<int>(code)); };
}

template <class Closing>
TraceScope<Closing>::TraceScope(const Closing& closing, const char* format, ...) : mClosing(closing) {
    va_list arguments;
    va_start(arguments, format);
    LogMessageV(1, format, arguments);
    va_end(arguments);
}

template <class Closing>
TraceScope<Closing>::~TraceScope() {
    mClosing();
}
