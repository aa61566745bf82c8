// The dialogs as forms in a terminal.
#pragma once

#include "presenters/Dialogs.h"
#include "presenters/Terminal.h"

// Each shows the dialog and asks, and answers whether the user confirmed it: not at the end of input.

bool AskInTerminal(Terminal& terminal, AboutDialog& dialog);
bool AskInTerminal(Terminal& terminal, PreferencesDialog& dialog);
bool AskInTerminal(Terminal& terminal, SelectWorkgroupDialog& dialog);
bool AskInTerminal(Terminal& terminal, CommandBoxDialog& dialog);
bool AskInTerminal(Terminal& terminal, ResolveFontsDialog& dialog);
bool AskInTerminal(Terminal& terminal, RestrictedFontsDialog& dialog);
bool AskInTerminal(Terminal& terminal, ChooseFolderDialog& dialog);
