#include "common/Protocol.h"

namespace pellwick {
namespace member {
namespace {

constexpr Method kMethods[] = {
#define PELLWICK_METHOD_ROW(name, arguments, result) {#name, MemberNames arguments, MemberNames result},
    PELLWICK_METHODS(PELLWICK_METHOD_ROW)
#undef PELLWICK_METHOD_ROW
};

}  // namespace
}  // namespace member

const Method* FindMethod(std::string_view name) {
    for (const Method& method : member::kMethods) {
        if (method.name == name)
            return &method;
    }
    return nullptr;
}

std::string ShownWorkgroupName(const std::string& name) {
    constexpr std::string_view kMark = kNameToBeLocalized;
    return name.ends_with(kMark) ? name.substr(0, name.size() - kMark.size()) : name;
}

}  // namespace pellwick
