#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lodex {

/// The bytes of a zip file with the given parts (path and content), made by hand for a test.
std::string zipOf(const std::vector<std::pair<std::string, std::string>>& parts);

}  // namespace lodex
