// Everything that the framework's library can show, each with something in it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "VantorixPluginFramework.h"

struct FrameworkReleaser {
    void operator()(VantorixPluginFramework* framework) const { framework->Release(); }
};
using OwnedFramework = std::unique_ptr<VantorixPluginFramework, FrameworkReleaser>;

/// From the library at that path, as a host gets it; null when it cannot be had.
OwnedFramework LoadFramework(const std::string& libraryPath);

struct FrameworkDialog {
    std::string name;  ///< as part of a file's name
    std::function<void(VantorixPluginFramework& framework)> open;
};

std::vector<FrameworkDialog> FrameworkDialogs(const std::string& libraryPath);
