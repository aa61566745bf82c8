#include "dialogs/FormWindow.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <vector>

#include "DialogMessages.h"
#include "dialogs/GtkDialog.h"

namespace {

namespace dialog_messages = platform::dialog_messages;
using platform::Form, platform::FormButton, platform::FormCheckBox, platform::FormChoices,
    platform::FormControl, platform::FormList, platform::FormText, platform::kFormCancelled;

constexpr int kFormSpace = 12;   // pixels
constexpr int kListWidth = 340;  // pixels
constexpr int kMostRowsShown = 12;
constexpr int kOptionWidth = 36;  // characters
constexpr int kIndentation = 18;  // pixels

/// While the wheel scrolls the rows, it changes nothing in those that it comes across.
gboolean LeaveToParent(GtkWidget* widget, GdkEvent*, gpointer) {
    g_signal_stop_emission_by_name(widget, "scroll-event");
    return GDK_EVENT_PROPAGATE;
}

void Respond(GtkWidget* button, gpointer number) {
    gtk_dialog_response(GTK_DIALOG(gtk_widget_get_toplevel(button)), GPOINTER_TO_INT(number));
}

/// gtk_window_activate_default would open a drop-down list that has the keyboard.
void PressDefault(GtkWidget* dialog) {
    if (GtkWidget* button = gtk_window_get_default_widget(GTK_WINDOW(dialog)))
        gtk_widget_activate(button);
}

void RespondByDefault(GtkTreeView* list, GtkTreePath*, GtkTreeViewColumn*, gpointer) {
    // The space bar selects.
    GdkEvent* event = gtk_get_current_event();
    const bool isClick = event != nullptr && event->type != GDK_KEY_PRESS;
    if (event != nullptr)
        gdk_event_free(event);
    if (isClick)
        PressDefault(gtk_widget_get_toplevel(GTK_WIDGET(list)));
}

/// Enter presses the default button, unless the keyboard is on another one.
gboolean TakeEnter(GtkWidget* dialog, GdkEventKey* event, gpointer) {
    if (event->keyval != GDK_KEY_Return && event->keyval != GDK_KEY_KP_Enter)
        return GDK_EVENT_PROPAGATE;
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(dialog));
    if (GTK_IS_BUTTON(focus) && !GTK_IS_TOGGLE_BUTTON(focus))
        return GDK_EVENT_PROPAGATE;
    PressDefault(dialog);
    return GDK_EVENT_STOP;
}

GtkWidget* MakeListView(const FormList& list) {
    GtkListStore* store = gtk_list_store_new(1, G_TYPE_STRING);
    for (const std::string& entry : list.entries)
        gtk_list_store_insert_with_values(store, nullptr, -1, 0, ShownLine(entry).c_str(), -1);
    GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
    g_object_unref(store);
    GtkCellRenderer* cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_MIDDLE, nullptr);
    GtkTreeViewColumn* column = gtk_tree_view_column_new_with_attributes("", cell, "text", 0, nullptr);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), column);
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(view), TRUE);
    gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(view), FALSE);
    gtk_tree_view_set_tooltip_column(GTK_TREE_VIEW(view), -1);
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(GTK_TREE_VIEW(view)),
                                list.isSelectable ? GTK_SELECTION_SINGLE : GTK_SELECTION_NONE);
    if (list.isSelectable)
        g_signal_connect(view, "row-activated", G_CALLBACK(RespondByDefault), nullptr);
    if (list.selected && *list.selected < list.entries.size()) {
        GtkTreePath* path = gtk_tree_path_new_from_indices(static_cast<gint>(*list.selected), -1);
        gtk_tree_view_set_cursor(GTK_TREE_VIEW(view), path, nullptr, FALSE);
        gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(view), path, nullptr, TRUE, 0.5F, 0);
        gtk_tree_path_free(path);
    }
    return view;
}

int RowHeight(GtkWidget* view) {
    PangoLayout* layout = gtk_widget_create_pango_layout(view, "Ág");
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    g_object_unref(layout);
    return height + 6;
}

/// The form's window, and how to read what was done in it.
class FormWindow {
public:
    FormWindow(Form form, const nlohmann::json& request)
        : mForm(std::move(form)),
          mDialog(MakeDialogWindow(request, mForm.title)),
          mColumn(gtk_box_new(GTK_ORIENTATION_VERTICAL, kFormSpace)) {
        for (const FormControl& control : mForm.controls)
            std::visit([this](const auto& each) { mWidgets.push_back(Add(each)); }, control);
        const std::string icon = request.value("icon", "");
        GtkWidget* body = ScrolledIfHigh(mColumn, 60);
        gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(mDialog)),
                           icon.empty() ? body : BesideIcon(body, icon), TRUE, TRUE, 0);
        // On this desktop the one that agrees stands at the end.
        for (auto button = mForm.buttons.rbegin(); button != mForm.buttons.rend(); ++button)
            gtk_dialog_add_button(mDialog, mMnemonics.Add(button->label).c_str(), button->number);
        gtk_window_set_resizable(GTK_WINDOW(mDialog), mGrows || body != mColumn);
        g_signal_connect(mDialog, "key-press-event", G_CALLBACK(TakeEnter), nullptr);
        ChooseDefault();
    }

    /// The number of the button; `form` holds what was chosen.
    int Run(const nlohmann::json& request) {
        const int pressed = std::max(RunInFront(mDialog, request), kFormCancelled);
        for (size_t index = 0; index < mWidgets.size(); ++index)
            std::visit([&](auto& control) { Read(control, mWidgets[index]); }, mForm.controls[index]);
        return pressed;
    }

    const Form& Result() const { return mForm; }

private:
    /// What of a control is read when the form is done.
    using Widgets = std::vector<GtkWidget*>;

    static GtkWidget* BesideIcon(GtkWidget* body, const std::string& icon) {
        GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kFormSpace);
        GtkWidget* image = gtk_image_new_from_icon_name(icon.c_str(), GTK_ICON_SIZE_DIALOG);
        gtk_widget_set_valign(image, GTK_ALIGN_START);
        gtk_box_pack_start(GTK_BOX(row), image, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(row), body, TRUE, TRUE, 0);
        return row;
    }

    void Append(GtkWidget* widget, bool grows = false) {
        gtk_box_pack_start(GTK_BOX(mColumn), widget, grows, grows, 0);
        mGrows = mGrows || grows;
    }

    Widgets Add(const FormText& text) {
        Append(MakeParagraph(text.text, text.isHeading));
        return {};
    }
    Widgets Add(const FormCheckBox& box) {
        GtkWidget* check = gtk_check_button_new_with_mnemonic(mMnemonics.Add(box.label).c_str());
        WrapLabel(GTK_LABEL(gtk_bin_get_child(GTK_BIN(check))));
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check), box.isChecked);
        Append(check);
        NoteFirst(check);
        return {check};
    }
    Widgets Add(const FormList& list) {
        GtkWidget* view = MakeListView(list);
        atk_object_set_name(gtk_widget_get_accessible(view), ShownLine(mForm.title).c_str());
        GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
        gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
        const int rows = std::clamp(static_cast<int>(list.entries.size()), 4, kMostRowsShown);
        gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), rows * RowHeight(view));
        gtk_scrolled_window_set_min_content_width(GTK_SCROLLED_WINDOW(scrolled), kListWidth);
        gtk_container_add(GTK_CONTAINER(scrolled), view);
        Append(scrolled, true);
        NoteFirst(view);
        return {view};
    }
    Widgets Add(const FormChoices& choices) {
        GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, kFormSpace);
        Widgets dropDowns;
        for (const FormChoices::Row& row : choices.rows)
            dropDowns.push_back(AddRow(GTK_BOX(column), row));
        Append(ScrolledIfHigh(column, 45), true);
        return dropDowns;
    }
    GtkWidget* AddRow(GtkBox* column, const FormChoices::Row& row) {
        GtkWidget* label = MakeParagraph(row.label);
        GtkWidget* together = gtk_box_new(GTK_ORIENTATION_VERTICAL, kFormSpace / 3);
        gtk_box_pack_start(GTK_BOX(together), label, FALSE, FALSE, 0);
        gtk_box_pack_start(column, together, FALSE, FALSE, 0);
        if (row.options.empty())
            return nullptr;
        GtkWidget* dropDown = gtk_combo_box_text_new();
        for (const std::string& option : row.options)
            gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(dropDown), ShownLine(option).c_str());
        gtk_combo_box_set_active(GTK_COMBO_BOX(dropDown), static_cast<gint>(row.selected));
        GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(dropDown));
        g_object_set(cells->data, "ellipsize", PANGO_ELLIPSIZE_MIDDLE, "width-chars", kOptionWidth, nullptr);
        g_list_free(cells);
        g_signal_connect(dropDown, "scroll-event", G_CALLBACK(LeaveToParent), nullptr);
        gtk_label_set_mnemonic_widget(GTK_LABEL(label), dropDown);  // which names it, too
        gtk_widget_set_margin_start(dropDown, kIndentation);
        gtk_box_pack_start(GTK_BOX(together), dropDown, FALSE, FALSE, 0);
        NoteFirst(dropDown);
        return dropDown;
    }
    Widgets Add(const FormButton& button) {
        GtkWidget* widget = gtk_button_new_with_mnemonic(mMnemonics.Add(button.label).c_str());
        g_signal_connect(widget, "clicked", G_CALLBACK(Respond), GINT_TO_POINTER(button.number));
        Append(widget);
        NoteFirst(widget);
        if (button.number == mForm.defaultButton)
            mDefault = widget;
        return {};
    }

    void NoteFirst(GtkWidget* widget) { mFirst = mFirst != nullptr ? mFirst : widget; }

    /// The keyboard is with the first thing that can be changed; where there is none, with the default button.
    void ChooseDefault() {
        if (mDefault == nullptr)
            mDefault = gtk_dialog_get_widget_for_response(mDialog, mForm.defaultButton);
        if (mDefault != nullptr) {
            gtk_widget_set_can_default(mDefault, TRUE);
            gtk_window_set_default(GTK_WINDOW(mDialog), mDefault);
        }
        if (GtkWidget* focus = mFirst != nullptr ? mFirst : mDefault)
            gtk_widget_grab_focus(focus);
    }

    static void Read(FormCheckBox& box, const Widgets& widgets) {
        box.isChecked = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widgets.front())) != FALSE;
    }
    static void Read(FormList& list, const Widgets& widgets) {
        list.selected.reset();
        GtkTreeModel* model = nullptr;
        GtkTreeIter row{};
        if (!gtk_tree_selection_get_selected(gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.front())),
                                             &model, &row))
            return;
        GtkTreePath* path = gtk_tree_model_get_path(model, &row);
        list.selected = static_cast<size_t>(gtk_tree_path_get_indices(path)[0]);
        gtk_tree_path_free(path);
    }
    static void Read(FormChoices& choices, const Widgets& widgets) {
        for (size_t index = 0; index < widgets.size(); ++index) {
            if (widgets[index] != nullptr)
                choices.rows[index].selected =
                    static_cast<size_t>(std::max(gtk_combo_box_get_active(GTK_COMBO_BOX(widgets[index])), 0));
        }
    }
    template <class Unchangeable>
    static void Read(Unchangeable&, const Widgets&) {}

    Form mForm;
    GtkDialog* const mDialog;
    GtkWidget* const mColumn;
    Mnemonics mMnemonics;
    std::vector<Widgets> mWidgets;  ///< of each control
    GtkWidget* mFirst = nullptr;
    GtkWidget* mDefault = nullptr;
    bool mGrows = false;
};

}  // namespace

nlohmann::json AskForm(const nlohmann::json& request) {
    FormWindow window(dialog_messages::RequestedForm(request), request);
    const int pressed = window.Run(request);
    return dialog_messages::FormAnswer(window.Result(), pressed);
}
