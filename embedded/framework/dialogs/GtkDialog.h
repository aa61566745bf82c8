// What all dialogs have in common: their window, and texts that may hold anything.
#pragma once

#include <gtk/gtk.h>

#include <nlohmann/json.hpp>
#include <set>
#include <string>

/// Texts as they may be shown: one that others wrote changes neither the direction of the text around it nor the look
/// of anything. Line ends stay; what nobody reads of a long line is left out.
std::string ShownText(const std::string& text);
/// The same in one line.
std::string ShownLine(const std::string& text);

/// Gives labels their keys, each once in a dialog.
class Mnemonics {
public:
    /// The label with an underscore before the letter of its key, as GTK takes it.
    std::string Add(const std::string& label);

private:
    std::set<char> mUsed;
};

/// A dialog's window without content. `request` names the host that it belongs to.
GtkDialog* MakeDialogWindow(const nlohmann::json& request, const std::string& title);

void WrapLabel(GtkLabel* label, bool isHeading = false);
/// A paragraph, wrapped as needed.
GtkWidget* MakeParagraph(const std::string& text, bool isHeading = false);

/// `content`, in something that scrolls where it is higher than so many percent of the screen.
GtkWidget* ScrolledIfHigh(GtkWidget* content, int percent);

/// Shows the dialog in front of the host and waits: for the number of a button, or a negative one where it was closed.
int RunInFront(GtkDialog* dialog, const nlohmann::json& request);
/// Shows it without waiting.
void ShowInFront(GtkDialog* dialog, const nlohmann::json& request);
