#include "KnownPrograms.h"

#include <algorithm>
#include <string_view>

#include "HostApplications.h"
#include "Output.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/System.h"

namespace {

struct KnownProgram {
    std::string_view beginning;  ///< of the file's name; a version may follow
    std::string_view host;
    std::string_view
        ownProcessOption;      ///< has it stay a process of its own; a "#" becomes this process's number
    std::string_view process;  ///< what takes documents over where there is no such option
};

constexpr KnownProgram kPrograms[] = {
    {"inkscape", "Inkscape", "--app-id-tag=plugincore#", ""},
    {"gimp", "GIMP", "--new-instance", ""},
    {"scribus", "Scribus", "", ""},
    {"evince", "Evince", "", ""},
    {"soffice", "LibreOffice", "", "soffice.bin"},
    {"libreoffice", "LibreOffice", "", "soffice.bin"},
    {"loffice", "LibreOffice", "", "soffice.bin"},
    {"lowriter", "LibreOffice", "", "soffice.bin"},
    {"localc", "LibreOffice", "", "soffice.bin"},
    {"lodraw", "LibreOffice", "", "soffice.bin"},
    {"loimpress", "LibreOffice", "", "soffice.bin"},
};

const KnownProgram* Find(const std::vector<std::string>& program) {
    const std::string name = program.empty() ? "" : platform::NamePart(program.front());
    const auto known =
        std::find_if(std::begin(kPrograms), std::end(kPrograms),
                     [&](const KnownProgram& each) { return name.starts_with(each.beginning); });
    return known != std::end(kPrograms) ? known : nullptr;
}

bool IsRunning(std::string_view process) {
    std::vector<platform::ProcessInfo> found;
    platform::Current<platform::Processes>().List([=](const std::string& name) { return name == process; },
                                                  found);
    return !found.empty();
}

}  // namespace

std::string HostOfProgram(const std::vector<std::string>& program, const std::string& otherwise) {
    const KnownProgram* known = Find(program);
    const auto served = ServedHostApplications(platform::kIsLinux);
    const bool isServed =
        known != nullptr &&
        std::any_of(served.begin(), served.end(), [&](const auto& each) { return each.name == known->host; });
    return isServed ? std::string(known->host) : otherwise;
}

void KeepFromHandingOver(std::vector<std::string>& program) {
    const KnownProgram* known = Find(program);
    if (known == nullptr)
        return;
    std::string option(known->ownProcessOption);
    if (!option.empty()) {
        if (option.back() == '#')
            option.replace(option.size() - 1, 1, std::to_string(platform::CurrentProcessId()));
        program.insert(program.begin() + 1, std::move(option));
    }
    if (!known->process.empty() && IsRunning(known->process))
        PrintError(
            std::string(known->host) +
            " runs already and takes the documents over, without their fonts: close it and try again, or use "
            "its plug-in");
}
