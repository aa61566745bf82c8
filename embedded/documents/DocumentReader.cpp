#include "DocumentReader.h"

#include "DocumentLimits.h"
#include "platform/DynamicLibrary.h"
#include "platform/Processes.h"

namespace documents {
namespace {

constexpr char kProgramName[] = "plugincore-document-reader";

DocumentFonts Unreadable(std::string problem) {
    return {ReadStatus::kUnreadable, "", std::move(problem), {}};
}

std::string ExtensionOf(const std::string& path) {
    const std::string name = platform::NamePart(path);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : name.substr(dot + 1);
}

}  // namespace

std::string DocumentReader::DefaultProgram() {
    const std::string own =
        platform::FolderPart(platform::Current<platform::Processes>().CurrentExecutablePath());
    const std::string name = platform::ProgramFileName(kProgramName);
    const std::string beside = own + name;
    const std::string apart = platform::AbsolutePath(own + "../../bin") + platform::kPathSeparator + name;
    return !platform::IsExistingFile(beside) && platform::IsExistingFile(apart) ? apart : beside;
}

DocumentFonts DocumentReader::Read(const std::string& path) {
    platform::ReadOnlyFile file;
    uint64_t size = 0;
    platform::SystemError error = file.Open(path);
    if (!error)
        error = file.Size(size);
    if (error)
        return Unreadable("it cannot be opened: " + platform::SystemErrorText(error));
    if (size > kMaxDocumentSize)
        return Unreadable("it is larger than " + std::to_string(kMaxDocumentSize >> 20) + " MiB");
    std::string problem;
    if (auto fonts = Ask(ExtensionOf(path), file, problem))
        return *std::move(fonts);
    return Unreadable("reading it " + problem);
}

std::optional<DocumentFonts> DocumentReader::Ask(const std::string& extension,
                                                 const platform::ReadOnlyFile& file, std::string& problem) {
    using Outcome = platform::Worker::Outcome;
    std::string answer;
    const Outcome outcome = Process().Exchange(extension, file, answer, problem);
    auto fonts = outcome == Outcome::kAnswered ? ParseDocumentFonts(answer) : std::nullopt;
    if (fonts)
        return fonts;
    mProcess.reset();
    if (outcome == Outcome::kUnfit)
        throw NoDocumentReader(mProgram + " cannot be confined here, and so reads nothing");
    if (outcome == Outcome::kAnswered)
        problem = "ended in an answer that cannot be understood";
    return std::nullopt;
}

platform::Worker& DocumentReader::Process() {
    platform::SystemError error;
    if (!mProcess)
        mProcess = platform::Worker::Start(mProgram, kDocumentWorkerLimits, error);
    if (!mProcess)
        throw NoDocumentReader("cannot start " + mProgram + " (" + platform::SystemErrorText(error) + ")");
    return *mProcess;
}

}  // namespace documents
