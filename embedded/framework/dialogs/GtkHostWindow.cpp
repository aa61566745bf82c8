#include "dialogs/GtkHostWindow.h"

#include <gdk/gdkx.h>

#include <memory>
#include <vector>

namespace {

using OwnedWindow = std::unique_ptr<GdkWindow, decltype(&g_object_unref)>;

/// The numbers in a property of the window (in the format of 32 bits, which are longs here); empty when it has none.
std::vector<gulong> NumbersIn(GdkWindow* window, const char* property, const char* type) {
    constexpr gulong kMost = 4096UL * 4;
    GdkAtom actualType = nullptr;
    gint format = 0, bytes = 0;
    guchar* data = nullptr;
    if (!gdk_property_get(window, gdk_atom_intern(property, FALSE), gdk_atom_intern(type, FALSE), 0, kMost,
                          FALSE, &actualType, &format, &bytes, &data))
        return {};
    const std::unique_ptr<guchar, decltype(&g_free)> owned(data, g_free);
    const auto* numbers = reinterpret_cast<const gulong*>(data);
    return format == 32 ? std::vector<gulong>(numbers, numbers + static_cast<size_t>(bytes) / sizeof(gulong))
                        : std::vector<gulong>();
}

OwnedWindow WindowOf(GdkDisplay* display, gulong number, int process) {
    OwnedWindow window(gdk_x11_window_foreign_new_for_display(display, number), g_object_unref);
    const std::vector<gulong> owners =
        window ? NumbersIn(window.get(), "_NET_WM_PID", "CARDINAL") : std::vector<gulong>();
    const bool isIt = owners.size() == 1 && owners.front() == static_cast<gulong>(process);
    return isIt ? std::move(window) : OwnedWindow(nullptr, g_object_unref);
}

}  // namespace

bool host_window::PutInFront(GdkWindow* dialog, int process) {
    GdkDisplay* display = gdk_window_get_display(dialog);
    if (!GDK_IS_X11_DISPLAY(display))
        return false;
    GdkWindow* root = gdk_screen_get_root_window(gdk_display_get_default_screen(display));
    std::vector<gulong> windows = NumbersIn(root, "_NET_CLIENT_LIST_STACKING", "WINDOW");
    const std::vector<gulong> active = NumbersIn(root, "_NET_ACTIVE_WINDOW", "WINDOW");
    windows.insert(windows.end(), active.begin(), active.end());
    bool isFound = false;
    gdk_x11_display_error_trap_push(display);  // windows come and go
    for (auto number = windows.rbegin(); number != windows.rend() && !isFound; ++number) {
        if (const OwnedWindow window = WindowOf(display, *number, process)) {
            gdk_window_set_transient_for(dialog, window.get());
            isFound = true;
        }
    }
    gdk_x11_display_error_trap_pop_ignored(display);
    return isFound;
}
