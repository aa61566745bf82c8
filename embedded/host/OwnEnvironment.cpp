#include "OwnEnvironment.h"

#include <map>

#include "platform/Environment.h"

namespace {

std::map<std::string, std::string> before;

}  // namespace

namespace OwnEnvironment {

void Set(const char* name, const std::string& value) {
    before.emplace(name, platform::EnvironmentVariable(name));
    platform::SetEnvironment(name, value);
}

void Restore() {
    for (const auto& [name, value] : before)
        platform::SetEnvironment(name.c_str(), value);
    before.clear();
}

}  // namespace OwnEnvironment
