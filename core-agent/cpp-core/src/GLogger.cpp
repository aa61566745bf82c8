#include "GLogger.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <streambuf>
#include <system_error>
#include <utility>

#include "platform/DebugOutput.h"

namespace {

struct LevelName {
    const char* text;
    int level;
};

// In the order in which names are compared when a level is read; the first name of a level is the one
// written.
constexpr std::array<LevelName, 6> kLevelNames{{{"Error", GLogger::kError},
                                                {"Warning", GLogger::kWarning},
                                                {"Warn", GLogger::kWarning},
                                                {"Info", GLogger::kInfo},
                                                {"Debug", GLogger::kDebug},
                                                {"None", GLogger::kNone}}};

/// Hands whole lines to the debugger output, and keeps none of them.
class DebugOutputBuffer : public std::streambuf {
protected:
    int_type overflow(int_type character) override {
        const char byte = traits_type::to_char_type(character);
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            xsputn(&byte, 1);
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        if (platform::Current<platform::DebugOutput>().IsListening())
            mPending.append(text, static_cast<size_t>(size));
        return size;
    }
    int sync() override {
        const std::string line = std::exchange(mPending, {});  // with its memory
        if (!line.empty())
            platform::Current<platform::DebugOutput>().Write(line.c_str());
        return 0;
    }

private:
    std::string mPending;
};

class DebugOutputStream : private DebugOutputBuffer, public std::ostream {
public:
    DebugOutputStream() : std::ostream(static_cast<DebugOutputBuffer*>(this)) {}
};

/// A stream that failed before gets another chance: a full disk may have room again.
void WriteLine(std::ostream& stream, const std::string& line) {
    try {
        stream.clear();
        stream << line << std::endl;
    } catch (...) {  // it is the stream's business
    }
}

std::string FormatText(const char* format, va_list arguments) {
    va_list measuring;
    va_copy(measuring, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measuring);
    va_end(measuring);
    if (length < 0)
        return {};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

}  // namespace

GLogger::GLogger() : mLevels{{"default", kWarning}} {}
GLogger::~GLogger() = default;

GLogger& GLogger::GetSharedInstance() {
    static std::mutex creationLock;
    static std::atomic<GLogger*> shared{nullptr};
    if (GLogger* logger = shared.load(std::memory_order_acquire))
        return *logger;
    const std::lock_guard guard(creationLock);
    if (GLogger* logger = shared.load(std::memory_order_acquire))
        return *logger;
    auto logger = std::make_unique<GLogger>();
    logger->AddStream(std::make_shared<DebugOutputStream>());
    shared.store(logger.get(), std::memory_order_release);
    return *logger.release();
}

void GLogger::AddStream(std::shared_ptr<std::ostream> stream) {
    const std::lock_guard guard(mStreamsLock);
    mStreams.push_back(std::move(stream));
}

void GLogger::SetLevel(const std::string& loggerName, int level) {
    const std::lock_guard guard(mLevelsLock);
    mLevels[loggerName] = level;
}

int GLogger::GetLevel(const std::string& loggerName) {
    std::unique_lock guard(mLevelsLock, std::defer_lock);
    try {
        guard.lock();
    } catch (const std::system_error&) {
        return kUnknown;
    }
    auto found = mLevels.find(loggerName);
    if (found == mLevels.end())
        found = mLevels.find("default");
    return found != mLevels.end() ? found->second : kUnknown;
}

int GLogger::LevelFromString(const std::string& text) {
    for (const LevelName& name : kLevelNames) {
        if (text == name.text)
            return name.level;
    }
    return kUnknown;
}

std::string GLogger::LevelToString(int level) {
    for (const LevelName& name : kLevelNames) {
        if (level == name.level)
            return name.text;
    }
    return {};
}

bool GLogger::Admits(const std::string& loggerName, int level) {
    if (level == kNone || level == kUnknown)
        return false;
    const int admitted = GetLevel(loggerName);
    return admitted != kNone && admitted != kUnknown && admitted >= level;
}

void GLogger::Log(const std::string& loggerName, int level, const char* format, ...) {
    if (format == nullptr || !Admits(loggerName, level))
        return;
    va_list arguments;
    va_start(arguments, format);
    const std::string text = FormatText(format, arguments);
    va_end(arguments);
    const std::string line = "[" + loggerName + "]\t[" + LevelToString(level) + "]\t" + text;
    const std::lock_guard guard(mStreamsLock);
    for (const std::shared_ptr<std::ostream>& stream : mStreams)
        WriteLine(*stream, line);
}
