#include "platform/DynamicLibrary.h"

#include <windows.h>

#include "WideText.h"
#include "platform/Files.h"

namespace platform {
namespace {

thread_local std::string lastLoadFailure;

/// Keeps the system from showing a box about a missing disk or a broken library.
class NoErrorBoxes {
public:
    NoErrorBoxes() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &mPrevious); }
    ~NoErrorBoxes() { SetThreadErrorMode(mPrevious, nullptr); }
    NoErrorBoxes(const NoErrorBoxes&) = delete;
    NoErrorBoxes& operator=(const NoErrorBoxes&) = delete;

private:
    DWORD mPrevious = 0;
};

LibraryHandle Refuse(const std::string& name, const char* reason, SystemError& error) {
    error.code = ERROR_BAD_PATHNAME;
    lastLoadFailure = name + ": " + reason;
    return nullptr;
}

LibraryHandle Load(const std::string& name, const std::wstring& wideName, DWORD flags, SystemError& error) {
    const NoErrorBoxes guard;
    HMODULE module = wideName.empty() ? nullptr : LoadLibraryExW(wideName.c_str(), nullptr, flags);
    if (module != nullptr)
        return module;
    error = LastSystemError();
    lastLoadFailure = name + ": " + SystemErrorText(error);
    return nullptr;
}

std::string FileNameOf(HMODULE module) {
    return ToUtf8(ReadWideText(
        [module](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(module, buffer, size); }));
}

HMODULE FindModule(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const wchar_t*>(address), &module);
    return module;
}

class WindowsDynamicLibraries : public DynamicLibraries {
public:
    LibraryHandle LoadFromPath(const std::string& path, SystemError& error) override {
        if (!IsFullPath(path))
            return Refuse(path, "not a full path", error);
        // What the library needs is looked for in its own folder first, never in the working folder or in
        // those of PATH.
        return Load(path, ToWidePath(path),
                    LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS, error);
    }

    LibraryHandle LoadByName(const std::string& fileName, SystemError& error) override {
        if (fileName.find_first_of("/\\:") != std::string::npos)
            return Refuse(fileName, "not a bare file name", error);
        return Load(fileName, ToWide(fileName), LOAD_LIBRARY_SEARCH_DEFAULT_DIRS, error);
    }

    void* FindSymbol(LibraryHandle library, const char* symbol) override {
        return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), symbol));
    }

    std::string PathOf(LibraryHandle library) override { return FileNameOf(static_cast<HMODULE>(library)); }

    const void* ModuleAt(const void* address) override { return FindModule(address); }

    std::string PathOfModuleAt(const void* address) override {
        HMODULE module = FindModule(address);
        return module != nullptr ? FileNameOf(module) : std::string();
    }

    std::string LastLoadFailure() override { return lastLoadFailure; }
};

}  // namespace

std::string LibraryFileName(std::string_view name) {
    return std::string(name) + ".dll";
}
std::string SharedLibraryPath(std::string_view name) {
    return "bin\\" + LibraryFileName(name);
}
std::string ProgramFileName(std::string_view name) {
    return std::string(name) + ".exe";
}

void KeepModuleLoaded(const void* addressInIt) {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       static_cast<const wchar_t*>(addressInIt), &module);
}

template <>
DynamicLibraries& SystemDefault<DynamicLibraries>() {
    static WindowsDynamicLibraries libraries;
    return libraries;
}

}  // namespace platform
