// To be loaded before the C library (LD_PRELOAD): counts the calls by which a process changes the files below
// one folder, and has one of them go wrong, or kills the process right after it, as the FaultPlan says.
//
//   FAILING_WRITES_BELOW   the folder, a full path without symbolic links
//   FAILING_WRITES_PLAN    the file that holds the FaultPlan
//
// Counted are the calls that need room, flush, rename, link, make or remove; those that remove never fail.
#include "FaultPlan.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
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

enum class Verdict { kGoOn, kFail, kDieAfter };

/// The next call of the process, which it makes to the file.
Verdict Judge(const char* call, const std::string& path) {
    if (!IsWatched(path))
        return Verdict::kGoOn;
    FaultPlan& plan = *Plan();
    const int number = ++plan.count;
    const int kind = plan.kind;
    const bool isRemoval = call == std::string_view("unlink") || call == std::string_view("remove");
    const bool isMeant = plan.lasts ? number >= plan.at : number == plan.at;
    if (kind == FaultPlan::kNothing || !isMeant || (isRemoval && kind != FaultPlan::kKill))
        return Verdict::kGoOn;
    if (++plan.failedCalls == 1)
        std::snprintf(plan.where, sizeof plan.where, "%s %s", call, path.c_str());
    if (kind == FaultPlan::kKill)
        return Verdict::kDieAfter;
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

mode_t ModeOf(int flags, va_list rest) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
}

}  // namespace

extern "C" {

// Each has the signature of the C library's function of its name: what our processes change files with.
#pragma GCC visibility push(default)

#define OPEN_FILE(name)                                                                               \
    int name(const char* path, int flags, ...) {                                                      \
        va_list rest;                                                                                 \
        va_start(rest, flags);                                                                        \
        const mode_t mode = ModeOf(flags, rest);                                                      \
        va_end(rest);                                                                                 \
        const auto call = [=] { return Next<int(const char*, int, ...)>(#name)(path, flags, mode); }; \
        return (flags & O_CREAT) != 0 && !Exists(path) ? Attempt(#name, path, call) : call();         \
    }
OPEN_FILE(open)
OPEN_FILE(open64)

ssize_t write(int file, const void* bytes, size_t size) {
    return AttemptWrite("write", file, size,
                        [=](size_t some) { return Next<decltype(write)>("write")(file, bytes, some); });
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off_t offset) {
    return AttemptWrite("pwrite64", file, size, [=](size_t some) {
        return Next<decltype(pwrite64)>("pwrite64")(file, bytes, some, offset);
    });
}

// One that is counted if it changes what there is.
#define COUNTED(name, parameters, specifier, path, changes, arguments)           \
    int name parameters specifier {                                              \
        const auto call = [=] { return Next<int parameters>(#name) arguments; }; \
        return changes ? Attempt(#name, path, call) : call();                    \
    }
COUNTED(mkostemp, (char* path, int flags), , path, true, (path, flags))
COUNTED(mkostemps, (char* path, int suffixLength, int flags), , path, true, (path, suffixLength, flags))
COUNTED(mkdir, (const char* path, mode_t mode), noexcept, path, !Exists(path), (path, mode))
COUNTED(fsync, (int file), , PathOf(file), true, (file))
COUNTED(fdatasync, (int file), , PathOf(file), true, (file))
COUNTED(ftruncate, (int file, off_t size), noexcept, PathOf(file), true, (file, size))
COUNTED(ftruncate64, (int file, off_t size), noexcept, PathOf(file), true, (file, size))
COUNTED(rename, (const char* from, const char* to), noexcept, to, true, (from, to))
COUNTED(link, (const char* from, const char* to), noexcept, to, true, (from, to))
COUNTED(unlink, (const char* path), noexcept, path, Exists(path), (path))
COUNTED(remove, (const char* path), noexcept, path, Exists(path), (path))

#pragma GCC visibility pop

}  // extern "C"
