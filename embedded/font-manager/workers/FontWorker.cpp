#include "workers/FontWorker.h"

#include "platform/DynamicLibrary.h"

namespace pellwick {

FontWorker::FontWorker(const std::string& program)
    : mReaderProgram(program),
      mListProgram(platform::FolderPart(program) + platform::ProgramFileName(kSystemFontsProgram)) {}

ScanResult FontWorker::Scan(const platform::ReadOnlyFile& file) {
    std::string answer;
    std::string problem;
    if (!Ask({}, file, answer, problem))
        return {{}, "damaged font file, or a harmful one: reading it " + problem, false};
    return ParseScanResult(answer).value_or(
        ScanResult{{}, "damaged font file: it cannot be understood", false});
}

NameImage FontWorker::Draw(const platform::ReadOnlyFile& file, const FontFace& font, int scale) {
    std::string answer;
    std::string problem;
    if (!Ask({FontWork::kDraw, font, scale}, file, answer, problem))
        return {};
    return ParseImage(answer).value_or(NameImage());
}

FontLicence FontWorker::ReadLicence(const platform::ReadOnlyFile& file, const FontFace& font) {
    std::string answer;
    std::string problem;
    if (!Ask({FontWork::kLicence, font}, file, answer, problem))
        return {};
    return ParseLicence(answer).value_or(FontLicence());
}

std::optional<platform::InstalledFonts> FontWorker::ListInstalled(std::string& problem) {
    std::string answer;
    Rest();
    const auto outcome = Process(mListProgram, kSystemFontsLimits, platform::Worker::Variables::kOurs)
                             .Exchange({}, platform::ReadOnlyFile(), answer, problem);
    Rest();
    if (mIsStopped)
        throw NoFontWorker("the agent ends; try again");
    if (outcome != platform::Worker::Outcome::kAnswered) {
        problem = "listing them " + problem;
        return std::nullopt;
    }
    auto fonts = ParseInstalledFonts(answer);
    if (!fonts)
        problem = "the system does not tell; is fontconfig installed?";
    return fonts;
}

bool FontWorker::Ask(const FontWorkRequest& request, const platform::ReadOnlyFile& file, std::string& answer,
                     std::string& problem) {
    using Outcome = platform::Worker::Outcome;
    const bool isFresh = !mProcess;
    Outcome outcome = Reader().Exchange(EncodeRequest(request), file, answer, problem);
    if (outcome == Outcome::kDied && !isFresh) {  // it may have died before, of something else
        Rest();
        outcome = Reader().Exchange(EncodeRequest(request), file, answer, problem);
    }
    if (outcome == Outcome::kAnswered && !mIsStopped)
        return true;
    Rest();
    if (mIsStopped)
        throw NoFontWorker("the agent ends; try again");
    if (outcome == Outcome::kUnfit)
        throw NoFontWorker(mReaderProgram +
                           " cannot be confined here, and so reads no fonts; the system must allow"
                           " seccomp filters");
    return false;
}

platform::Worker& FontWorker::Reader() {
    return Process(mReaderProgram, kFontWorkerLimits, platform::Worker::Variables::kNone);
}

platform::Worker& FontWorker::Process(const std::string& program, const platform::WorkerLimits& limits,
                                      platform::Worker::Variables variables) {
    const std::lock_guard guard(mProcessLock);
    platform::SystemError error;
    if (!mProcess && !mIsStopped)
        mProcess = platform::Worker::Start(program, limits, error, variables);
    if (!mProcess)
        throw NoFontWorker("cannot start " + program + " (" + platform::SystemErrorText(error) +
                           "); install Pellwick again, or try again when less is running");
    return *mProcess;
}

void FontWorker::Rest() {
    const std::lock_guard guard(mProcessLock);
    mProcess.reset();
}

void FontWorker::Stop() {
    mIsStopped = true;
    const std::lock_guard guard(mProcessLock);
    if (mProcess)
        mProcess->Cancel();
}

}  // namespace pellwick
