#include "agent/FontManager.h"

#include <algorithm>

#include "FontRecordKeys.h"
#include "common/Protocol.h"
#include "platform/FileLock.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/System.h"
#include "store/Schema.h"

namespace pellwick {
namespace {

/// False only for a process that is certainly dead. One that cannot be examined, for example because no
/// descriptor is free, may be a living host whose fonts must stay.
bool MayBeAlive(const HostProcess& host) {
    return platform::StateOfProcess(host.process, host.startTime) != platform::ProcessState::kGone;
}

}  // namespace

FontManager::FontManager(const Locations& places)
    : locations(places),
      self{platform::CurrentProcessId(), platform::ProcessStartTime(platform::CurrentProcessId())},
      database(places.databasePath),
      fonts(database),
      replacements(fonts),
      activations(database),
      workgroups(database),
      sets(database),
      smartLists(database),
      documents(database),
      settings(database),
      vault(places.vaultFolder, places.session),
      activeFonts(MakeActiveFonts(places.linkFolder, vault)),
      previews(places.previewFolder) {
    // Agents of several sessions may start at once; on Linux there is one.
    platform::FileLock upgrade;
    if (!platform::kIsLinux)
        upgrade.Acquire(locations.databasePath + ".lock", true);
    PrepareSchema(database, locations.session);
    (void)database.HasChangedElsewhere();  // what comes from here on
    mShared = fonts.SharedState();
}

FontVault::Survey FontManager::LookAroundVault() {
    FontVault::Survey survey = vault.LookAround(fonts.Files());
    Transaction transaction(database);
    fonts.NoteMissingFiles(survey.missing);
    // A command that removed fonts may have been interrupted before their files were gone.
    for (const std::string& checksum : fonts.RemovedFiles()) {
        bool isGone = true;
        std::erase_if(survey.unknown, [&](const std::string& path) {
            if (FontVault::ChecksumOfName(path) != checksum)
                return false;
            const bool isRemoved = !platform::RemoveFile(path);
            isGone = isGone && isRemoved;
            survey.removed += isRemoved ? 1 : 0;
            return true;  // one that cannot be removed is not taken back either
        });
        if (isGone)
            fonts.ForgetRemovedFile(checksum);
    }
    transaction.Commit();
    // Otherwise a database that loses its log would remove fonts again that are added from now on.
    (void)database.WriteBackLog();
    return survey;
}

ActiveFonts::Repairs FontManager::RepairActiveFonts() {
    ActiveFonts::Repairs repairs = activeFonts->Repair(fonts.ActiveFiles());
    for (const FontFile& file : repairs.missing)
        fonts.SetFileMissing(file.id, true);
    mNeedsRepair = !repairs.problem.empty();
    return repairs;
}

bool FontManager::FollowOtherSessions() {
    std::string shared = fonts.SharedState();
    if (shared == mShared)
        return false;
    RepairActiveFonts();
    mShared = std::move(shared);
    return true;
}

ActivationChanges FontManager::EndLeasesOfDeadProcesses() {
    Activation activation = BeginActivation();
    return EndLeasesUnless(MayBeAlive, activation);
}

ActivationChanges FontManager::EndLeasesOfEarlierEra() {
    const std::string era = platform::ProcessEra();
    const std::string before = settings.Era();
    if (era == before)
        return {};
    Activation activation = BeginActivation();
    settings.NoteEra(era);
    if (era.empty() || before.empty())  // it cannot be told, or an older version noted none
        return activation.Commit();
    activations.EndLeasesOfOtherSessions();
    return EndLeasesUnless([](const HostProcess&) { return false; }, activation);
}

ActivationChanges FontManager::EndLeasesUnless(bool (*mayBeAlive)(const HostProcess& host),
                                               Activation& activation) {
    for (const HostProcess& host : activations.HostsWithAnswers()) {
        if (!mayBeAlive(host))
            activations.ForgetAnswer(host);
    }
    return EndLeasesOfDeadHosts(activations, activation, mayBeAlive);
}

int64_t FontManager::CountHosts() {
    const std::vector<HostProcess> hosts = activations.Hosts();
    return std::count_if(hosts.begin(), hosts.end(), [&](const HostProcess& host) { return host != self; });
}

void FontManager::LetGoOfKeptFonts() {
    Activation activation = BeginActivation();
    for (const uint32_t fontID : activations.FontsLeasedBy(self))
        activation.EndAllLeases(fontID, self);
    activation.Commit();
}

ActivationChanges FontManager::UndoRequests(const HostProcess& host, long long first, long long last) {
    Activation activation = BeginActivation();
    activation.UndoRequests(host, first, last);
    return activation.Commit();
}

std::string FontManager::PathOf(const Font& font) const {
    if (FontActivationStateCountsAsActive(font.activationState) != 0 && !font.file.IsSystems())
        return activeFonts->PathOf(font.file);
    return vault.PathOf(font.file);
}

Workgroup FontManager::CurrentWorkgroup() {
    auto workgroup = workgroups.FindByID(settings.CurrentWorkgroup());
    return workgroup ? *workgroup : DefaultWorkgroup();
}

Workgroup FontManager::DefaultWorkgroup() {
    return workgroups.FirstOfType(kWorkgroupType_FontLibrary).value_or(Workgroup{});
}

}  // namespace pellwick
