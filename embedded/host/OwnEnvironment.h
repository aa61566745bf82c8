// Environment variables by which this program tells the core what it wants. A program that it becomes is not to have them.
#pragma once

#include <string>

namespace OwnEnvironment {

/// For this process and what the core starts.
void Set(const char* name, const std::string& value);
/// Gives all that was set the value that it had before.
void Restore();

}  // namespace OwnEnvironment
