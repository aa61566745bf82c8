#include "platform/Environment.h"
#include "presenters/Presenter.h"
#include "presenters/RecordingPresenter.h"
#include "presenters/ScriptedPresenter.h"
#include "presenters/SilentPresenter.h"
#include "presenters/TerminalPresenter.h"

namespace {

bool HasTerminal() {
    return platform::IsTerminal(platform::StandardStream::kInput) &&
           platform::IsTerminal(platform::StandardStream::kError);
}

std::unique_ptr<Presenter> ChooseByEnvironment(const std::string& language) {
    const std::string answersFile = platform::EnvironmentVariable("PLUGINCORE_ANSWERS");
    if (!answersFile.empty())
        return std::make_unique<ScriptedPresenter>(ReadAnswersFile(answersFile));
    if (HasTerminal())
        return std::make_unique<TerminalPresenter>(Terminal::StandardStreams(), language);
    return std::make_unique<SilentPresenter>();
}

}  // namespace

std::unique_ptr<Presenter> ChoosePresenter(const std::string& language) {
    std::unique_ptr<Presenter> presenter = ChooseByEnvironment(language);
    const std::string logFile = platform::EnvironmentVariable("PLUGINCORE_ANSWERS_LOG");
    if (!logFile.empty())
        presenter = std::make_unique<RecordingPresenter>(std::move(presenter), logFile);
    return presenter;
}
