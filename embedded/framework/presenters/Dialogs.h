// What each dialog shows, and what was chosen in it: what the library asks and every presenter answers.
//
// A presenter writes the members that say "chosen", which mean something only once the user has confirmed the dialog.
// Texts are UTF-8 and in the user's language; names of fonts and workgroups may hold anything. The names of the dialogs
// are those in files of answers.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

struct AboutDialog {
    static constexpr char kName[] = "About";
    std::string version;  ///< of the plug-in; may be empty
};

struct PreferencesDialog {
    static constexpr char kName[] = "Preferences";
    struct Switch {
        std::string key;
        std::string title;
        bool isOn = false;  ///< chosen
    };
    std::vector<Switch> switches;
};

struct SelectWorkgroupDialog {
    static constexpr char kName[] = "SelectWorkgroup";
    struct Workgroup {
        int32_t id = 0;
        std::string name;
    };
    std::vector<Workgroup> workgroups;
    int32_t workgroupID = 0;  ///< the current one, which need not be in the list; chosen, which is
};

struct CommandBoxDialog {
    static constexpr char kName[] = "CommandBox";
    struct Command {
        int32_t number = 0;
        std::string title;
    };
    struct WorkgroupCommand {
        int32_t number = 0;
        std::string name;
        std::optional<int64_t> workgroupID;
    };
    bool isLocalPersonal = false;    ///< the workgroups are called libraries
    bool areButtonsEnabled = false;  ///< a document is in front
    bool isOnline = false;
    std::optional<int64_t> currentWorkgroupID;
    std::vector<Command> commands;
    std::vector<WorkgroupCommand> workgroups;
    int32_t command = 0;  ///< chosen: the number of a command or workgroup of the lists
};

struct ResolveFontsDialog {
    static constexpr char kName[] = "ResolveFonts";
    struct Candidate {
        std::string name;
        std::string description;  ///< what tells it from others; may be empty
    };
    struct Font {
        std::string name;
        std::vector<Candidate> candidates;  ///< the best first
    };
    std::vector<Font> fonts;  ///< several may have one name; a choice is for all of them
    /// Chosen: names of candidates by the names of the fonts that they replace. Fonts that are not in it are skipped.
    std::map<std::string, std::string> replacements;
};

struct RestrictedFontsDialog {
    static constexpr char kName[] = "RestrictedFonts";
    std::vector<std::string> fonts;
    bool onlyNew = false;  ///< those that came since the document was saved
};

struct ChooseFolderDialog {
    static constexpr char kName[] = "ChooseFolder";
    std::string prompt;  ///< may be empty
    std::string initialFolder;
    std::optional<std::string> folder;  ///< chosen; nothing for something that has no path
};

using Dialog = std::variant<AboutDialog, PreferencesDialog, SelectWorkgroupDialog, CommandBoxDialog,
                            ResolveFontsDialog, RestrictedFontsDialog, ChooseFolderDialog>;
