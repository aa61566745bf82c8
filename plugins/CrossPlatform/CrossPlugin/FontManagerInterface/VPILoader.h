// The font manager's plug-in interface library, found beside the agent, loaded and bound by name at run time.
//
// Every call into the font manager goes through the function pointers of the shared instance. A pointer may
// be null, whatever the validation said: test it first.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <string>

#include "TarnwickPluginInterface.h"
#include "TraceLog.h"
#include "platform/DynamicLibrary.h"

/// The 86 functions, as pfActivateFonts and so on, in table order; null when unbound.
struct PluginFunctionTable {
#define DECLARE_PLUGIN_FUNCTION(symbol, parameters) PluginFunction_##symbol pf##symbol = nullptr;
    TARNWICK_PLUGIN_FUNCTIONS(DECLARE_PLUGIN_FUNCTION)
#undef DECLARE_PLUGIN_FUNCTION
};

/// Main thread; the table may be read by any thread after the first call of GetSharedInstance.
class VPILoader : public PluginFunctionTable {
public:
    /// The one loader, made and loaded on the first call; a load that failed is not tried again. Never null.
    static VPILoader* GetSharedInstance();

    /// Clears the shared pointer. The library stays loaded.
    virtual ~VPILoader();
    VPILoader(const VPILoader&) = delete;
    VPILoader& operator=(const VPILoader&) = delete;

    /// Copies what was loaded to the caller; true only when every function is bound. Null outputs answer
    /// false.
    bool IsLoaded(std::string* path, std::string* version, uint32_t* missingCount) const;

    /// From now on the trace goes into the font manager's log as well, once logging is switched on.
    void LogIntoFontManager();

    /// The version of the library, empty when it has none. The caller releases it.
    CFStringRef VersionStringRef() const;

    /// The calling thread's instance of the interface library, made on the thread's first call and kept; null
    /// when the library gives none.
    PluginThreadInstanceRef ThreadInstance() const;

private:
    VPILoader();

    enum class Expectation { kAllBound, kAllUnbound };

    void FindAndLoad();
    platform::LibraryHandle LoadLibraryOfAgent();
    platform::LibraryHandle LoadLibraryByName();
    void Bind(platform::LibraryHandle library);
    bool Validate(Expectation expectation) const;

    static VPILoader* sm_pSharedInstance;

    std::string mLibraryPath;  ///< first the agent's folder, then the library's full path
    std::string mVersion;
    uint32_t mMissingCount;
};
