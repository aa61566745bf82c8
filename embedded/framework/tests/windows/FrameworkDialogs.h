// Everything that the framework's library can show, each with something in it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/LoadedFramework.h"

struct FrameworkDialog {
    std::string name;  ///< as part of a file's name
    std::function<void(VantorixPluginFramework& framework)> open;
};

std::vector<FrameworkDialog> FrameworkDialogs(const std::string& libraryPath);
