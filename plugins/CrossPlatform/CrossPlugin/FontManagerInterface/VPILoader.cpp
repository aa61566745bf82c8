#include "VPILoader.h"

#include <memory>

#include "AgentLauncher.h"
#include "HostPatience.h"
#include "StringConversion.h"
#include "platform/VersionResource.h"

namespace {

constexpr size_t kLongestModuleFileName = 260;
constexpr size_t kLongestVersion = 255;
// Two more than there are functions: the library was never loaded.
constexpr uint32_t kNeverLoaded = 88;
// The functions after TrackFontPanelClick came later; older libraries pass the validation without them.
constexpr int kValidatedFunctionCount = 79;

/// Calls `visit(symbol, pointer)` for each entry, in table order. The pointer is a reference.
template <class Table, class Visitor>
void ForEachFunction(Table& table, Visitor&& visit) {
#define VISIT_PLUGIN_FUNCTION(symbol, parameters) visit(#symbol, table.pf##symbol);
    TARNWICK_PLUGIN_FUNCTIONS(VISIT_PLUGIN_FUNCTION)
#undef VISIT_PLUGIN_FUNCTION
}

/// The font manager's own log, reached through the shared loader.
class FontManagerLog : public TraceSink {
public:
    bool IsReady() override { return VPILoader::GetSharedInstance()->pfLog != nullptr; }
    void BeginLogging(const char* path) override {
        const VPILoader* loader = VPILoader::GetSharedInstance();
        if (loader->pfBeginLogging != nullptr)
            loader->pfBeginLogging(loader->ThreadInstance(), path);
    }
    void Log(const char* text) override {
        const VPILoader* loader = VPILoader::GetSharedInstance();
        if (loader->pfLog != nullptr)
            loader->pfLog(loader->ThreadInstance(), text);
    }
};

FontManagerLog fontManagerLog;

}  // namespace

VPILoader* VPILoader::sm_pSharedInstance = nullptr;

VPILoader* VPILoader::GetSharedInstance() {
    if (sm_pSharedInstance != nullptr)
        return sm_pSharedInstance;
    const TraceScope trace(
        [] {
            LogMessage(-1, "Exiting first call to VPILoader::GetSharedInstance(); sSharedInstance=0x%08x",
                       TraceAddress(sm_pSharedInstance));
        },
        "Entering first call to VPILoader::GetSharedInstance()");
    sm_pSharedInstance = std::unique_ptr<VPILoader>(new VPILoader).release();  // lives to process end
    sm_pSharedInstance->FindAndLoad();
    return sm_pSharedInstance;
}

VPILoader::VPILoader() : mMissingCount(kNeverLoaded) {
    Bind(nullptr);
    Validate(Expectation::kAllUnbound);
}

VPILoader::~VPILoader() {
    SetTraceSink(nullptr);
    sm_pSharedInstance = nullptr;
}

void VPILoader::FindAndLoad() {
    bool isAgentFound =
        AgentLauncher::GetPathToRunningProcessExe(platform::ProgramFileName("Pellwick"), mLibraryPath) == 0;
    if (!isAgentFound) {
        isAgentFound = AgentLauncher::FindAndLaunchPellwick(&mLibraryPath) == 0;
        HostPatience::NoteRecovery();
    }
    const platform::LibraryHandle library = isAgentFound ? LoadLibraryOfAgent() : LoadLibraryByName();

    platform::SystemError error;
    auto& versions = platform::Current<platform::VersionResources>();
    mVersion = ReplaceInvalidUtf8(
        versions.FromFile(mLibraryPath, "PrivateBuild", error).value_or("").substr(0, kLongestVersion));

    if (library == nullptr) {
        LogMessage(0, "ERROR:  cannot find %s",
                   platform::LibraryFileName(AgentLauncher::kInterfaceLibrary).c_str());
        return;
    }
    mMissingCount = 0;
    Bind(library);
    Validate(Expectation::kAllBound);
}

void VPILoader::LogIntoFontManager() {
    SetTraceSink(&fontManagerLog);
}

platform::LibraryHandle VPILoader::LoadLibraryOfAgent() {
    mLibraryPath += platform::LibraryFileName(AgentLauncher::kInterfaceLibrary);
    platform::SystemError error;
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    const platform::LibraryHandle library = libraries.LoadFromPath(mLibraryPath, error);
    if (library != nullptr) {
        LogMessage(0, "SUCCESS: LoadLibraryA('%s') returned 0x%08x", mLibraryPath.c_str(),
                   TraceAddress(library));
    } else {
        LogMessage(0, "LoadLibraryA('%s') returned error code 0x%08x (%d)", mLibraryPath.c_str(),
                   static_cast<unsigned>(error.code), error.code);
    }
    return library;
}

platform::LibraryHandle VPILoader::LoadLibraryByName() {
    const std::string name = platform::LibraryFileName(AgentLauncher::kInterfaceLibrary);
    platform::SystemError error;
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    const platform::LibraryHandle library = libraries.LoadByName(name, error);
    if (library == nullptr) {
        LogMessage(0, "LoadLibraryA('%s') returned error code 0x%08x (%d)", name.c_str(),
                   static_cast<unsigned>(error.code), error.code);
        return nullptr;
    }
    const std::string path = libraries.PathOf(library);
    if (!path.empty() && Utf16Length(path) < kLongestModuleFileName) {
        mLibraryPath = path;
        LogMessage(0, "SUCCESS: LoadLibraryA('%s') returned 0x%08x; path='%s'", name.c_str(),
                   TraceAddress(library), path.c_str());
    } else {
        LogMessage(0, "Failure in GetModuleFileNameA(0x%08x, '%s', ...); GetLastError() returned 0x%08x",
                   TraceAddress(library), name.c_str(),
                   static_cast<unsigned>(platform::LastSystemError().code));
    }
    return library;
}

void VPILoader::Bind(platform::LibraryHandle library) {
    if (library == nullptr) {
        static_cast<PluginFunctionTable&>(*this) = PluginFunctionTable{};
        return;
    }
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    ForEachFunction(*this, [&]<class Function>(const char* symbol, Function& function) {
        function = reinterpret_cast<Function>(libraries.FindSymbol(library, symbol));
        LogMessage(0, "GetProcAddress(0x%08x, '%s') returned 0x%08x", TraceAddress(library), symbol,
                   TraceAddress(reinterpret_cast<const void*>(function)));
        if (function == nullptr)
            ++mMissingCount;
    });
}

bool VPILoader::Validate(Expectation expectation) const {
    const bool expectBound = expectation == Expectation::kAllBound;
    bool isAsExpected = true;
    int index = 0;
    ForEachFunction(*this, [&](const char* symbol, const auto& function) {
        if (index++ >= kValidatedFunctionCount || (function != nullptr) == expectBound)
            return;
        LogMessage(0, "ERROR:  this->pf%s is %sNULL.", symbol, expectBound ? "" : "not ");
        isAsExpected = false;
    });
    return isAsExpected;
}

bool VPILoader::IsLoaded(std::string* path, std::string* version, uint32_t* missingCount) const {
    if (path == nullptr || version == nullptr || missingCount == nullptr) {
        LogMessage(0, "VPILoader::IsLoaded() returning false because it was called incorrectly.");
        return false;
    }
    *path = mLibraryPath;
    *version = mVersion;
    *missingCount = mMissingCount;
    if (mMissingCount == 0)
        return true;
    if (mMissingCount == kNeverLoaded)
        LogMessage(0, "VPILoader::IsLoaded() returning false because all %d functions are missing.",
                   static_cast<int>(kNeverLoaded));
    else
        LogMessage(0, "VPILoader::IsLoaded() returning false because of one or more null inputs.");
    return false;
}

CFStringRef VPILoader::VersionStringRef() const {
    LogMessage(0, "VPILoader::VersionStringRef() returning '%s'", mVersion.c_str());
    return cf::String(mVersion).release();
}

PluginThreadInstanceRef VPILoader::ThreadInstance() const {
    // Instances stay with the library, which gives them up with the process: a thread that ends inside a host
    // may do so after the library was told to clean up.
    thread_local PluginThreadInstanceRef instance = nullptr;
    if (instance == nullptr && pfInitThreadInstance != nullptr && pfInitThreadInstance(&instance) != 0)
        instance = nullptr;
    return instance;
}
