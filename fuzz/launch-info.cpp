// The launch-info file, whatever stands in it.
#include "AgentLauncher.h"
#include "Fuzz.h"

std::vector<std::string> Seeds() {
    return {"# of old\r\npellwick.path=/opt/Pellwick\r\npellwick.args=serve\n"};
}

void TryInput(const std::string& input) {
    const std::string value = AgentLauncher::LaunchInfoValue(input, "pellwick.path");
    Require(value.find_first_of("\r\n") == std::string::npos, "a value is in one line");
}
