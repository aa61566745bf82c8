#include "dialogs/FolderWindow.h"

#include <gtk/gtk.h>

#include <memory>

#include "DialogMessages.h"
#include "dialogs/GtkDialog.h"

namespace {

using platform::FolderAnswer;

/// In the toolkit's own words, as all of the chooser is.
const char* Word(const char* word) {
    return g_dgettext("gtk30", word);
}

FolderAnswer AnswerOf(GtkFileChooser* chooser) {
    const std::unique_ptr<gchar, decltype(&g_free)> path(gtk_file_chooser_get_filename(chooser), g_free);
    // A name that is not UTF-8 cannot be used.
    if (!path || !g_utf8_validate(path.get(), -1, nullptr))
        return {FolderAnswer::Outcome::kNoPath, {}};
    return {FolderAnswer::Outcome::kChosen, path.get()};
}

}  // namespace

nlohmann::json AskFolder(const nlohmann::json& request) {
    const auto folder = request.at("folder").get<std::string>();
    GtkDialog* dialog = MakeDialogWindow(request, "");
    GtkWidget* content = gtk_dialog_get_content_area(dialog);
    GtkWidget* chooser = gtk_file_chooser_widget_new(GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER);
    gtk_file_chooser_set_create_folders(GTK_FILE_CHOOSER(chooser), TRUE);
    if (!folder.empty())
        gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), folder.c_str());
    gtk_box_pack_start(GTK_BOX(content), MakeParagraph(request.at("prompt").get<std::string>()), FALSE, FALSE,
                       0);
    gtk_box_pack_start(GTK_BOX(content), chooser, TRUE, TRUE, 0);
    gtk_dialog_add_button(dialog, Word("_Cancel"), GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(dialog, Word("_Select"), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_ACCEPT);
    gtk_window_set_default_size(GTK_WINDOW(dialog), 720, 480);
    const bool isAccepted = RunInFront(dialog, request) == GTK_RESPONSE_ACCEPT;
    return platform::dialog_messages::FolderAnswerMessage(isAccepted ? AnswerOf(GTK_FILE_CHOOSER(chooser))
                                                                     : FolderAnswer());
}
