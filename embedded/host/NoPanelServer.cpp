// Without cpp-httplib.
#include "PanelServer.h"

struct PanelServer::State {};

PanelServer::PanelServer(const std::string&) {}
PanelServer::~PanelServer() = default;

std::string PanelServer::WhyUnavailable() {
    return "this program was built without cpp-httplib; install libcpp-httplib-dev and build it again";
}

bool PanelServer::Start(uint16_t) {
    return false;
}

std::string PanelServer::URL() const {
    return {};
}

std::optional<PanelPost> PanelServer::WaitForPost(std::chrono::steady_clock::time_point) {
    return std::nullopt;
}

void PanelServer::Publish(const std::string&, const std::string&) {}
void PanelServer::Offer(const std::string&) {}
void PanelServer::Withdraw(const std::string&) {}
void PanelServer::SetDocuments(std::string) {}
