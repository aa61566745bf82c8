#include "dialogs/HostLine.h"

#include <gtk/gtk.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "DialogMessages.h"

namespace {

bool isUsed = false;

void NoteUse(GdkEvent* event, gpointer) {
    switch (event->type) {
        case GDK_KEY_PRESS:
        case GDK_BUTTON_PRESS:
        case GDK_MOTION_NOTIFY:
        case GDK_SCROLL:
        case GDK_TOUCH_BEGIN:
            isUsed = true;
            break;
        default:
            break;
    }
    gtk_main_do_event(event);
}

}  // namespace

HostLine::HostLine() : mChannel(g_io_channel_unix_new(platform::dialog_messages::kLine)) {
    g_io_channel_set_encoding(mChannel, nullptr, nullptr);
}

void HostLine::Send(const Message& message) {
    const std::string line = platform::dialog_messages::LineOf(message);
    g_io_channel_write_chars(mChannel, line.data(), static_cast<gssize>(line.size()), nullptr, nullptr);
    g_io_channel_flush(mChannel, nullptr);
}

HostLine::Message HostLine::Read() {
    gchar* line = nullptr;
    gsize size = 0;
    if (g_io_channel_read_line(mChannel, &line, &size, nullptr, nullptr) != G_IO_STATUS_NORMAL)
        std::exit(EXIT_SUCCESS);
    const std::unique_ptr<gchar, decltype(&g_free)> owned(line, g_free);
    return Message::parse(line, line + size);
}

void HostLine::Listen(std::function<void(const Message&)> take) {
    mTake = std::move(take);
    gdk_event_handler_set(NoteUse, nullptr, nullptr);
    g_io_add_watch(mChannel, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), TakeInput, this);
    TellAlive(this);
    g_timeout_add_seconds(1, TellAlive, this);
}

gboolean HostLine::TakeInput(GIOChannel*, GIOCondition, gpointer self) {
    auto* line = static_cast<HostLine*>(self);
    line->mTake(line->Read());
    return G_SOURCE_CONTINUE;
}

gboolean HostLine::TellAlive(gpointer self) {
    static_cast<HostLine*>(self)->Send({{"alive", true}, {"used", std::exchange(isUsed, false)}});
    return G_SOURCE_CONTINUE;
}
