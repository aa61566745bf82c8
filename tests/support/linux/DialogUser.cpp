#include "linux/DialogUser.h"

#include "TestProcess.h"

namespace {

/// The number of the dialog's window, whose process names itself in its class; empty where there is none.
std::string FindDialog() {
    const std::string found = XDoTool("search --onlyvisible --class PluginCoreDialogs");
    return found.substr(0, found.find('\n'));
}

}  // namespace

std::string XDoTool(const std::string& words) {
    return TestProcess({"/bin/sh", "-c", "exec xdotool " + words}).Finish().output;
}

DialogUser::DialogUser(std::function<void(const std::string&)> actions) {
    // The screen takes a moment to forget the windows of a process that was ended.
    Eventually([] { return FindDialog().empty(); });
    mThread = std::jthread([actions = std::move(actions)] {
        std::string window;
        if (!Eventually([&] { return !(window = FindDialog()).empty(); }))
            return;
        XDoTool("mousemove 0 0 windowfocus --sync " + window);  // the mouse points at nothing
        actions(window);
    });
}
