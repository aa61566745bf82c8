#include "platform/SystemError.h"

namespace platform {

// The C++ library's texts for the system's own numbers are not UTF-8 everywhere.
std::string SystemErrorText(const std::error_code& error) {
    return error.category() == std::system_category() ? SystemErrorText(SystemError{error.value()})
                                                      : error.message();
}

std::string WriteFailureText(const std::string& path, SystemError error) {
    const std::string what = path + " cannot be written: ";
    if (error.IsDiskFull())
        return what + "the disk is full; make room on it and try again";
    return what + SystemErrorText(error) + "; see to the folder and its disk and try again";
}

}  // namespace platform
