#include "TraceLog.h"
#include "platform/Environment.h"
#include "presenters/NativePresenter.h"
#include "presenters/Presenter.h"
#include "presenters/RecordingPresenter.h"
#include "presenters/ScriptedPresenter.h"
#include "presenters/SilentPresenter.h"
#include "presenters/TerminalPresenter.h"

namespace {

/// Null where the system cannot show dialogs.
std::unique_ptr<Presenter> MakeNative(const std::string& language) {
    auto& dialogs = platform::Current<platform::NativeDialogs>();
    if (dialogs.IsAvailable())
        return std::make_unique<NativePresenter>(dialogs, language);
    if (const std::string reason = dialogs.TakeFailure(); !reason.empty())
        LogMessage(0, "No dialogs can be shown: %s", reason.c_str());
    return nullptr;
}

/// Null for an unknown name.
std::unique_ptr<Presenter> ChooseByName(const std::string& name, const std::string& language) {
    if (name == "terminal")
        return std::make_unique<TerminalPresenter>(Terminal::StandardStreams(), language);
    if (name == "native") {
        if (std::unique_ptr<Presenter> native = MakeNative(language))
            return native;
        LogMessage(0, "No dialogs can be shown here, although PLUGINCORE_PRESENTER asks for them");
    }
    return name == "native" || name == "silent" ? std::make_unique<SilentPresenter>() : nullptr;
}

std::unique_ptr<Presenter> ChooseBySurroundings(const std::string& language) {
    std::unique_ptr<Presenter> native = MakeNative(language);
    return native ? std::move(native) : std::make_unique<SilentPresenter>();
}

std::unique_ptr<Presenter> ChooseByEnvironment(const std::string& language) {
    const std::string answersFile = platform::EnvironmentVariable("PLUGINCORE_ANSWERS");
    if (!answersFile.empty())
        return std::make_unique<ScriptedPresenter>(ReadAnswersFile(answersFile));
    const std::string name = platform::EnvironmentVariable("PLUGINCORE_PRESENTER");
    if (std::unique_ptr<Presenter> named = ChooseByName(name, language))
        return named;
    if (!name.empty())
        LogMessage(0, "PLUGINCORE_PRESENTER names none of native, terminal and silent: '%s'", name.c_str());
    return ChooseBySurroundings(language);
}

}  // namespace

std::unique_ptr<Presenter> ChoosePresenter(const std::string& language) {
    std::unique_ptr<Presenter> presenter = ChooseByEnvironment(language);
    const std::string logFile = platform::EnvironmentVariable("PLUGINCORE_ANSWERS_LOG");
    if (!logFile.empty())
        presenter = std::make_unique<RecordingPresenter>(std::move(presenter), logFile);
    return presenter;
}
