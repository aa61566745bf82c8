// How far a work has come.
#pragma once

#include <gtk/gtk.h>

#include <nlohmann/json.hpp>

class ProgressWindow {
public:
    explicit ProgressWindow(const nlohmann::json& request);

    void ShowStep(int done, int total);
    /// Waits until the user wants the work to stop.
    void WaitForStop(const nlohmann::json& request);

private:
    GtkDialog* const mDialog;
    GtkWidget* const mBar;
};
