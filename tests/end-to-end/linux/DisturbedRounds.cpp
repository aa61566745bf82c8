#include "DisturbedRounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <thread>

#include "platform/Files.h"

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;

constexpr int kMostReasonsShown = 10;
constexpr size_t kLogShown = 2000;
constexpr size_t kTraceShown = 60000;  // bytes, of the first round that is not clean

const std::vector<std::string> kFonts = {"First-Bold", "Second-Bold", "Third-Bold", "Fourth-Bold"};
// Each document shares fonts with others.
const std::vector<std::vector<std::string>> kFontsOfDocuments = {{"First-Bold", "Second-Bold"},
                                                                 {"Second-Bold", "Third-Bold"},
                                                                 {"Third-Bold", "Fourth-Bold"},
                                                                 {"First-Bold", "Fourth-Bold"}};

template <class Duration>
long long Milliseconds(Duration duration) {
    return duration_cast<milliseconds>(duration).count();
}

}  // namespace

DisturbedRounds::DisturbedRounds(const Plan& plan) : mPlan(plan), mRandom(plan.seed) {
    mWorld.AddFonts(kFonts);
    for (size_t document = 0; document < kFontsOfDocuments.size(); ++document)
        mWorld.WriteDocument(std::to_string(document) + ".ai", kFontsOfDocuments[document]);
    for (int host = 0; host < plan.hosts; ++host)
        mHosts.push_back(StartHost(mRandom()));
    for (size_t font = 0; font < kFonts.size(); ++font) {  // what it looks like to be active
        mWorld.FontManager().RunForJson({"activate", kFonts[font]});
        mLinks[kFonts[font]] = platform::NamePart(mWorld.FontManager().ActiveFiles().at(0));
        mWorld.FontManager().RunForJson({"deactivate", kFonts[font]});
    }
}

std::unique_ptr<DisturbedRounds::Host> DisturbedRounds::StartHost(unsigned seed) const {
    auto host = std::make_unique<Host>();
    host->random.seed(seed);
    host->process.Start();
    host->process.SetPreference("CloseFontsOnDocClose", 1);
    return host;
}

std::string DisturbedRounds::DocumentPath(int document) const {
    return mWorld.Path(std::to_string(document) + ".ai");
}

void DisturbedRounds::Expect(bool isTrue, const std::string& otherwise) {
    if (isTrue)
        return;
    const std::lock_guard guard(mFindingsLock);
    mFindings.push_back(otherwise);
}

json DisturbedRounds::Timed(Host& host, const char* call, const json& arguments) {
    const auto begin = Clock::now();
    json answer = host.process.Call(call, arguments);
    const auto length = Clock::now() - begin;
    Expect(length < mPlan.callLimit,
           std::string(call) + " took " + std::to_string(Milliseconds(length)) + " ms");
    const std::lock_guard guard(mFindingsLock);
    mSlowestCall = std::max(mSlowestCall, length);
    return answer;
}

void DisturbedRounds::Idle(Host& host) {
    if (mPlan.hasIdleEvents && host.random() % 2 == 0)
        Timed(host, "IdleEvent", json::object());
}

bool DisturbedRounds::AreLinked(const std::vector<std::string>& fonts) const {
    std::set<std::string> active;
    for (const std::string& file : mWorld.FontManager().ActiveFiles())
        active.insert(platform::NamePart(file));
    return std::all_of(fonts.begin(), fonts.end(),
                       [&](const std::string& font) { return active.count(mLinks.at(font)) != 0; });
}

void DisturbedRounds::Open(Host& host, int document) {
    const std::vector<std::string>& fonts = kFontsOfDocuments[static_cast<size_t>(document)];
    const int expected = static_cast<int>(std::count_if(
        fonts.begin(), fonts.end(), [&](const std::string& font) { return host.held[font] == 0; }));
    const json answer = Timed(host, "HandleOpenExistingDocument", {{"path", DocumentPath(document)}});
    const bool isAsWanted =
        answer["code"] == (expected > 0 ? 1 : 0) && answer["out"]["numFontsActivated"] == expected;
    Expect(isAsWanted, "an open that should activate " + std::to_string(expected) + " answered " +
                           answer.dump().substr(0, 300));
    Expect(AreLinked(fonts), "a font of an open document is not to be seen");
    for (const std::string& font : fonts)
        ++host.held[font];
}

void DisturbedRounds::Save(Host& host, int document) {
    const json answer =
        Timed(host, "HandleSaveDocument", {{"path", DocumentPath(document)}, {"hint", "12pt"}});
    Expect(answer["code"] == 0, "a save answered " + answer["code"].dump());
}

void DisturbedRounds::Close(Host& host, int document) {
    const json answer = Timed(host, "HandleCloseDocument", {{"path", DocumentPath(document)}});
    Expect(answer["code"] == 0, "a close answered " + answer["code"].dump());
    for (const std::string& font : kFontsOfDocuments[static_cast<size_t>(document)])
        --host.held[font];
}

void DisturbedRounds::WorkWithDocuments(Host& host, const std::vector<int>& documents) {
    std::vector<int> open;
    for (const int document : documents) {
        Open(host, document);
        open.push_back(document);
        Idle(host);
        if (host.random() % 2 == 0)
            Save(host, document);
        Idle(host);
        if (host.random() % 2 == 0) {
            Close(host, open.front());
            open.erase(open.begin());
        }
    }
    for (const int document : open) {
        Idle(host);
        Close(host, document);
    }
}

void DisturbedRounds::Disturb(Disturbance disturbance, platform::ProcessId agent, Clock::duration moment,
                              Clock::duration length) {
    ++mDisturbances;
    std::this_thread::sleep_for(moment);
    switch (disturbance) {
        case Disturbance::kKill:
            KillProcess(agent);
            break;
        case Disturbance::kRestart:
            if (length.count() % 2 == 0)
                KillProcess(agent);
            else
                mWorld.FontManager().Run({"stop", "--no-start"});
            mWorld.FontManager().Run({"list"});
            break;
        case Disturbance::kStall:
            SuspendProcess(agent);
            std::this_thread::sleep_for(length);
            ResumeProcess(agent);
            break;
        default:
            break;
    }
}

void DisturbedRounds::ExpectNoFontsLeft() {
    // What could not be let go at once goes when the hosts are idle.
    const auto deadline = Clock::now() + std::chrono::seconds(4);
    while (!mWorld.FontManager().ActiveFiles().empty() && Clock::now() < deadline) {
        for (const auto& host : mHosts)
            host->process.Call("IdleEvent");
        std::this_thread::sleep_for(milliseconds(20));
    }
    Expect(mWorld.FontManager().ActiveFiles().empty(), "fonts are left after the last close");
}

bool DisturbedRounds::RunRound(int round) {
    mFindings.clear();
    std::vector<std::vector<int>> shares(mHosts.size());
    for (int document = 0; document < mPlan.documents; ++document)
        shares[mRandom() % shares.size()].push_back(document);
    const bool isUndisturbed = round < 5 || mPlan.disturbances.empty();
    const Disturbance disturbance =
        isUndisturbed ? Disturbance::kNone : mPlan.disturbances[mRandom() % mPlan.disturbances.size()];
    const auto moment = mUsualLength * static_cast<int>(mRandom() % 1200) / 1000;
    const auto length = milliseconds(500 + mRandom() % 3500);
    const platform::ProcessId agent = mWorld.Agent();
    const auto begin = Clock::now();
    std::vector<std::thread> workers;
    if (disturbance != Disturbance::kNone && agent != 0)
        workers.emplace_back([&] { Disturb(disturbance, agent, moment, length); });
    for (size_t host = 0; host < mHosts.size(); ++host)
        workers.emplace_back([&, host] { WorkWithDocuments(*mHosts[host], shares[host]); });
    for (std::thread& worker : workers)
        worker.join();
    if (isUndisturbed)
        mUsualLength = std::max(mUsualLength, Clock::now() - begin);
    ExpectNoFontsLeft();
    return mFindings.empty();
}

void DisturbedRounds::ShowTrace() const {
    const std::string trace = mWorld.Trace();
    std::printf("...%s\n", trace.substr(trace.size() - std::min(trace.size(), kTraceShown)).c_str());
    std::string log;
    if (!platform::ReadWholeFile(mWorld.Path("data/Vantorix/Logs/Pellwick.log"), log, 1 << 24))
        std::printf("...%s\n", log.substr(log.size() - std::min(log.size(), kLogShown)).c_str());
}

int DisturbedRounds::Run() {
    int clean = 0;
    int shown = 0;
    for (int round = 0; round < mPlan.rounds; ++round) {
        if (RunRound(round)) {
            ++clean;
            continue;
        }
        if (shown == 0)
            ShowTrace();
        for (const std::string& finding : mFindings) {
            if (shown++ < kMostReasonsShown)
                std::printf("round %d: %s\n", round, finding.c_str());
        }
        for (auto& host : mHosts) {  // the next round is not to suffer from this one
            host.reset();
            host = StartHost(mRandom());
        }
    }
    std::printf(
        "%d host(s), %d document(s): %d of %d rounds clean; %d disturbances, %d starts of the agent by "
        "hosts; "
        "slowest call %lld ms (seed %u)\n",
        mPlan.hosts, mPlan.documents, clean, mPlan.rounds, mDisturbances,
        CountOf(mWorld.Trace(), "Successfully launched Pellwick"), Milliseconds(mSlowestCall), mPlan.seed);
    return clean;
}
