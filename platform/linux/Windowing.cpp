#include "platform/Windowing.h"

namespace platform {
namespace {

/// A Linux host is driven without a display.
class NoWindowing : public Windowing {
public:
    WindowHandle FindTopLevelByClass(const std::string&) override { return nullptr; }
    std::vector<WindowInfo> TopLevelWindows() override { return {}; }
    std::vector<WindowInfo> Descendants(WindowHandle) override { return {}; }
    void ShowStringResourceNotice(const std::string&, unsigned) override {}
};

}  // namespace

template <>
Windowing& SystemDefault<Windowing>() {
    static NoWindowing windowing;
    return windowing;
}

}  // namespace platform
