#include "agent/NewNames.h"

#include <nlohmann/json.hpp>

#include "PrintableText.h"
#include "StringConversion.h"
#include "agent/CommandContext.h"
#include "common/FontManagerLimits.h"

namespace pellwick {

std::string NewName(const Json& arguments, const char* member, const std::string& what) {
    std::string name = StringMember(arguments, member);
    if (IsBlank(name))
        throw CommandError(CoreErrorCodes::kMissingParam, "give " + what);
    const char* fault = name.size() > kMaxNameSize ? "is too long; choose a shorter one"
                        : !IsValidUtf8(name)       ? "is not valid UTF-8; type it again"
                        : !IsPlainText(name) ? "holds characters that cannot be seen; type it without them"
                                             : nullptr;
    if (fault != nullptr)
        throw CommandError(CoreErrorCodes::kInvalidParam, what + " " + fault);
    return name;
}

}  // namespace pellwick
