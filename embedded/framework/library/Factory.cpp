// The library's only export.
#include "library/TarnwickFramework.h"

extern "C" VantorixPluginFramework* CreateVantorixPluginFramework(uint32_t interfaceVersion,
                                                                  const char* pluginBundleIdentifier,
                                                                  CFDictionaryRef identification) noexcept {
    if (interfaceVersion != VantorixPluginFramework::kInterfaceVersion)
        return nullptr;
    return TarnwickFramework::Create(pluginBundleIdentifier, identification);
}
