#include "scan/CleanName.h"

#include "PrintableText.h"
#include "common/Limits.h"

namespace pellwick {

std::string CleanName(const std::string& name) {
    const std::string clean = WithoutUnprintables(name.substr(0, kMaxNameSize));
    const size_t first = clean.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return clean.substr(first, clean.find_last_not_of(' ') - first + 1);
}

}  // namespace pellwick
