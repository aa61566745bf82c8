#include "PlainXmpPacket.h"

#include "StringConversion.h"
#include "common/FontManagerLimits.h"

namespace pellwick::test {

std::string PlainXmpPacket(const std::string& document) {
    for (size_t begin = 0; (begin = document.find("<?xpacket begin=", begin)) != std::string::npos; ++begin) {
        const size_t end = document.find("<?xpacket end=", begin);
        const size_t close = end != std::string::npos ? document.find("?>", end) : end;
        const std::string packet =
            close != std::string::npos ? document.substr(begin, close + 2 - begin) : std::string();
        if (!packet.empty() && packet.size() <= kMaxXmpPacket && IsValidUtf8(packet))
            return packet;
    }
    return {};
}

}  // namespace pellwick::test
