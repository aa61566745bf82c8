// The commands of the program. Each answers with the program's exit status.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HostSession.h"

struct OpenOptions {
    std::vector<std::string> files;
    bool json = false;
    bool showsPaths = false;     ///< of the fonts' files
    bool searchesBytes = false;  ///< as the core does without a list of fonts, whatever the format
    bool closeAtOnce = false;
    std::optional<double> seconds;  ///< how long the documents stay open; else until Enter
};

struct FontsOptions {
    std::vector<std::string> files;
    bool json = false;
    bool showsPlaces = false;    ///< where in the document each font is used
    bool searchesBytes = false;  ///< by the core's search alone
};

struct CollectOptions {
    std::vector<std::string> files;
    std::string folder;            ///< to collect in
    bool besideDocuments = false;  ///< in a folder "Document fonts" beside each document instead
    bool leavesOutRestricted = false;
    bool json = false;
};

struct SettingsOptions {
    std::string key;                   ///< empty: all of them
    std::optional<std::string> value;  ///< to be stored; else the value is shown
    bool json = false;
};

struct MenuOptions {
    std::string choice;    ///< the label or the title of an item; empty: the menu is shown
    std::string document;  ///< opened before; may be empty
    bool json = false;
};

struct EventsOptions {
    std::optional<double> seconds;  ///< how long to go on; else until Enter
};

struct PanelOptions {
    std::vector<std::string> files;  ///< documents that are open meanwhile
    uint16_t port = 0;               ///< 0: whichever is free
    bool opensBrowser = false;
    std::string recording;          ///< a file for what is said; may be empty
    std::optional<double> seconds;  ///< how long to go on; else until Enter
};

/// Opens documents, shows their fonts, keeps them open, closes them.
int RunOpen(const HostOptions& host, const OpenOptions& options);

/// Lists the fonts that documents use. The core is not loaded.
int RunFonts(const FontsOptions& options);

/// Copies the fonts of documents into a folder, with a list of them.
int RunCollect(const HostOptions& host, const CollectOptions& options);

/// Shows or stores preferences.
int RunSettings(const HostOptions& host, const SettingsOptions& options);

/// Shows the plug-in menu or carries out a choice from it.
int RunMenu(const HostOptions& host, const MenuOptions& options);

/// Is idle as hosts are, and prints what goes to the panel, a line for each event.
int RunEvents(const HostOptions& host, const EventsOptions& options);

/// Serves the panel to browsers of this machine.
int RunPanel(const HostOptions& host, const PanelOptions& options);

/// Does what standard input says, one JSON object a line: calls exports and sends messages of panels.
int RunScript(const HostOptions& host);
