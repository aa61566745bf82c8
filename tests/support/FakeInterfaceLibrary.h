// The 86 functions of an interface library, which succeed and leave their outputs alone unless a test scripts them.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <tuple>

#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"

class FakeInterfaceLibrary {
public:
    FakeInterfaceLibrary();
    ~FakeInterfaceLibrary();
    FakeInterfaceLibrary(const FakeInterfaceLibrary&) = delete;
    FakeInterfaceLibrary& operator=(const FakeInterfaceLibrary&) = delete;

    static std::map<std::string, void*> Symbols();

    std::map<std::string, std::deque<ErrorCode>> codes;   ///< answers by symbol, first to last; then success
    std::function<ErrorCode(const std::string&)> answer;  ///< asked first, if set: a code other than 0 stands
    std::vector<std::string> calls;                       ///< symbols in the order in which they were called
    std::vector<std::string> given;  ///< those that succeeded: "Symbol(7, 'text', [1,2])"
    std::string log;                 ///< what Log was given
    CFRef<CFArrayRef> wanted;        ///< the fonts that activation was asked for last

    // Answers of successful calls.
    bool isLoggedIn = true;
    bool isStandalone = true;
    bool isAgentRunning = true;
    std::set<int32_t> permissions;                        ///< what MotherMayI grants
    std::vector<std::pair<uint32_t, std::string>> fonts;  ///< matched by any request: ID, PostScript name
    std::map<uint32_t, std::string> fontVersions;         ///< by database ID
    std::set<uint32_t> remoteFonts;                ///< database IDs of fonts that are on the server alone
    std::map<uint32_t, std::string> fingerprints;  ///< XML by database ID
    std::vector<std::string> unmatchedFonts;       ///< PostScript names, of any request
    int64_t replacementID = 0;  ///< of "Replacement", which can replace any unmatched font; 0: none
    int64_t activationStateBefore = 0;
    int64_t activationStateAfter = kFontActivationState_ActivatedByPlugin;
    std::vector<std::tuple<int32_t, int32_t, std::string>> workgroups;  ///< ID, type, name
    std::vector<std::string> exportedTo;  ///< the folder of each font that was exported

    struct SmartList {
        int32_t id;
        std::string name;
        std::vector<int32_t> workgroupIDs;
        std::vector<int32_t> setIDs;
        std::vector<int32_t> smartSetIDs;
        std::string definition;
    };
    std::vector<SmartList> smartLists;
    std::vector<CFRef<CFDictionaryRef>> smartListFonts;  ///< of any smart list
    std::vector<int64_t> conflictingFonts;               ///< with any font
    bool areWebFontsEnabled = false;
    bool canAccessWebFonts = false;
    bool isReplicationRunning = false;
    int32_t replicationMode = 0;

    int CallsOf(const std::string& symbol) const;
};
