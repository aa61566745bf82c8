// Activating fonts, for documents and for the user.
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "agent/FontRecord.h"
#include "agent/FontReports.h"
#include "agent/NamedRecords.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The fonts of one request, each activated once however often it was asked for.
class LeasedFonts {
public:
    LeasedFonts(CommandContext& context, std::string document)
        : mContext(context), mDocument(std::move(document)), mActivation(context.manager.BeginActivation()) {
        context.UndoWhatWasNotTaken(mActivation);  // perhaps of the same request; then the files stay
    }

    /// False when the font's file is gone.
    bool Lease(const Font& font) {
        mContext.audience.KeepAlive();
        if (mPositions.count(font.id) != 0)
            return true;
        Json before = RecordFromBefore(font);
        if (!mActivation.Lease(font, mContext.TermsFor(LeasePurpose::kDocument, mDocument)))
            return false;
        mPositions[font.id] = mMatched.size();
        mMatched.push_back(std::move(before));
        return true;
    }

    /// Leases the best font that answers to the request and whose file is there; its ID, 0 for none.
    uint32_t LeaseBest(const RequestedFont& request) {
        std::vector<Font> candidates = MatchFonts(mContext.manager.fonts, request);
        while (!candidates.empty()) {
            const size_t best = IndexOfBestMatch(candidates, request);
            if (Lease(candidates[best])) {
                if (request.wantsFamily)
                    LeaseFamilyOf(candidates[best]);
                return candidates[best].id;
            }
            candidates.erase(candidates.begin() + static_cast<std::ptrdiff_t>(best));
        }
        return 0;
    }

    /// The record of a font of the request, with the state that it had for this host.
    const Json& Before(uint32_t fontID) const { return mMatched[mPositions.at(fontID)]; }

    Json Commit() {
        RequireSendable(mMatched);
        mContext.MakeProvisional();
        const ActivationChanges changes = mActivation.Commit();
        mContext.NoteUndone();
        AnnounceChanges(mContext.audience, changes);
        return mMatched;
    }

private:
    /// Members whose file is gone are left out: nobody asked for them by name.
    void LeaseFamilyOf(const Font& font) {
        for (const Font& member : BestOfEachName(RestOfFamily(mContext.manager.fonts, font)))
            Lease(member);
    }

    /// A host deactivates what was inactive before. So what others hold, or this host for other purposes
    /// than a document, counts as inactive: it ends independently of this document.
    Json RecordFromBefore(const Font& font) const {
        Json record = FontRecord(mContext.manager, font);
        if (font.activationState == kFontActivationState_ActivatedByPlugin &&
            !mContext.manager.activations.HasLease(mContext.client.process, font.id, LeasePurpose::kDocument))
            record[kGS_ActivationStateKey] = kFontActivationState_Inactive;
        return record;
    }

    CommandContext& mContext;
    std::string mDocument;
    Activation mActivation;
    std::map<uint32_t, size_t> mPositions;  ///< in mMatched, by font ID
    Json mMatched = Json::array();
};

Json ActivateForDocument(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    const Json& requests = ArrayMember(arguments, member::kFonts);
    LeasedFonts leases(context, StringMember(arguments, member::kDocument));
    Json unmatched = Json::array();
    std::vector<std::pair<size_t, uint32_t>> matches;  // of requests, by their position: the font's ID
    for (size_t index = 0; index < requests.size(); ++index) {
        if (const uint32_t fontID = leases.LeaseBest(RequestedFontOf(requests[index])))
            matches.emplace_back(index, fontID);
        else
            unmatched.push_back(index);
    }
    Json matched = leases.Commit();
    Json reported = Json::array();
    for (const auto& [index, fontID] : matches)
        reported.push_back(
            ReportedFont(requests[index], leases.Before(fontID), manager, *manager.fonts.Find(fontID)));
    Json replacements = ReplacementsFor(context, arguments, unmatched);
    return {{member::kMatched, std::move(matched)},
            {member::kUnmatched, std::move(unmatched)},
            {member::kReplacements, std::move(replacements)},
            {member::kReported, std::move(reported)}};
}

}  // namespace

Json commands::ActivateFonts(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    LeasedFonts leases(context, StringMember(arguments, member::kDocument));
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        if (const auto font = context.manager.fonts.Find(id))
            leases.Lease(*font);
    }
    return {{member::kMatched, leases.Commit()}};
}

Json commands::ActivateDocumentFonts(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    return AnswerWhenFontsAreKnown(context, arguments, ActivateForDocument);
}

/// They become the agent's own, and end with it.
Json commands::KeepFonts(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    FontManager& manager = context.manager;
    const std::vector<uint32_t> ids = arguments.contains(member::kFonts)
                                          ? FontIDsOf(ArrayMember(arguments, member::kFonts))
                                          : manager.activations.FontsLeasedBy(context.client.process);
    Activation activation = manager.BeginActivation();
    for (const uint32_t id : ids) {
        context.audience.KeepAlive();
        const auto font = manager.fonts.Find(id);
        if (font && manager.activations.HasLease(context.client.process, id, LeasePurpose::kDocument))
            activation.Lease(*font, {manager.self, LeasePurpose::kDocument});
    }
    AnnounceChanges(context.audience, activation.Commit());
    return Json::object();
}

Json commands::DeactivateFonts(CommandContext& context, const Json& arguments) {
    Activation activation = context.manager.BeginActivation();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        context.audience.KeepAlive();
        activation.EndLeases(id, context.client.process, LeasePurpose::kDocument);
    }
    Json deactivated = Json::array();
    for (const uint32_t id : activation.Changes().deactivated)
        deactivated.push_back(FontRecord(context.manager, *context.manager.fonts.Find(id)));
    RequireSendable(deactivated);
    Json answer = {{member::kDeactivated, std::move(deactivated)}};
    context.KeepAnswer(answer);
    AnnounceChanges(context.audience, activation.Commit());
    return answer;
}

Json commands::GetClientStates(CommandContext& context, const Json& arguments) {
    Json states = Json::array();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts)))
        states.push_back(
            {{member::kFont, id},
             {member::kIsActive, context.manager.activations.HasLease(context.client.process, id)}});
    return {{member::kStates, std::move(states)}};
}

}  // namespace pellwick
