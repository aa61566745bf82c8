#include <algorithm>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "FontRecordKeys.h"
#include "FoundFonts.h"
#include "HostSession.h"
#include "KnownPrograms.h"
#include "MissingFonts.h"
#include "OpenedDocument.h"
#include "Output.h"
#include "platform/BecomeProgram.h"

namespace {

// As env and the shells have it.
constexpr int kCannotBeStarted = 126;
constexpr int kProgramNotFound = 127;

/// The program's words, with the documents in the place of "{}".
std::vector<std::string> WordsOf(const OpenOptions& options) {
    std::vector<std::string> words;
    for (const std::string& word : options.program) {
        if (word == "{}")
            std::transform(options.files.begin(), options.files.end(), std::back_inserter(words),
                           PathOfDocument);
        else
            words.push_back(word);
    }
    return words;
}

/// `what`: the document, for people.
void SayWhatIsMissing(const OpenedDocument& document, const std::string& what) {
    std::string names;
    for (const nlohmann::json& font : document.unmatched)
        names += (names.empty() ? "" : ", ") + font.value(kGS_PostScriptNameKey, "?");
    if (!names.empty())
        PrintError(what + " without " + names);
    else if (const std::string problem = WhyNoFontsAreKnown(document); !problem.empty())
        PrintError(what + ", but " + problem);
}

}  // namespace

int RunProgram(const HostOptions& host, const OpenOptions& options) {
    std::vector<std::string> words = WordsOf(options);
    KeepFromHandingOver(words);
    HostSession session;
    // The program starts whatever becomes of the fonts: errors have been told.
    if (session.Start(host) == exit_status::kDone) {
        FontFinder finder;
        for (const std::string& path : FindDocuments(options.files)) {
            const nlohmann::json fonts = options.searchesBytes ? nlohmann::json() : finder.FindForCore(path);
            OpenedDocument document = OpenDocument(session.Core(), path, fonts);
            OfferReplacements(session.Core(), document);
            SayWhatIsMissing(document, path + " is opened");
        }
        if (!options.fontNames.empty())
            SayWhatIsMissing(OpenFonts(session.Core(), options.fontNames), words.front() + " is started");
    }
    FlushOutput();
    int status = exit_status::kDone;
    if (const platform::SystemError error = platform::BecomeProgram(words, status)) {
        PrintError(words.front() + " cannot be started: " + platform::SystemErrorText(error));
        return error.IsNotFound() ? kProgramNotFound : kCannotBeStarted;
    }
    return status;
}
