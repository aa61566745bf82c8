#include "activation/Activation.h"

#include <set>

#include "FontRecordKeys.h"

namespace pellwick {
namespace {

void RemoveAll(std::vector<uint32_t>& fonts, const std::vector<uint32_t>& others) {
    const std::set<uint32_t> unwanted(others.begin(), others.end());
    std::erase_if(fonts, [&](uint32_t font) { return unwanted.count(font) != 0; });
}

}  // namespace

Activation::Activation(Database& database, FontStore& fonts, ActivationStore& activations,
                       ActiveFonts& active, Durability durability)
    : mFonts(fonts), mActivations(activations), mActive(active), mTransaction(database, durability) {}

Activation::~Activation() {
    if (mIsCommitted)
        return;
    for (const FontFile& file : mAdded)
        mActive.Remove(file);
    mActive.AnnounceChanges();
}

bool Activation::Lease(const Font& font, const LeaseTerms& terms) {
    if (font.file.IsSystems())
        return true;
    if (!MakeActive(font))
        return false;
    mActivations.AddLease(font.id, terms);
    return true;
}

bool Activation::ActivateForUser(const Font& font) {
    if (font.file.IsSystems())
        return true;
    if (!MakeActive(font))
        return false;
    mActivations.AddUserActivation(font.id);
    return true;
}

bool Activation::MakeActive(const Font& font) {
    const bool wasActive = mActive.Has(font.file);
    const bool isAdded = mActive.Add(font.file);
    if (!mActive.IsInVault(font.file))
        NoteMissing(font.file);
    else if (font.activationState == kFontActivationState_Missing)
        mFonts.SetFileMissing(font.file.id, false);
    if (!isAdded)
        return false;
    if (!wasActive)
        mAdded.push_back(font.file);
    const std::optional<Font> current = mFonts.Find(font.id);
    if (current && current->activationState == kFontActivationState_Inactive)
        mChanges.activated.push_back(font.id);
    return true;
}

void Activation::NoteMissing(const FontFile& file) {
    for (const Font& font : mFonts.FontsOfFile(file.id)) {
        if (font.activationState != kFontActivationState_Missing)
            mChanges.missing.push_back(font.id);
    }
    mFonts.SetFileMissing(file.id, true);
}

void Activation::EndLeases(uint32_t fontID, const HostProcess& host, LeasePurpose purpose) {
    if (mActivations.EndLeases(host, purpose, fontID))
        Released(fontID);
}

void Activation::EndAllLeases(uint32_t fontID, const HostProcess& host) {
    if (mActivations.EndAllLeases(host, fontID))
        Released(fontID);
}

void Activation::UndoRequests(const HostProcess& host, long long first, long long last) {
    const std::vector<uint32_t> fonts = mActivations.EndLeasesOfRequests(host, first, last);
    for (const uint32_t fontID : std::set<uint32_t>(fonts.begin(), fonts.end()))
        Released(fontID);
}

void Activation::DeactivateForUser(uint32_t fontID) {
    if (mActivations.RemoveUserActivation(fontID))
        Released(fontID);
}

void Activation::RemoveFile(const FontFile& file) {
    for (const Font& font : mFonts.FontsOfFile(file.id)) {
        if (font.activationState == kFontActivationState_ActivatedByUser ||
            font.activationState == kFontActivationState_ActivatedByPlugin)
            mChanges.deactivated.push_back(font.id);
    }
    mFonts.RemoveFile(file.id);
    mReleased.push_back(file);
}

void Activation::Released(uint32_t fontID) {
    const std::optional<Font> font = mFonts.Find(fontID);
    if (!font)
        return;
    if (font->activationState == kFontActivationState_Inactive)
        mChanges.deactivated.push_back(fontID);
    mReleased.push_back(font->file);
}

ActivationChanges Activation::Commit() {
    mTransaction.Commit();
    mIsCommitted = true;
    for (const FontFile& file : mReleased) {
        if (!mFonts.IsFileActive(file.id))
            mActive.Remove(file);
    }
    mActive.AnnounceChanges();
    // What was released and taken again in one go has not changed.
    const std::vector<uint32_t> activated = mChanges.activated;
    RemoveAll(mChanges.activated, mChanges.deactivated);
    RemoveAll(mChanges.deactivated, activated);
    return std::move(mChanges);
}

}  // namespace pellwick
