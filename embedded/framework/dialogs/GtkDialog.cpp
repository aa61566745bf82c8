#include "dialogs/GtkDialog.h"

#include <cctype>

#include "PrintableText.h"
#include "dialogs/GtkHostWindow.h"

namespace {

constexpr int kSpace = 12;
constexpr int kParagraphWidth = 60;  // characters
// Characters. Wrapping takes time by the square of a line without blanks.
constexpr size_t kLongestEntry = 300;
constexpr size_t kLongestLine = 600;

/// Without its middle where it is longer than so many characters; what was put around a long name stays.
std::string Shortened(const std::string& text, size_t length) {
    const size_t count = CountCodePoints(text);
    return count <= length ? text
                           : FirstCodePoints(text, length / 2) + "…" +
                                 text.substr(FirstCodePoints(text, count - length / 2).size());
}

int ScreenHeight() {
    GdkRectangle area{};
    GdkMonitor* monitor = gdk_display_get_monitor(gdk_display_get_default(), 0);
    if (monitor != nullptr)
        gdk_monitor_get_workarea(monitor, &area);
    return area.height > 0 ? area.height : 600;
}

void PutOnTop(GtkWindow* window) {
    gtk_window_set_position(window, GTK_WIN_POS_CENTER);
    gtk_window_set_keep_above(window, TRUE);
}

}  // namespace

std::string ShownText(const std::string& text) {
    std::string shown;
    size_t begin = 0;
    for (size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find('\n', begin);
        shown +=
            Shortened(WithoutUnprintables(std::string_view(text).substr(begin, end - begin)), kLongestLine);
        if (end != std::string::npos)
            shown += '\n';
    }
    return shown;
}

std::string ShownLine(const std::string& text) {
    return Shortened(WithoutUnprintables(text), kLongestEntry);
}

std::string Mnemonics::Add(const std::string& label) {
    std::string marked;
    bool isMarked = false;
    for (const char character : ShownLine(label)) {
        const auto key = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        const bool canMark = static_cast<unsigned char>(key) < 0x80 && std::isalnum(key) != 0;
        if (character == '_' || (!isMarked && canMark && mUsed.insert(key).second))
            marked += '_';
        isMarked = isMarked || (character != '_' && marked.ends_with('_') && !marked.ends_with("__"));
        marked += character;
    }
    return marked;
}

GtkDialog* MakeDialogWindow(const nlohmann::json& request, const std::string& title) {
    const std::string application = request.at("application").get<std::string>();
    const std::string shown = title.empty() ? application : title + " – " + application;
    auto* dialog = GTK_DIALOG(gtk_dialog_new());
    gtk_window_set_title(GTK_WINDOW(dialog), ShownLine(shown).c_str());
    gtk_window_set_icon_name(GTK_WINDOW(dialog), "preferences-desktop-font");
    gtk_container_set_border_width(GTK_CONTAINER(dialog), kSpace / 2);
    GtkWidget* content = gtk_dialog_get_content_area(dialog);
    gtk_container_set_border_width(GTK_CONTAINER(content), kSpace / 2);
    gtk_box_set_spacing(GTK_BOX(content), kSpace);
    return dialog;
}

void WrapLabel(GtkLabel* label, bool isHeading) {
    gtk_label_set_line_wrap(label, TRUE);
    gtk_label_set_line_wrap_mode(label, PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(label, kParagraphWidth);
    gtk_label_set_xalign(label, 0);
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes,
                           pango_attr_insert_hyphens_new(FALSE));  // they would look like the name's own
    if (isHeading) {
        pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
        pango_attr_list_insert(attributes, pango_attr_scale_new(PANGO_SCALE_LARGE));
    }
    gtk_label_set_attributes(label, attributes);
    pango_attr_list_unref(attributes);
}

GtkWidget* MakeParagraph(const std::string& text, bool isHeading) {
    // A sentence is read from the left, also where it begins with a name in Hebrew.
    constexpr char kLeftToRightMark[] = "\u200E";
    GtkWidget* label = gtk_label_new((kLeftToRightMark + ShownText(text)).c_str());
    WrapLabel(GTK_LABEL(label), isHeading);
    return label;
}

GtkWidget* ScrolledIfHigh(GtkWidget* content, int percent) {
    GtkRequisition natural{};
    gtk_widget_show_all(content);
    gtk_widget_get_preferred_size(content, nullptr, &natural);
    const int limit = ScreenHeight() * percent / 100;
    if (natural.height <= limit)
        return content;
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), limit);
    gtk_container_add(GTK_CONTAINER(scrolled), content);
    // To where the keyboard is.
    if (GTK_IS_CONTAINER(content))
        gtk_container_set_focus_vadjustment(
            GTK_CONTAINER(content), gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled)));
    return scrolled;
}

void ShowInFront(GtkDialog* dialog, const nlohmann::json& request) {
    gtk_widget_show_all(gtk_dialog_get_content_area(dialog));
    gtk_widget_realize(GTK_WIDGET(dialog));
    // The host waits for the answer: what it hides would never be seen.
    if (host_window::PutInFront(gtk_widget_get_window(GTK_WIDGET(dialog)), request.at("process").get<int>()))
        gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    else
        PutOnTop(GTK_WINDOW(dialog));
    gtk_window_present_with_time(GTK_WINDOW(dialog), GDK_CURRENT_TIME);
}

int RunInFront(GtkDialog* dialog, const nlohmann::json& request) {
    ShowInFront(dialog, request);
    return gtk_dialog_run(dialog);
}
