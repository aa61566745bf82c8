// Writes down what a panel and the core say to each other, a JSON object a line, for later replay.
#pragma once

#include <chrono>
#include <fstream>
#include <string>

/// Main thread. Does nothing until a file is open.
class PanelRecorder {
public:
    enum class To { kPanel, kCore };

    /// Replaces what stands in the file.
    bool Open(const std::string& path);
    /// {"to": …, "ms": since the file was opened, "message": the message; a string where it is not JSON}.
    void Note(To to, const std::string& message);
    /// {"file": URL, "text": content}, of a list of fonts, which is gone when the recording is replayed.
    void NoteFile(const std::string& url, const std::string& path);

private:
    std::ofstream mFile;
    std::chrono::steady_clock::time_point mStart;
};
