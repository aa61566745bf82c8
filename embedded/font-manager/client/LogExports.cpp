// Thread instances and the log that is written through them, and folders.
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "NoDestructor.h"
#include "client/Exports.h"
#include "common/Locations.h"
#include "common/LogFile.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using namespace pellwick;

struct OpaquePluginThreadInstance {
    std::shared_ptr<LogFile> log;
};

namespace {

/// The log begun last in this process; threads that began none write to it.
struct ProcessLog {
    std::mutex logLock;
    std::shared_ptr<LogFile> log;
};

ProcessLog& LogOfProcess() {
    static NoDestructor<ProcessLog> processLog;
    return *processLog;
}

/// The log of that path, shared by all threads that write to it.
std::shared_ptr<LogFile> OpenLog(const std::string& path) {
    static NoDestructor<std::mutex> logsLock;
    static NoDestructor<std::map<std::string, std::weak_ptr<LogFile>>> logs;
    const std::lock_guard guard(*logsLock);
    std::weak_ptr<LogFile>& shared = (*logs)[path];
    std::shared_ptr<LogFile> log = shared.lock();
    if (log)
        return log;
    log = std::make_shared<LogFile>();
    if (log->Open(path))
        return nullptr;
    shared = log;
    return log;
}

/// The next write tries again.
ErrorCode CodeOf(const platform::SystemError& error) {
    if (error.IsDiskFull())
        return error_codes::GFileSystem::kDiskFull;
    return error ? error_codes::GFile::kFileNotOpen : CoreErrorCodes::kSuccess;
}

/// A bare file name stands for one in the folder for logs.
std::string LogPath(std::string_view name) {
    if (platform::Utf8Path(name).has_parent_path())
        return std::string(name);
    return Locations::OfThisUser().logFolder + platform::kPathSeparator + std::string(name);
}

}  // namespace

uint32_t InitThreadInstance(PluginThreadInstanceRef* outThread) {
    return Guarded([&] {
        if (outThread == nullptr)
            return CoreErrorCodes::kNullPointer;
        *outThread = new OpaquePluginThreadInstance;
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t DestroyThreadInstance(PluginThreadInstanceRef thread) {
    return Guarded([&] {
        delete thread;
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t BeginLogging(PluginThreadInstanceRef thread, const char* logFileName) {
    return Guarded([&] {
        if (thread == nullptr || logFileName == nullptr)
            return CoreErrorCodes::kNullPointer;
        if (*logFileName == '\0')
            return CoreErrorCodes::kInvalidParam;
        std::shared_ptr<LogFile> log = OpenLog(LogPath(logFileName));
        if (!log)
            return error_codes::GFile::kOpenFailed;
        thread->log = log;
        const std::lock_guard guard(LogOfProcess().logLock);
        LogOfProcess().log = std::move(log);
        return CoreErrorCodes::kSuccess;
    });
}

uint32_t Log(PluginThreadInstanceRef thread, const char* text) {
    return Guarded([&] {
        if (thread == nullptr || text == nullptr)
            return CoreErrorCodes::kNullPointer;
        if (!thread->log) {
            const std::lock_guard guard(LogOfProcess().logLock);
            thread->log = LogOfProcess().log;
        }
        if (!thread->log)
            return CoreErrorCodes::kNotInitialized;
        return CodeOf(thread->log->Write(text));
    });
}

uint32_t OSCreateDirectory(const char* path) {
    return Guarded([&] {
        if (path == nullptr)
            return CoreErrorCodes::kNullPointer;
        if (*path == '\0')
            return CoreErrorCodes::kInvalidParam;
        return platform::MakeFolders(path, Locations::OfThisUser().IsOwn(path))
                   ? GZephyrinExportFonts::kCouldNotCreateFolder
                   : CoreErrorCodes::kSuccess;
    });
}

uint32_t OSDoesDirectoryExist(const char* path, bool* outExists) {
    return Guarded([&] {
        if (path == nullptr || outExists == nullptr)
            return CoreErrorCodes::kNullPointer;
        std::error_code failure;
        *outExists = std::filesystem::is_directory(platform::Utf8Path(path), failure);
        return CoreErrorCodes::kSuccess;
    });
}
