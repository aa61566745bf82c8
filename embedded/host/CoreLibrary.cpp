#include "CoreLibrary.h"

#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Processes.h"

std::string CoreLibrary::DefaultPath() {
    const std::string program = platform::Current<platform::Processes>().CurrentExecutablePath();
    const std::string folder = program.substr(0, program.rfind(platform::kPathSeparator));
    const std::string prefix = folder.substr(0, folder.rfind(platform::kPathSeparator) + 1);
    return prefix + platform::SharedLibraryPath("PluginCore");
}

bool CoreLibrary::Load(const std::string& path, std::string& error) {
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    platform::SystemError systemError;
    const platform::LibraryHandle library = libraries.LoadFromPath(platform::FullPath(path), systemError);
    if (library == nullptr) {
        error = libraries.LastLoadFailure();
        if (error.empty())
            error = path + ": " + platform::SystemErrorText(systemError);
        return false;
    }
#define BIND_EXPORT(name)                                                          \
    name = reinterpret_cast<decltype(name)>(libraries.FindSymbol(library, #name)); \
    if (name == nullptr) {                                                         \
        error = path + " has no function " #name;                                  \
        return false;                                                              \
    }
    PLUGINCORE_FUNCTIONS(BIND_EXPORT)
#undef BIND_EXPORT
    return true;
}
