// Has documents read by a process of its own, since whoever wrote them may have meant harm.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "DocumentFonts.h"
#include "platform/Files.h"
#include "platform/Worker.h"

namespace documents {

/// Thrown where the process cannot be started or not be confined; the message is for people.
class NoDocumentReader : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Starts the process for the first document and again after one that it died of. One thread at a time.
class DocumentReader {
public:
    /// `program`: its full path.
    explicit DocumentReader(std::string program) : mProgram(std::move(program)) {}
    /// The one that is installed beside the program that runs, or else where programs are, two folders above in
    /// "bin": the font manager stands apart from them.
    static std::string DefaultProgram();

    /// The fonts that the document at `path` uses. Its content tells the format; its extension does where
    /// the content does not. Takes a moment to start the process, and no longer than kDocumentWorkerLimits
    /// allow. A file that cannot be opened is unreadable, with the system's reason. Throws NoDocumentReader.
    DocumentFonts Read(const std::string& path);

private:
    /// Nothing, and the problem, where the process did not answer.
    std::optional<DocumentFonts> Ask(const std::string& extension, const platform::ReadOnlyFile& file,
                                     std::string& problem);
    platform::Worker& Process();

    const std::string mProgram;
    std::unique_ptr<platform::Worker> mProcess;
};

}  // namespace documents
