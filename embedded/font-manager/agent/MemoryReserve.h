// Memory that is set aside for the moment when there is no other.
//
// What fails for lack of memory is cleaned up after, and that may take some, too: a JSON value is destroyed
// with the help of a list of its parts. The first allocation that fails frees the reserve for that, and still
// fails.
#pragma once

namespace pellwick::memory_reserve {

/// Sets the reserve aside, unless that is done or there is no memory for it. Memory that is not written to
/// costs nothing. One thread.
void Restore() noexcept;

}  // namespace pellwick::memory_reserve
