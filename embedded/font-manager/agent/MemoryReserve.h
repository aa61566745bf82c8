// Memory that is set aside for the moment when there is no other.
//
// What fails for lack of memory is cleaned up after, and that takes some, too: a JSON value is destroyed with
// the help of a list of its parts. The first allocation that finds none is given half of the reserve. The
// next one fails, and leaves the other half for cleaning up.
#pragma once

namespace pellwick::memory_reserve {

/// Sets the reserve aside, unless that is done. False when there is no memory for it. Memory that is not
/// written to costs nothing. One thread.
bool Restore() noexcept;

}  // namespace pellwick::memory_reserve
