#include "platform/SystemError.h"

namespace platform {

// The C++ library's texts for the system's own numbers are not UTF-8 everywhere.
std::string SystemErrorText(const std::error_code& error) {
    return error.category() == std::system_category() ? SystemErrorText(SystemError{error.value()})
                                                      : error.message();
}

}  // namespace platform
