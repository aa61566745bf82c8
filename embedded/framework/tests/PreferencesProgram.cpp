// Uses the framework as a host does, for tests that kill it or let its writes fail.
//
//   framework-preferences-program LIBRARY count KEY TIMES   stores ever higher numbers and prints each
//   framework-preferences-program LIBRARY obey              answers the lines usable, store NUMBER and read
#include <CoreFoundation++/CFRef.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "VantorixPluginFramework.h"
#include "platform/DynamicLibrary.h"

namespace {

VantorixPluginFramework* CreateFramework(const char* path) {
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    platform::SystemError error;
    const platform::LibraryHandle library = libraries.LoadFromPath(path, error);
    const auto create = library == nullptr
                            ? nullptr
                            : reinterpret_cast<CreateVantorixPluginFrameworkFunction>(
                                  libraries.FindSymbol(library, kCreateVantorixPluginFramework));
    return create != nullptr ? create(VantorixPluginFramework::kInterfaceVersion, "plug-in", nullptr)
                             : nullptr;
}

int Count(VantorixPluginFramework& framework, const char* key, int times) {
    for (int64_t value = framework.GetIntPreference(key) + 1; times > 0; ++value, --times) {
        if (!framework.SetIntPreference(key, value))
            return 1;
        std::printf("%lld\n", static_cast<long long>(value));
        std::fflush(stdout);
    }
    return 0;
}

int Obey(VantorixPluginFramework& framework) {
    for (std::string line; std::getline(std::cin, line);) {
        int64_t answer = 0;
        if (line == "usable")
            answer = framework.IsPreferenceStoreUsable() ? 1 : 0;
        else if (line == "read")
            answer = framework.GetIntPreference("number");
        else
            answer = framework.SetIntPreference("number", std::atoll(line.c_str() + line.find(' '))) ? 1 : 0;
        std::printf("%lld\n", static_cast<long long>(answer));
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    VantorixPluginFramework* framework = argc > 2 ? CreateFramework(argv[1]) : nullptr;
    if (framework == nullptr)
        return 2;
    const int result = argc == 5 ? Count(*framework, argv[3], std::atoi(argv[4])) : Obey(*framework);
    framework->Release();
    return result;
}
