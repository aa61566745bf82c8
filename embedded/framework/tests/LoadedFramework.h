// The framework's library as a host gets it: loaded at run time.
#pragma once

#include <memory>

#include "Records.h"
#include "VantorixPluginFramework.h"
#include "platform/DynamicLibrary.h"

struct FrameworkReleaser {
    void operator()(VantorixPluginFramework* framework) const { framework->Release(); }
};
using OwnedFramework = std::unique_ptr<VantorixPluginFramework, FrameworkReleaser>;

/// The factory of the library at that path; null when it cannot be had.
inline CreateVantorixPluginFrameworkFunction FrameworkFactory(const std::string& libraryPath) {
    auto& libraries = platform::SystemDefault<platform::DynamicLibraries>();
    platform::SystemError error;
    const platform::LibraryHandle library = libraries.LoadFromPath(libraryPath, error);
    return library == nullptr ? nullptr
                              : reinterpret_cast<CreateVantorixPluginFrameworkFunction>(
                                    libraries.FindSymbol(library, kCreateVantorixPluginFramework));
}

/// For a plug-in in Illustrator; null when it cannot be had.
inline OwnedFramework LoadFramework(const std::string& libraryPath,
                                    uint32_t version = VantorixPluginFramework::kInterfaceVersion) {
    const auto create = FrameworkFactory(libraryPath);
    const auto identification = Record("HostApp", "Illustrator2025", "PluginVersion", "8.0.0");
    return OwnedFramework(create != nullptr ? create(version, "com.vantorix.Plugin", identification.get())
                                            : nullptr);
}
