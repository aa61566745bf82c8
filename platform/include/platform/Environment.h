// What surrounds the process: environment variables, terminal, language.
#pragma once

#include <string>

namespace platform {

/// The variable's value, UTF-8; empty when unset.
std::string EnvironmentVariable(const char* name);

/// Sets a variable for this process and the ones that it starts; no value takes it away. Not while other
/// threads read the environment.
void SetEnvironment(const char* name, const std::string& value);

enum class StandardStream { kInput, kOutput, kError };
/// True when a person sits at the other end.
bool IsTerminal(StandardStream stream);
/// How many columns it shows a person; 0 when it is not a terminal, or does not tell.
int TerminalWidth(StandardStream stream);

/// The user's language as a two-letter code in lower case ("en", "de"); "en" when none is set. On Windows the system's,
/// unless PLUGINCORE_PORTABLE is set: then the variables that tell it elsewhere, LC_ALL and the rest.
std::string UserLanguage();

}  // namespace platform
