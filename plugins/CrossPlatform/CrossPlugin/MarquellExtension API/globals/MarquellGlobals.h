// The process-wide state of the plug-in core: who the calling plug-in is, which host it runs in, the flags
// that gate what users see, and the shared objects. Main thread throughout; nothing here is locked.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "FontActivationTracker.h"
#include "HostAppInterface.h"
#include "HostApplication.h"
#include "HostCompatibility.h"
#include "HostWindow.h"
#include "VPFInterface.h"

namespace MarquellGlobals {

// ---- Identity: set once at start-up, lives to process end. Getters answer with an empty text for what is
// not set.

/// Takes over who the plug-in is from its bundle identifier or path and the version that the host must begin
/// with. `interfaceVersion` is asked for the version of the font manager's interface library when its turn
/// comes.
void SetUpPluginIdentity(const std::string& identifierOrPath, const std::string& versionPrefixRequired,
                         const std::function<std::string()>& interfaceVersion);
/// Sets the host application and with it the name of its window; no name takes the bundle identifier's
/// instead.
void SetHostApp(const std::optional<std::string>& name);

std::string GetPluginBundleIdentifier();
std::string GetPluginHostApp();
std::string GetVersionPrefixRequired();
std::string GetHostAppMinimumVersion();
std::string GetPluginVersion();
std::string GetPluginInterfaceVersion();
std::string GetPluginPath();
std::string GetHostWindowName();

HostKind GetHostKind();
/// For code that is made for one host; what is shared asks for the kind.
bool HostAppIsInDesign();
bool HostAppIsInCopy();
bool HostAppIsIllustrator();
bool HostAppIsPhotoshop();
bool HostAppIsAfterEffects();
bool HostAppIsSketch();
/// For names of panels and resources; nothing is named by it yet.
std::string GetHostShortCode();

// ---- State flags, all false at load.

void SetPluginServicesEnabled(bool enable);
void SetConnectedToCore(bool connected);
void SetLoggedIn(bool loggedIn);
void SetPluginFunctionalityEnabled(bool enable);
void SetBulkReplicationRunning(bool isReplicating);
void SetIncrementalReplicationRunning(bool isReplicating);

bool ArePluginServicesEnabled();
bool IsConnectedToCore();
bool IsLoggedIn();
bool IsPluginFunctionalityEnabled();
// Nothing waits for the font manager's copying yet.
bool IsBulkReplicationRunning();
bool IsIncrementalReplicationRunning();
/// Services enabled, logged in and functionality enabled.
bool IsPluginFunctional();

/// Counts a call of the start-up routine; the number of calls so far, this one included.
int32_t CountStartup();

// ---- Shared objects, made on first use, living to process end.

/// Never null. One that could not be made answers like one without a framework, in the state kNotMade.
VPFInterface* GetSharedVPFInterface();
FontActivationTracker* GetSharedFontActivationTracker();
/// Null until one was set.
HostAppInterface* GetSharedHostAppInterface();
void SetSharedHostAppInterface(std::unique_ptr<HostAppInterface> hostApp);

// ---- Fonts.

/// Hands the document's font usage to the font manager; true when it took it. `hint` may be null.
bool SaveDocumentFonts(const std::string& path, bool replace, CFStringRef hint);
/// Has the host refresh its font list: calls `callback` twice, one call after the other, unless it is null.
/// Hosts miss the first one.
void RefreshActiveFontList(void (*callback)(void*), void* context);

/// Forgets everything, as if the library had just been loaded. For tests.
void ResetForTesting();

}  // namespace MarquellGlobals
