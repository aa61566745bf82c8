// Copies font files into a folder, under the names that they had when they were added.
#pragma once

#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "ipc/Message.h"

namespace pellwick {

class FontExporter {
public:
    explicit FontExporter(std::string folder) : mFolder(std::move(folder)) {}

    /// Copies the file of each font record, each file once; the folder is made when it is missing. A file of
    /// that name with another content stays, and the copy gets a number; one with the same content counts as
    /// the copy. A font that cannot be copied keeps no other from it: the code is that of the first of them.
    [[nodiscard]] ErrorCode Export(const Json& fonts);
    /// The copies, one path for each file.
    const std::vector<std::string>& Paths() const { return mPaths; }

private:
    ErrorCode ExportFont(const Json& font);

    const std::string mFolder;
    std::vector<std::string> mPaths;
};

}  // namespace pellwick
