// Uses the framework as a host does, for tests that kill it or let its writes fail.
//
//   framework-preferences-program LIBRARY count KEY TIMES   stores ever higher numbers and prints each
//   framework-preferences-program LIBRARY obey              answers the lines usable, store NUMBER and read
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "LoadedFramework.h"

namespace {

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
        const int64_t answer = line == "usable" ? framework.IsPreferenceStoreUsable()
                               : line == "read" ? framework.GetIntPreference("number")
                                                : framework.SetIntPreference(
                                                      "number", std::atoll(line.c_str() + line.find(' ')));
        std::printf("%lld\n", static_cast<long long>(answer));
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const auto create = argc > 2 ? FrameworkFactory(argv[1]) : nullptr;
    if (create == nullptr)
        return 2;
    const OwnedFramework framework(create(VantorixPluginFramework::kInterfaceVersion, "plug-in", nullptr));
    return argc == 5 ? Count(*framework, argv[3], std::atoi(argv[4])) : Obey(*framework);
}
