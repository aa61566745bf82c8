// The commands of the program. Each answers with the program's exit status.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "HostSession.h"

struct OpenOptions {
    std::vector<std::string> files;
    bool json = false;
    bool closeAtOnce = false;
    std::optional<double> seconds;  ///< how long the documents stay open; else until Enter
};

/// Opens documents, shows their fonts, keeps them open, closes them.
int RunOpen(const HostOptions& host, const OpenOptions& options);

/// Lists the font names that the extractor finds in files. The core is not loaded.
int RunFonts(const std::vector<std::string>& files, bool json);

/// Calls exports as standard input says, one JSON object a line, and answers each with a line.
int RunScript(const HostOptions& host);
