// To be loaded before the C library (LD_PRELOAD): counts the calls by which a process changes the files below
// one folder, and has one of them go wrong, or kills the process right after it, as the FaultPlan says.
//
//   FAILING_WRITES_BELOW   the folder, a full path without symbolic links
//   FAILING_WRITES_PLAN    the file that holds the FaultPlan
//
// Counted are the calls that need room, flush, rename, link, make or remove. What only opens an existing file
// is not: it changes nothing. Sockets, pipes and standard streams stand in no folder and always work.
#include "FaultPlan.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

FaultPlan* MapPlan() {
    const char* path = std::getenv("FAILING_WRITES_PLAN");
    const int file =
        path != nullptr ? Next<int(const char*, int, ...)>("open")(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0)
        return nullptr;
    void* plan = mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return plan != MAP_FAILED ? static_cast<FaultPlan*>(plan) : nullptr;
}

FaultPlan* Plan() {
    static FaultPlan* const plan = MapPlan();
    return plan;
}

bool IsWatched(const std::string& path) {
    static const char* const folder = std::getenv("FAILING_WRITES_BELOW");
    return Plan() != nullptr && folder != nullptr && path.compare(0, std::strlen(folder), folder) == 0;
}

std::string PathOf(int file) {
    char path[4096];
    const ssize_t size = readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof path);
    return size > 0 ? std::string(path, static_cast<size_t>(size)) : std::string();
}

bool Exists(const char* path) {
    return access(path, F_OK) == 0;
}

constexpr std::string_view kUnlink = "unlink";
constexpr std::string_view kRemove = "remove";

enum class Verdict { kGoOn, kFail, kDieAfter };

/// The next call of the process, which it makes to the file.
Verdict Judge(const char* call, const std::string& path) {
    if (!IsWatched(path))
        return Verdict::kGoOn;
    FaultPlan& plan = *Plan();
    const int number = ++plan.count;
    const int kind = plan.kind;
    const bool isRemoval = call == kUnlink || call == kRemove;
    const bool isMeant = plan.lasts ? number >= plan.at : number == plan.at;
    if (kind == FaultPlan::kNothing || !isMeant || (kind == FaultPlan::kDiskFull && isRemoval))
        return Verdict::kGoOn;
    if (++plan.failedCalls == 1)
        std::snprintf(plan.where, sizeof plan.where, "%s %s", call, path.c_str());
    if (kind == FaultPlan::kKill)
        return Verdict::kDieAfter;
    if (isRemoval)
        plan.keptFile = true;
    errno = kind == FaultPlan::kDiskFull ? ENOSPC : EIO;
    return Verdict::kFail;
}

template <class Call>
auto Attempt(const char* name, const std::string& path, const Call& call) {
    const Verdict verdict = Judge(name, path);
    if (verdict == Verdict::kFail)
        return decltype(call())(-1);
    const auto result = call();
    if (verdict == Verdict::kDieAfter)
        raise(SIGKILL);
    return result;
}

/// A write that goes wrong has written half by then, as it may. Of a disk that stays full the writer learns
/// that with the next call.
template <class Call>
ssize_t AttemptWrite(const char* name, int file, size_t size, const Call& writeSome) {
    const Verdict verdict = Judge(name, PathOf(file));
    if (verdict != Verdict::kFail) {
        const ssize_t written = writeSome(size);
        if (verdict == Verdict::kDieAfter)
            raise(SIGKILL);
        return written;
    }
    const int error = errno;
    const bool isFirst = Plan()->failedCalls == 1;
    if (isFirst && size > 1 && (error == EIO || Plan()->lasts)) {
        const ssize_t written = writeSome(size / 2);
        if (error == ENOSPC)
            return written;
    }
    errno = error;
    return -1;
}

template <class Call>
auto AttemptToMake(const char* name, const char* path, const Call& call) {
    return Exists(path) ? call() : Attempt(name, path, call);
}

template <class Function>
int Open(const char* name, const char* path, int flags, mode_t mode) {
    const auto open = [=] { return Next<Function>(name)(path, flags, mode); };
    return (flags & O_CREAT) != 0 ? AttemptToMake(name, path, open) : open();
}

mode_t ModeOf(int flags, va_list rest) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
}

int Remove(const char* name, const char* path) {
    const auto remove = [=] { return Next<int(const char*)>(name)(path); };
    return Exists(path) ? Attempt(name, path, remove) : remove();
}

FILE* OpenStream(const char* name, const char* path, const char* mode) {
    FILE* stream = nullptr;
    const auto open = [&] {
        stream = Next<FILE*(const char*, const char*)>(name)(path, mode);
        return 0;
    };
    if (std::strpbrk(mode, "wa") != nullptr)
        AttemptToMake(name, path, open);
    else
        open();
    return stream;
}

}  // namespace

extern "C" {

// Each has the signature of the C library's function of its name.
#pragma GCC visibility push(default)

#define OPEN_FILE(name)                                        \
    int name(const char* path, int flags, ...) {               \
        va_list rest;                                          \
        va_start(rest, flags);                                 \
        const mode_t mode = ModeOf(flags, rest);               \
        va_end(rest);                                          \
        return Open<decltype(name)>(#name, path, flags, mode); \
    }
OPEN_FILE(open)
OPEN_FILE(open64)

#define OPEN_STREAM(name)                            \
    FILE* name(const char* path, const char* mode) { \
        return OpenStream(#name, path, mode);        \
    }
OPEN_STREAM(fopen)
OPEN_STREAM(fopen64)

int mkostemp(char* path, int flags) {
    return Attempt("mkostemp", path, [=] { return Next<decltype(mkostemp)>("mkostemp")(path, flags); });
}

int mkostemps(char* path, int suffixLength, int flags) {
    return Attempt("mkostemps", path,
                   [=] { return Next<decltype(mkostemps)>("mkostemps")(path, suffixLength, flags); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    return AttemptToMake("mkdir", path, [=] { return Next<int(const char*, mode_t)>("mkdir")(path, mode); });
}

ssize_t write(int file, const void* bytes, size_t size) {
    return AttemptWrite("write", file, size,
                        [=](size_t some) { return Next<decltype(write)>("write")(file, bytes, some); });
}

#define WRITE_AT(name)                                                     \
    ssize_t name(int file, const void* bytes, size_t size, off_t offset) { \
        return AttemptWrite(#name, file, size, [=](size_t some) {          \
            return Next<decltype(name)>(#name)(file, bytes, some, offset); \
        });                                                                \
    }
WRITE_AT(pwrite)
WRITE_AT(pwrite64)

ssize_t writev(int file, const iovec* pieces, int count) {
    return Attempt("writev", PathOf(file),
                   [=] { return Next<decltype(writev)>("writev")(file, pieces, count); });
}

ssize_t sendfile(int target, int source, off_t* offset, size_t size) noexcept {
    return Attempt("sendfile", PathOf(target), [=] {
        return Next<ssize_t(int, int, off_t*, size_t)>("sendfile")(target, source, offset, size);
    });
}

#define FLUSH(name)                                                                             \
    int name(int file) {                                                                        \
        return Attempt(#name, PathOf(file), [=] { return Next<decltype(name)>(#name)(file); }); \
    }
FLUSH(fsync)
FLUSH(fdatasync)

#define TRUNCATE(name)                                                                                 \
    int name(int file, off_t size) noexcept {                                                          \
        return Attempt(#name, PathOf(file), [=] { return Next<int(int, off_t)>(#name)(file, size); }); \
    }
TRUNCATE(ftruncate)
TRUNCATE(ftruncate64)

int rename(const char* from, const char* to) noexcept {
    return Attempt("rename", to, [=] { return Next<int(const char*, const char*)>("rename")(from, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return Attempt("renameat2", to, [=] {
        return Next<int(int, const char*, int, const char*, unsigned)>("renameat2")(fromFolder, from,
                                                                                    toFolder, to, flags);
    });
}

int link(const char* from, const char* to) noexcept {
    return Attempt("link", to, [=] { return Next<int(const char*, const char*)>("link")(from, to); });
}

int unlink(const char* path) noexcept {
    return Remove("unlink", path);
}

int remove(const char* path) noexcept {
    return Remove("remove", path);
}

#pragma GCC visibility pop

}  // extern "C"
