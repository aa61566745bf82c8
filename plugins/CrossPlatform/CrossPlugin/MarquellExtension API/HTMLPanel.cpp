#include "HTMLPanel.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>

#include "FontID.h"
#include "HostPatience.h"
#include "PanelLimits.h"
#include "PanelLog.h"
#include "PanelMessage.h"
#include "ScopeExit.h"
#include "TarnwickPluginInterface.h"
#include "TraceLog.h"
#include "platform/Files.h"

using namespace panel_messages;

namespace {

constexpr char kPanelToPlugin[] = "com.vantorix.PanelToPlugin";
constexpr char kPluginToPanel[] = "com.vantorix.PluginToPanel";
constexpr int32_t kApplicationScope = 1;
constexpr int32_t kEventErrorCode_Success = 0;

/// The location of an image as panels take it, with two slashes whatever the path begins with; empty for
/// none.
std::string ImageLocation(const std::string& path) {
    return path.empty() ? path : "file://" + platform::WithSlashes(path);
}

}  // namespace

std::unique_ptr<HTMLPanel> HTMLPanel::Create(PlugPlugService* plugPlug) {
    const bool isUsable = plugPlug->AddEventListener != nullptr && plugPlug->DispatchEvent != nullptr;
    return isUsable ? std::make_unique<HTMLPanel>(plugPlug) : nullptr;
}

ErrorCode HTMLPanel::RegisterHandler() {
    RETURN_IF_NULL(mPlugPlug);
    const WithinHost host;
    const int32_t status = mPlugPlug->AddEventListener(mPlugPlug, kPanelToPlugin, EventCallback, this);
    if (status == kEventErrorCode_Success)
        return CoreErrorCodes::kSuccess;
    ReportFailure(kLogCategory,
                  {"mPlugPlug->AddEventListener(\"com.vantorix.PanelToPlugin\", EventCallback, this) != "
                   "csxs::event::kEventErrorCode_Success",
                   __FILE__, __LINE__},
                  CoreErrorCodes::kNotInitialized, GLogger::kDebug);  // expected while the host starts
    return CoreErrorCodes::kNotInitialized;
}

void HTMLPanel::EventCallback(const PlugPlugEvent* event, void* context) {
    auto* panel = static_cast<HTMLPanel*>(context);
    if (panel == nullptr || event == nullptr || event->data == nullptr)
        return;
    constexpr char kName[] = "HTMLPanel::EventCallback";
    const bool isWithinCall = HostCall::Innermost() != 0;
    const HostCall call;
    if (!isWithinCall)
        HostPatience::Renew();
    try {  // nothing is thrown into the host
        panel->HandleInTurn(event->data);
    } catch (const std::exception& exception) {
        LogMessage(0, "Exception thrown in %s(): %s", kName, exception.what());
    } catch (...) {
        LogMessage(0, "Exception thrown in %s()", kName);
    }
}

void HTMLPanel::HandleInTurn(std::string message) {
    if (mRequests.size() == panel_limits::kMostRequestsInTurn) {
        LogMessage(0, "Dropping a request of a panel that sends more than can be answered");
        return;
    }
    mRequests.push_back(std::move(message));
    const TurnHolder turn(mHandling);
    if (!turn)
        return;
    const ScopeExit done([this] { mRequests.clear(); });
    for (size_t count = 0; !mRequests.empty(); ++count) {
        if (count == panel_limits::kMostRequestsInTurn) {
            LogMessage(0, "Dropping %d requests of a panel that answers every reply with more of them",
                       static_cast<int>(mRequests.size()));
            return;
        }
        const std::string request = std::move(mRequests.front());
        mRequests.pop_front();
        static_cast<void>(CallMethodForMessage(request));
    }
}

ErrorCode HTMLPanel::SelectSocket(bool) {
    return CoreErrorCodes::kSuccess;
}

uint32_t HTMLPanel::GetSocketPort() {
    return 0;
}

ErrorCode HTMLPanel::SendMessage(const std::string& message) {
    RETURN_IF_NULL(mPlugPlug);
    const PlugPlugEvent event{kPluginToPanel, kApplicationScope, "HTML", nullptr, message.c_str()};
    const WithinHost host;
    // What the service takes may still not arrive; nobody can tell.
    return mPlugPlug->DispatchEvent(mPlugPlug, &event) == kEventErrorCode_Success ? CoreErrorCodes::kSuccess
                                                                                  : CoreErrorCodes::kError;
}

void HTMLPanel::QueueFontImages(CFDictionaryRef fontPNGs) {
    mPendingFontImages.clear();
    const auto queue = [](const void* key, const void* value, void* context) {
        const auto fontID = FontIDFrom(static_cast<CFTypeRef>(key));
        const auto paths = cf::As<CFDictionaryRef>(static_cast<CFTypeRef>(value));
        if (fontID)
            static_cast<HTMLPanel*>(context)->mPendingFontImages.push_back(
                {*fontID, ImageLocation(cf::GetString(paths, kGS_PNGFilenameKey)),
                 ImageLocation(cf::GetString(paths, kGS_2xPNGFilenameKey))});
    };
    if (fontPNGs != nullptr)
        CFDictionaryApplyFunction(fontPNGs, queue, this);
}

ErrorCode HTMLPanel::SendFontImages(CFDictionaryRef fontPNGs) {
    PanelMessage message(kGetFontPNG);
    QueueFontImages(fontPNGs);
    PanelMessage::Node jsonArray = message.Root().AddArray(kFontsKey);
    for (const FontImage& image : mPendingFontImages)
        jsonArray.AddMap("fontURLMap")
            .Set(kFontIDKey, image.fontID)
            .Set(kPngFilenameKey, image.location)
            .Set(k2xPngFilenameKey, image.doubleResolutionLocation);
    return Send(message);
}
