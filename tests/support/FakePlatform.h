// System services that answer as a test says.
#pragma once

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <new>

#include "platform/Clock.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Processes.h"
#include "platform/VersionResource.h"
#include "platform/Windowing.h"

/// Where things are in a world of fakes.
namespace fake_paths {
inline const std::string kAgent = "/agent/" + platform::ProgramFileName("Pellwick");
inline const std::string kInterfaceLibrary =
    "/agent/" + platform::LibraryFileName("TarnwickPluginInterfaceX64");
inline const std::string kFramework = "/plugins/" + platform::LibraryFileName("TarnwickPluginFramework");
}  // namespace fake_paths

class FakeChildProcess : public platform::ChildProcess {
public:
    explicit FakeChildProcess(std::optional<int> exitStatus) : mExitStatus(exitStatus) {}
    platform::ProcessId Id() const override { return 4711; }
    bool WaitUntilIdle(std::chrono::milliseconds) override { return !mExitStatus; }
    std::optional<int> ExitStatus() override { return mExitStatus; }

private:
    std::optional<int> mExitStatus;
};

class FakeProcesses : public platform::Processes {
public:
    std::vector<platform::ProcessInfo> running;
    platform::SystemError listError;
    std::deque<int> launchErrors;  ///< of the first launches; those after them succeed
    std::optional<int> childExitStatus;
    std::vector<std::string> launchedCommandLines;
    std::string currentName = "Illustrator2025";

    platform::SystemError List(const NameFilter& isWanted,
                               std::vector<platform::ProcessInfo>& processes) override {
        std::copy_if(running.begin(), running.end(), std::back_inserter(processes),
                     [&](const auto& each) { return isWanted(platform::NamePart(each.executablePath)); });
        return listError;
    }
    std::unique_ptr<platform::ChildProcess> Launch(const std::string&, const std::string& commandLine,
                                                   platform::SystemError& error) override {
        launchedCommandLines.push_back(commandLine);
        error = {};
        if (!launchErrors.empty()) {
            error.code = launchErrors.front();
            launchErrors.pop_front();
        }
        return error ? nullptr : std::make_unique<FakeChildProcess>(childExitStatus);
    }
    std::string CurrentName() override { return currentName; }
    std::string CurrentExecutablePath() override { return "/host/" + currentName; }
    bool IsElevated() override { return false; }

private:
    platform::ScopedOverride<platform::Processes> mOverride{*this};
};

class FakeFolders : public platform::Folders {
public:
    std::map<platform::KnownFolder, std::string> paths;

    std::string PathOf(platform::KnownFolder folder) override { return paths[folder]; }

private:
    platform::ScopedOverride<platform::Folders> mOverride{*this};
};

class FakeVersionResources : public platform::VersionResources {
public:
    std::map<std::pair<std::string, std::string>, std::string> values;  ///< by path and key

    std::optional<std::string> FromFile(const std::string& path, const char* key,
                                        platform::SystemError& error) override {
        const auto found = values.find({path, key});
        error = {};
        return found != values.end() ? std::optional(found->second) : std::nullopt;
    }
    std::optional<std::string> FromModuleAt(const void* address, const char* key,
                                            platform::SystemError& error, size_t* resourceSize) override {
        if (resourceSize != nullptr)
            *resourceSize = values.size();
        return FromFile(platform::Current<platform::DynamicLibraries>().PathOfModuleAt(address), key, error);
    }

private:
    platform::ScopedOverride<platform::VersionResources> mOverride{*this};
};

/// Libraries are the paths and names in `loadable`; symbols are those in `symbols`.
class FakeLibraries : public platform::DynamicLibraries {
public:
    std::vector<std::string> loadable;
    std::string exhausting;  ///< the library for which there is no memory
    std::map<std::string, void*> symbols;
    bool isModuleKnown = true;  ///< the core's own

    platform::LibraryHandle LoadFromPath(const std::string& path, platform::SystemError& error) override {
        return Load(path, error);
    }
    platform::LibraryHandle LoadByName(const std::string& fileName, platform::SystemError& error) override {
        return Load(fileName, error);
    }
    void* FindSymbol(platform::LibraryHandle, const char* symbol) override {
        const auto found = symbols.find(symbol);
        return found != symbols.end() ? found->second : nullptr;
    }
    std::string PathOf(platform::LibraryHandle) override { return "/system/library.so"; }
    const void* ModuleAt(const void* address) override { return isModuleKnown ? address : nullptr; }
    std::string PathOfModuleAt(const void*) override { return "/plugins/libPluginCore.so"; }
    std::string LastLoadFailure() override { return "no such library"; }

private:
    platform::LibraryHandle Load(const std::string& name, platform::SystemError& error) {
        if (name == exhausting)
            throw std::bad_alloc();
        for (std::string& each : loadable) {
            if (each == name)
                return &each;
        }
        error.code = 2;
        return nullptr;
    }
    platform::ScopedOverride<platform::DynamicLibraries> mOverride{*this};
};

class FakeClock : public platform::Clock {
public:
    uint32_t ticks = 1000;
    uint32_t ticksPerLook = 0;  ///< goes on by so much whenever it is looked at
    int64_t seconds = 1700000000;

    uint32_t TickCount() override { return ticks += ticksPerLook; }
    int64_t Now() override { return seconds; }

private:
    platform::ScopedOverride<platform::Clock> mOverride{*this};
};

class FakeWindowing : public platform::Windowing {
public:
    std::map<std::string, platform::WindowHandle> byClass;
    std::vector<platform::WindowInfo> topLevel;
    std::map<platform::WindowHandle, std::vector<platform::WindowInfo>> below;
    std::vector<unsigned> notices;

    platform::WindowHandle FindTopLevelByClass(const std::string& className) override {
        return byClass[className];
    }
    std::vector<platform::WindowInfo> TopLevelWindows() override { return topLevel; }
    std::vector<platform::WindowInfo> Descendants(platform::WindowHandle window) override {
        return below[window];
    }
    void ShowStringResourceNotice(const std::string&, unsigned stringID, const std::string&) override {
        notices.push_back(stringID);
    }

private:
    platform::ScopedOverride<platform::Windowing> mOverride{*this};
};
