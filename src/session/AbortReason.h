#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// How far an aborted job over samples came: "after sample LX-7, 212 of 2,000". `last` is the
/// identifier of the last finished sample.
std::string abortReason(std::string_view last, int finished, int samples);

}  // namespace lodex
