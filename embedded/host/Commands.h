// The commands of the program. Each answers with the program's exit status.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HostSession.h"

/// How long a command stays open: so long, or until it is asked to end, or else until Enter.
struct OpenTime {
    std::optional<double> seconds;
    bool isUntilSignal = false;  ///< Ctrl-C, or a signal that asks the program to end
};

struct OpenOptions {
    std::vector<std::string> files;
    std::vector<std::string> fontNames;  ///< to be activated as well
    /// A program and its arguments, which the documents are opened for; "{}" stands for them. Empty: none.
    std::vector<std::string> program;
    bool json = false;
    bool showsPaths = false;     ///< of the fonts' files
    bool searchesBytes = false;  ///< as the core does without a list of fonts, whatever the format
    bool closeAtOnce = false;
    OpenTime time;
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
    OpenTime time;
};

struct PanelOptions {
    std::vector<std::string> files;  ///< documents that are open meanwhile
    uint16_t port = 0;               ///< 0: whichever is free
    bool opensBrowser = false;
    std::string recording;  ///< a file for what is said; may be empty
    OpenTime time;
};

/// Opens documents, shows their fonts, keeps them open, closes them.
int RunOpen(const HostOptions& host, const OpenOptions& options);

/// Has the fonts of documents activated, and goes on as a program that uses them. Where that works it is the program's
/// exit status that counts, and on Linux this does not come back.
int RunProgram(const HostOptions& host, const OpenOptions& options);

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
