#include "platform/Windowing.h"

#include "platform/Environment.h"
#include "platform/NativeDialogs.h"
#include "platform/VersionResource.h"

namespace platform {
namespace {

std::string StringResource(const std::string& modulePath, unsigned stringID, const std::string& otherwise) {
    SystemError ignored;
    for (const std::string& language : {UserLanguage(), std::string("en")}) {
        const std::string key = "String" + std::to_string(stringID) + "." + language;
        if (auto text = Current<VersionResources>().FromFile(modulePath, key.c_str(), ignored))
            return *std::move(text);
    }
    return otherwise;
}

class LinuxWindowing : public Windowing {
public:
    WindowHandle FindTopLevelByClass(const std::string&) override { return nullptr; }
    std::vector<WindowInfo> TopLevelWindows() override { return {}; }
    std::vector<WindowInfo> Descendants(WindowHandle) override { return {}; }
    void ShowStringResourceNotice(const std::string& modulePath, unsigned stringID,
                                  const std::string& otherwise) override {
        auto& dialogs = Current<NativeDialogs>();
        if (dialogs.IsAvailable())
            dialogs.ShowMessage(nullptr, "", StringResource(modulePath, stringID, otherwise), {"OK", {}});
    }
};

}  // namespace

template <>
Windowing& SystemDefault<Windowing>() {
    static LinuxWindowing windowing;
    return windowing;
}

}  // namespace platform
