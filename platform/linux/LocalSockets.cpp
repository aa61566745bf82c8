#include "platform/LocalSockets.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Files.h"

namespace platform {

const size_t kLocalSocketPathLimit = sizeof(sockaddr_un::sun_path) - 1;

SystemError IdentifyPeer(NativeSocket socket, PeerIdentity& peer) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (getsockopt(static_cast<int>(socket), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return LastSystemError();
    peer.process = credentials.pid;
    peer.isSameUser = credentials.uid == geteuid();
    return {};
}

SystemError MakePrivateFolder(const std::string& path) {
    if (const SystemError error = MakeFolders(path, true))
        return error;
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0)
        return LastSystemError();
    if (!S_ISDIR(info.st_mode))
        return SystemError{ENOTDIR};
    if (info.st_uid != geteuid())
        return SystemError{EPERM};
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0 && chmod(path.c_str(), S_IRWXU) != 0)
        return LastSystemError();
    return {};
}

SystemError MakeFilePrivate(const std::string& path) {
    return chmod(path.c_str(), S_IRUSR | S_IWUSR) == 0 ? SystemError{} : LastSystemError();
}

}  // namespace platform
