// Which fonts of which documents are to be collected where.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "Commands.h"
#include "OpenedDocument.h"

/// What goes into one folder.
struct CollectTarget {
    std::string folder{};  ///< full path
    nlohmann::json ids = nlohmann::json::array();
    std::map<int64_t, nlohmann::json> uses;              ///< of these fonts, by ID: lists for the manifest
    std::map<std::string, nlohmann::json> missingFonts;  ///< for the manifest, by the document's file name

    std::set<std::string> MissingNames() const;
    void Add(const OpenedDocument& document);
};

/// One thread.
class CollectPlan {
public:
    explicit CollectPlan(const CollectOptions& options) : mOptions(options) {}

    /// Opens each document for a moment, so that the font manager says which fonts it has. kDone, or what the
    /// program ends with after error lines; the plan holds what is known all the same.
    int Read(const CoreLibrary& core, const std::vector<std::string>& paths);
    const std::vector<CollectTarget>& Targets() const { return mTargets; }

private:
    CollectTarget& TargetOf(const std::string& path);

    const CollectOptions& mOptions;
    std::vector<CollectTarget> mTargets;
};
