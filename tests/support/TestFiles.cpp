#include "TestFiles.h"

#include "platform/Environment.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace {

std::string Below(const std::filesystem::path& folder, std::string_view path) {
    return platform::Utf8Text((folder / platform::Utf8Path(path)).make_preferred());
}

std::string Sources() {
    return platform::EnvironmentVariable("PLUGINCORE_SOURCES");
}

}  // namespace

std::string BuiltFile(std::string_view path) {
    static const std::string program = platform::SystemDefault<platform::Processes>().CurrentExecutablePath();
    return Below(platform::Utf8Path(program).parent_path().parent_path(), path);
}

bool HasSources() {
    return !Sources().empty();
}

std::string SourceFile(std::string_view path) {
    return Below(platform::Utf8Path(Sources()), path);
}
