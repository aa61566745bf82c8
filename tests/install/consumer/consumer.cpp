// A host in C++ that binds the core at run time: AfterConsumer LIBRARY. Prints how many functions it has.
#include <PluginCoreInterface.h>
#include <VantorixPluginFramework.h>
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
    if (library == nullptr)
        return 1;
    int count = 0;
#define COUNT_IF_BOUND(name) count += dlsym(library, #name) != nullptr;
    PLUGINCORE_FUNCTIONS(COUNT_IF_BOUND)
    std::printf("%d functions, version %d of the framework's interface\n", count,
                static_cast<int>(VantorixPluginFramework::kInterfaceVersion));
    const auto getVersion = reinterpret_cast<decltype(&GetAPIVersion)>(dlsym(library, "GetAPIVersion"));
    uint32_t version = 0;
    return getVersion(&version, 0) == PLUGINCORE_SUCCESS && version == PLUGINCORE_INTERFACE_VERSION ? 0 : 1;
}
