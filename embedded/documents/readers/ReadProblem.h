// Why a document cannot be read.
#pragma once

#include <stdexcept>

namespace documents {

/// The message goes on from "the document cannot be read: it ", in one line.
class ReadProblem : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace documents
