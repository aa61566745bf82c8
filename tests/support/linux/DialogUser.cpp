#include "linux/DialogUser.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <cairo.h>

#include <chrono>
#include <optional>
#include <sstream>

#include "TestProcess.h"

namespace {

using DisplayOwner = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

std::string TextProperty(Display* display, Window window, const char* property) {
    Atom type = 0;
    int format = 0;
    unsigned long length = 0, rest = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 1 << 16, False,
                       AnyPropertyType, &type, &format, &length, &rest, &data);
    const std::unique_ptr<unsigned char, decltype(&XFree)> owned(data, XFree);
    return format == 8 ? std::string(reinterpret_cast<const char*>(data), length) : std::string();
}

XWindowAttributes AttributesOf(Display* display, Window window) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(display, window, &attributes);
    return attributes;
}

/// The dialogs' process names itself in the class of its windows.
bool IsDialog(Display* display, Window window) {
    return AttributesOf(display, window).map_state == IsViewable &&
           TextProperty(display, window, "WM_CLASS").find("PluginCoreDialogs") != std::string::npos &&
           !TextProperty(display, window, "_NET_WM_NAME").empty();
}

std::optional<Window> FindDialog(Display* display) {
    Window root = 0, parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    const std::unique_ptr<Window, decltype(&XFree)> owned(children, XFree);
    for (unsigned index = 0; index < count; ++index) {
        if (IsDialog(display, children[index]))
            return children[index];
    }
    return std::nullopt;
}

using ImageOwner = std::unique_ptr<XImage, int (*)(XImage*)>;

/// What the screen shows where the window is, in 32 bits for each pixel.
ImageOwner ImageOf(Display* display, Window window) {
    const XWindowAttributes place = AttributesOf(display, window);
    return {XGetImage(display, window, 0, 0, static_cast<unsigned>(place.width),
                      static_cast<unsigned>(place.height), AllPlanes, ZPixmap),
            [](XImage* image) { return XDestroyImage(image); }};
}

/// The screen takes a moment to forget the windows of a process that was ended.
void WaitUntilNoDialogIsLeft() {
    const DisplayOwner display(XOpenDisplay(nullptr), XCloseDisplay);
    Eventually([&] { return !display || !FindDialog(display.get()); });
}

void PressKey(Display* display, const std::string& name, bool isDown) {
    const KeySym symbol = XStringToKeysym(name == "alt" ? "Alt_L" : name.c_str());
    XTestFakeKeyEvent(display, XKeysymToKeycode(display, symbol), isDown ? True : False, CurrentTime);
    XSync(display, False);
}

}  // namespace

struct DialogOnScreen::State {
    DisplayOwner display;
    Window window;
};

DialogOnScreen::DialogOnScreen(std::unique_ptr<State> state) : mState(std::move(state)) {}
DialogOnScreen::~DialogOnScreen() = default;

std::unique_ptr<DialogOnScreen> DialogOnScreen::Find() {
    DisplayOwner display(XOpenDisplay(nullptr), XCloseDisplay);
    std::optional<Window> window;
    if (!display || !Eventually([&] { return (window = FindDialog(display.get())).has_value(); }))
        return nullptr;
    XWarpPointer(display.get(), None, DefaultRootWindow(display.get()), 0, 0, 0, 0, 0,
                 0);  // points at nothing
    XSetInputFocus(display.get(), *window, RevertToParent, CurrentTime);
    XSync(display.get(), False);
    std::unique_ptr<DialogOnScreen> dialog(
        new DialogOnScreen(std::make_unique<State>(State{std::move(display), *window})));
    dialog->WaitUntilPainted();
    return dialog;
}

std::string DialogOnScreen::Title() const {
    return TextProperty(mState->display.get(), mState->window, "_NET_WM_NAME");
}

int DialogOnScreen::Width() const {
    return AttributesOf(mState->display.get(), mState->window).width;
}

int DialogOnScreen::Height() const {
    return AttributesOf(mState->display.get(), mState->window).height;
}

void DialogOnScreen::Press(const std::string& keys) const {
    std::istringstream words(keys);
    for (std::string word; words >> word;) {
        const size_t plus = word.find('+');
        const std::string modifier = plus != std::string::npos ? word.substr(0, plus) : "";
        const std::string key = word.substr(modifier.empty() ? 0 : plus + 1);
        if (!modifier.empty())
            PressKey(mState->display.get(), modifier, true);
        PressKey(mState->display.get(), key, true);
        PressKey(mState->display.get(), key, false);
        if (!modifier.empty())
            PressKey(mState->display.get(), modifier, false);
    }
}

void DialogOnScreen::WaitUntilPainted() const {
    std::string last;
    int same = 0;
    Eventually([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        const ImageOwner image = ImageOf(mState->display.get(), mState->window);
        std::string now =
            image ? std::string(image->data, static_cast<size_t>(image->bytes_per_line * image->height)) : "";
        same = now == last ? same + 1 : 0;
        last = std::move(now);
        return same == 3;
    });
}

void DialogOnScreen::SavePicture(const std::string& path) const {
    const ImageOwner image = ImageOf(mState->display.get(), mState->window);
    if (!image)
        return;
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(image->data), CAIRO_FORMAT_RGB24,
                                            image->width, image->height, image->bytes_per_line);
    cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
}

DialogUser::DialogUser(std::function<void(const DialogOnScreen&)> actions) {
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });  // windows come and go
    WaitUntilNoDialogIsLeft();
    mThread = std::jthread([actions = std::move(actions)] {
        if (const auto dialog = DialogOnScreen::Find())
            actions(*dialog);
    });
}
