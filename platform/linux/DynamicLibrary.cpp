#include "platform/DynamicLibrary.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "platform/Files.h"

namespace platform {
namespace {

thread_local std::string lastLoadFailure;

LibraryHandle Load(const char* name, SystemError& error) {
    errno = 0;
    void* handle = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr)
        return handle;
    error.code = errno != 0 ? errno : ELIBACC;
    const char* reason = dlerror();
    lastLoadFailure = reason != nullptr ? reason : "";
    return nullptr;
}

LibraryHandle Refuse(const std::string& name, const char* reason, SystemError& error) {
    error.code = EINVAL;
    lastLoadFailure = name + ": " + reason;
    return nullptr;
}

/// The dynamic linker reports the path that it was given; callers want one that stands on its own.
std::string FullPath(const char* path) {
    if (path == nullptr || *path == '\0')
        return {};
    char resolved[PATH_MAX];
    return realpath(path, resolved) != nullptr ? resolved : path;
}

class LinuxDynamicLibraries : public DynamicLibraries {
public:
    LibraryHandle LoadFromPath(const std::string& path, SystemError& error) override {
        if (!IsFullPath(path))  // dlopen would search for it, or take it from the working folder
            return Refuse(path, "not a full path", error);
        if (access(path.c_str(), R_OK) != 0) {
            error = LastSystemError();
            lastLoadFailure = path + ": " + SystemErrorText(error);
            return nullptr;
        }
        return Load(path.c_str(), error);
    }

    LibraryHandle LoadByName(const std::string& fileName, SystemError& error) override {
        if (fileName.find('/') != std::string::npos)
            return Refuse(fileName, "not a bare file name", error);
        return Load(fileName.c_str(), error);
    }

    void* FindSymbol(LibraryHandle library, const char* symbol) override { return dlsym(library, symbol); }

    std::string PathOf(LibraryHandle library) override {
        link_map* map = nullptr;
        if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0)
            return {};
        return FullPath(map->l_name);
    }

    const void* ModuleAt(const void* address) override {
        Dl_info info{};
        return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
    }

    std::string PathOfModuleAt(const void* address) override {
        Dl_info info{};
        return dladdr(address, &info) != 0 ? FullPath(info.dli_fname) : std::string();
    }

    std::string LastLoadFailure() override { return lastLoadFailure; }
};

}  // namespace

std::string LibraryFileName(std::string_view name) {
    return std::string(name) + ".so";
}
std::string SharedLibraryPath(std::string_view name) {
    return "lib/lib" + std::string(name) + ".so";
}
std::string ProgramFileName(std::string_view name) {
    return std::string(name);
}

// The linker has marked our libraries as never to be unloaded.
void KeepModuleLoaded(const void*) {}

template <>
DynamicLibraries& SystemDefault<DynamicLibraries>() {
    static LinuxDynamicLibraries libraries;
    return libraries;
}

}  // namespace platform
