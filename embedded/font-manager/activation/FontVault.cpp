#include "activation/FontVault.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <system_error>

#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/PrivateFolder.h"
#include "platform/Utf8Path.h"
#include "scan/Checksum.h"

namespace pellwick {
namespace {

namespace fs = std::filesystem;

/// Two hexadecimal digits of a checksum, then the checksum and an extension.
bool IsShardedName(const fs::path& path) {
    const std::string name = platform::Utf8Text(path.filename());
    const std::string shard = platform::Utf8Text(path.parent_path().filename());
    return name.size() > kChecksumLength && name[kChecksumLength] == '.' &&
           name.find_first_not_of("0123456789abcdef") == kChecksumLength && shard == name.substr(0, 2);
}

constexpr size_t kPieceSize = size_t{1} << 20;

/// Hands all of the file to `take`, piece by piece, until that answers false or it is stopped.
template <class Take>
platform::SystemError ReadPieces(platform::ReadOnlyFile& file, const StopFlag& isStopped, const Take& take) {
    std::string piece(kPieceSize, '\0');
    size_t size = kPieceSize;
    for (uint64_t offset = 0; size == kPieceSize && !isStopped; offset += size) {
        if (const auto error = file.ReadAt(offset, piece.data(), piece.size(), size))
            return error;
        if (!take(std::string_view(piece).substr(0, size)))
            break;
    }
    return {};
}

std::string FolderOf(const std::string& path) {
    return platform::Utf8Text(platform::Utf8Path(path).parent_path());
}

// Where damaged files are put.
std::string DamagedFolder(const std::string& vault) {
    return vault + platform::kPathSeparator + "damaged";
}

int RemoveAll(const std::string& folder) {
    int removed = 0;
    std::error_code failure;
    for (fs::directory_iterator entry(platform::Utf8Path(folder), failure);
         !failure && entry != fs::directory_iterator(); entry.increment(failure))
        removed += platform::RemoveFile(platform::Utf8Text(entry->path())) ? 0 : 1;
    return removed;
}

/// A temporary name has one more extension behind the font's own.
bool IsTemporaryName(const fs::path& path) {
    return platform::Utf8Text(path.filename()).find('.', kChecksumLength + 1) != std::string::npos;
}

}  // namespace

std::string ShardedPath(const std::string& folder, const FontFile& file) {
    return folder + platform::kPathSeparator + file.checksum.substr(0, 2) + platform::kPathSeparator +
           file.checksum + file.extension;
}

std::vector<std::string> ShardedFiles(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code failure;
    if (platform::IsLink(folder))
        return files;
    fs::recursive_directory_iterator entry(platform::Utf8Path(folder),
                                           fs::directory_options::skip_permission_denied, failure);
    for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        std::error_code ignored;
        const std::string path = platform::Utf8Text(entry->path());
        const bool isLink = platform::IsLink(path);
        if (isLink)
            entry.disable_recursion_pending();
        if ((isLink || !entry->is_directory(ignored)) && IsShardedName(entry->path()))
            files.push_back(path);
    }
    return files;
}

FontVault::FontVault(std::string folder, uint32_t session)
    : mFolder(std::move(folder)),
      mIncoming(mFolder + platform::kPathSeparator + "incoming" +
                (session == 0 ? "" : "-" + std::to_string(session))) {}

bool FontVault::Has(const FontFile& file) const {
    uint64_t size = 0;
    return !platform::FileSize(PathOf(file), size) && size == file.size;
}

bool FontVault::IsIntact(const FontFile& file, const StopFlag& isStopped) const {
    return Has(file) && ChecksumOfContent(PathOf(file), isStopped) == file.checksum;
}

FontVault::Outcome FontVault::Receive(platform::ReadOnlyFile& source, const StopFlag& isStopped,
                                      ReceivedFile& received, platform::SystemError& error) const {
    error = platform::MakePrivateFolder(mIncoming);
    if (!error)
        error = received.copy.Open(mIncoming);
    if (error)
        return Outcome::kUnwritable;
    Checksum checksum;
    received.size = 0;
    platform::SystemError writing;
    error = ReadPieces(source, isStopped, [&](std::string_view piece) {
        received.size += piece.size();
        checksum.Append(piece);
        writing = received.copy.Write(piece);
        return !writing && received.size <= kMaxFontFileSize;
    });
    if (error)
        return Outcome::kUnreadable;
    if (received.size > kMaxFontFileSize)
        return Outcome::kTooLarge;
    if (isStopped)
        return Outcome::kStopped;
    received.checksum = checksum.Digits();
    error = writing ? writing : received.copy.Finish();
    return error ? Outcome::kUnwritable : Outcome::kReceived;
}

platform::SystemError FontVault::Place(ReceivedFile& received, const FontFile& file) const {
    const std::string path = PathOf(file);
    if (const auto error = platform::MakePrivateFolder(FolderOf(path)))
        return error;
    const auto error = received.copy.MoveTo(path);
    // Windows replaces no file that a program shows text with; it is one that could not be removed then.
    const StopFlag goesOn{false};
    return error && IsIntact(file, goesOn) ? platform::SystemError{} : error;
}

bool FontVault::Rename(const FontFile& file, const FontFile& target) const {
    std::error_code failure;
    fs::rename(platform::Utf8Path(PathOf(file)), platform::Utf8Path(PathOf(target)), failure);
    return !failure;
}

platform::SystemError FontVault::Remove(const FontFile& file) const {
    return platform::RemoveFile(PathOf(file));
}

std::string FontVault::ChecksumOfName(const std::string& path) {
    return platform::NamePart(path).substr(0, kChecksumLength);
}

std::string FontVault::ChecksumOfContent(const std::string& path, const StopFlag& isStopped) {
    platform::ReadOnlyFile file;
    Checksum checksum;
    const bool isRead = !file.Open(path) && !ReadPieces(file, isStopped, [&](std::string_view piece) {
        checksum.Append(piece);
        return true;
    });
    return isRead && !isStopped ? checksum.Digits() : std::string();
}

std::string FontVault::SetAside(const std::string& path) const {
    std::string target = DamagedFolder(mFolder) + platform::kPathSeparator + platform::NamePart(path);
    std::error_code failure;
    if (platform::MakePrivateFolder(DamagedFolder(mFolder)))
        return {};
    fs::rename(platform::Utf8Path(path), platform::Utf8Path(target), failure);
    return failure ? std::string() : target;
}

FontVault::Survey FontVault::LookAround(const std::vector<FontFile>& known) const {
    Survey survey;
    survey.removed = RemoveAll(mIncoming);
    std::set<std::string> wanted;
    for (const FontFile& file : known)
        wanted.insert(PathOf(file));
    for (const std::string& path : ShardedFiles(mFolder)) {
        if (wanted.count(path) != 0)
            continue;
        if (!IsTemporaryName(platform::Utf8Path(path)))
            survey.unknown.push_back(path);
        else if (!platform::RemoveFile(path))
            ++survey.removed;
    }
    std::copy_if(known.begin(), known.end(), std::back_inserter(survey.missing),
                 [&](const FontFile& file) { return !Has(file); });
    return survey;
}

}  // namespace pellwick
