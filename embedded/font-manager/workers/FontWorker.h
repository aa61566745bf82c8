// Reads font files, by a process of its own that may die of them.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/Worker.h"
#include "workers/FontWorkMessages.h"

namespace pellwick {

/// Thrown where the process cannot be started; the message is for people.
class NoFontWorker : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The process is started when it is needed first, and again after it has died. One thread, but for Stop.
class FontWorker {
public:
    /// `program`: its full path. The one that asks the system stands beside it.
    explicit FontWorker(const std::string& program);

    /// The faces in a font file: each member of a collection, each named instance of a variable font. None,
    /// and the reason, when it is not a font that can be used, which includes one that the process dies of.
    /// Throws NoFontWorker when nothing was read: the process cannot be started, or was stopped.
    ScanResult Scan(const platform::ReadOnlyFile& file);
    /// The font's name in its own face; of no width when it cannot be shown.
    NameImage Draw(const platform::ReadOnlyFile& file, const FontFace& font, int scale);

    /// What that face says of its rights; nothing of a font that cannot be read.
    FontLicence ReadLicence(const platform::ReadOnlyFile& file, const FontFace& font);

    /// What the system offers to every program, by another process: it is asked for rarely, and may die of a
    /// font as well. Nothing, and why, where that cannot be told. Throws NoFontWorker as above.
    std::optional<platform::InstalledFonts> ListInstalled(std::string& problem);

    /// Ends the process; the next request starts another.
    void Rest();
    /// From now on every request fails, also one under way. Any thread.
    void Stop();
    /// Whether Stop was called.
    const std::atomic<bool>& StopFlag() const { return mIsStopped; }

private:
    /// False, and the reason, when there is no answer.
    bool Ask(const FontWorkRequest& request, const platform::ReadOnlyFile& file, std::string& answer,
             std::string& problem);
    /// The process under way, or a fresh one of that program.
    platform::Worker& Process(const std::string& program, const platform::WorkerLimits& limits,
                              platform::Worker::Variables variables);
    platform::Worker& Reader();

    const std::string mReaderProgram;
    const std::string mListProgram;
    std::atomic<bool> mIsStopped{false};
    std::mutex mProcessLock;  ///< guards that it comes and goes
    std::unique_ptr<platform::Worker> mProcess;
};

}  // namespace pellwick
