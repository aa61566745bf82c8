// PluginCoreDialogs: shows one dialog for the process that started it, and says how it was answered. It knows nothing of
// fonts, preferences or the core.

#include <gtk/gtk.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DialogMessages.h"
#include "dialogs/FolderWindow.h"
#include "dialogs/FormWindow.h"
#include "dialogs/HostLine.h"
#include "dialogs/ProgressWindow.h"
#include "platform/Environment.h"

namespace {

constexpr int kWrongUsage = 2;

/// Where the toolkit complains, when somebody looks for a fault: where the trace goes, if that is a file.
void OpenDiagnostics() {
    const std::string file = platform::EnvironmentVariable("PLUGINCORE_DEBUG_OUTPUT");
    if (!file.empty() && file != "-")
        static_cast<void>(std::freopen(file.c_str(), "a", stderr));
}

/// The toolkit's own words are in the language of the library's texts, also where the system lacks its locale.
void SetLanguage() {
    if (std::setlocale(LC_ALL, "") != nullptr)
        return;
    platform::SetEnvironment("LANGUAGE", platform::UserLanguage());
    platform::SetEnvironment("LC_ALL", "C.UTF-8");
}

int Show(HostLine& line) {
    const nlohmann::json request = line.Read();
    const auto what = request.at("show").get<std::string>();
    if (what == "progress") {
        ProgressWindow window(request);
        line.Listen([&](const HostLine::Message& step) {
            window.ShowStep(step.at("done").get<int>(), step.at("total").get<int>());
        });
        window.WaitForStop(request);
        line.Send({{"answer", "stop"}});
        gtk_main();  // until the host has closed the line
    }
    line.Listen([](const HostLine::Message&) {});
    line.Send(what == "folder" ? AskFolder(request) : AskForm(request));
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::strcmp(argv[1], platform::dialog_messages::kLineArgument) != 0) {
        std::fputs("PluginCoreDialogs shows dialogs for programs with the font plug-in, which start it.\n",
                   stderr);
        return kWrongUsage;
    }
    OpenDiagnostics();
    SetLanguage();
    HostLine line;
    if (!gtk_init_check(&argc, &argv)) {
        line.Send(
            {{"failure", "the display '" + platform::EnvironmentVariable("DISPLAY") + "' cannot be opened"}});
        return EXIT_FAILURE;
    }
    try {
        return Show(line);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "PluginCoreDialogs: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
