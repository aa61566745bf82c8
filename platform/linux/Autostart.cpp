#include "platform/Autostart.h"

#include <string_view>

#include "platform/Files.h"
#include "platform/Folders.h"

namespace platform {
namespace {

std::string Folder() {
    return Current<Folders>().PathOf(KnownFolder::kConfiguration) + "/autostart";
}

std::string EntryPath(const std::string& name) {
    return Folder() + "/" + name + ".desktop";
}

/// A quoted word of "Exec" (Desktop Entry Specification 1.5): a backslash before what means something within quotes,
/// itself written as two, as in every value; per cent signs stand for files.
std::string QuotedWord(std::string_view word) {
    std::string quoted = "\"";
    for (const char letter : word) {
        if (letter == '\\')
            quoted += R"(\\\)";
        else if (letter == '"' || letter == '`' || letter == '$')
            quoted += R"(\\)";
        else if (letter == '%')
            quoted += '%';
        quoted += letter;
    }
    return quoted + '"';
}

}  // namespace

SystemError SetAutostart(const std::string& name, const std::string& program, const std::string& arguments) {
    if (const SystemError error = MakeFolders(Folder()))
        return error;
    return WriteWholeFile(EntryPath(name), "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" +
                                               QuotedWord(program) + " " + arguments + "\nNoDisplay=true\n");
}

SystemError ClearAutostart(const std::string& name) {
    return RemoveFile(EntryPath(name));
}

bool HasAutostart(const std::string& name) {
    return IsExistingFile(EntryPath(name));
}

}  // namespace platform
