#include "dialogs/ProgressWindow.h"

#include <algorithm>
#include <string>

#include "dialogs/GtkDialog.h"

namespace {
constexpr int kBarWidth = 360;  // pixels
}

ProgressWindow::ProgressWindow(const nlohmann::json& request)
    : mDialog(MakeDialogWindow(request, request.at("title").get<std::string>())),
      mBar(gtk_progress_bar_new()) {
    GtkWidget* content = gtk_dialog_get_content_area(mDialog);
    const auto title = request.at("title").get<std::string>();
    gtk_box_pack_start(GTK_BOX(content), MakeParagraph(title, true), FALSE, FALSE, 0);
    gtk_progress_bar_set_show_text(GTK_PROGRESS_BAR(mBar), TRUE);
    gtk_progress_bar_set_text(GTK_PROGRESS_BAR(mBar), "");
    gtk_widget_set_size_request(mBar, kBarWidth, -1);
    atk_object_set_name(gtk_widget_get_accessible(mBar), ShownLine(title).c_str());
    gtk_box_pack_start(GTK_BOX(content), mBar, FALSE, FALSE, 0);
    gtk_dialog_add_button(mDialog, Mnemonics().Add(request.at("cancel").get<std::string>()).c_str(),
                          GTK_RESPONSE_CANCEL);
    gtk_window_set_resizable(GTK_WINDOW(mDialog), FALSE);
}

void ProgressWindow::ShowStep(int done, int total) {
    const int shown = std::clamp(done, 0, total);
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(mBar), static_cast<double>(shown) / std::max(total, 1));
    gtk_progress_bar_set_text(GTK_PROGRESS_BAR(mBar),
                              (std::to_string(shown) + " / " + std::to_string(total)).c_str());
}

void ProgressWindow::WaitForStop(const nlohmann::json& request) {
    RunInFront(mDialog, request);
    // It stays until the work has heard of it.
    gtk_widget_set_sensitive(GTK_WIDGET(mDialog), FALSE);
}
