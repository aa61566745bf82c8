// What ReadXmpPacket finds, found the plain and slow way.
#pragma once

#include <string>

namespace pellwick::test {

/// The first packet of a document that is not larger than kMaxXmpSearch; empty when there is none.
std::string PlainXmpPacket(const std::string& document);

}  // namespace pellwick::test
