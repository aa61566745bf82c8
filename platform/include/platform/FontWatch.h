// Tells when fonts are installed or taken away.
#pragma once

#include <asio/io_context.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// Calls the handler, from the loop, when what FontTable::Installed says may have changed: as the system
/// reports it, so often more than once for one font. The loop has work for as long as it watches.
class FontWatch {
public:
    FontWatch(asio::io_context& loop, std::function<void()> handler);
    ~FontWatch();
    FontWatch(const FontWatch&) = delete;
    FontWatch& operator=(const FontWatch&) = delete;

    /// From now on watches these folders (full paths, UTF-8), and not what is below them. Of one that is not
    /// there, the next above it is watched for it to come. Windows: the lists in the registry, which fonts
    /// are installed in, whatever the folders. True when they were not watched before: then the handler has
    /// not been called for what changed until now. A folder that the system refuses to watch is left out.
    bool Watch(const std::vector<std::string>& folders);

private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace platform
