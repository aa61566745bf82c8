#include "HostPatience.h"

#include "platform/Clock.h"

namespace {

bool isWithinCall = false;
bool hasRecovered = false;
uint32_t beginTick = 0;

uint32_t Now() {
    return platform::Current<platform::Clock>().TickCount();
}

}  // namespace

HostPatience::Call::Call() : mWasWithinCall(isWithinCall) {
    isWithinCall = true;
    Renew();
}

HostPatience::Call::~Call() {
    isWithinCall = mWasWithinCall;
    Renew();  // the call around this one was at a dialog
}

void HostPatience::Renew() {
    beginTick = Now();
    hasRecovered = false;
}

void HostPatience::NoteRecovery() {
    hasRecovered = true;
}

bool HostPatience::AllowsRequest() {
    return Spent() <= (hasRecovered ? kLatestRequestAfterRecovery : kLatestRequest);
}

std::chrono::milliseconds HostPatience::Spent() {
    return std::chrono::milliseconds(isWithinCall ? Now() - beginTick : 0);
}
