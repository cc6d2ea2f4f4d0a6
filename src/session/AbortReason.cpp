#include "session/AbortReason.h"

namespace lodex {
namespace {

// "2,000"
std::string grouped(int number) {
  std::string text = std::to_string(number);
  for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3) {
    text.insert(static_cast<size_t>(place), 1, ',');
  }
  return text;
}

}  // namespace

std::string abortReason(std::string_view last, int finished, int samples) {
  const std::string counts = grouped(finished) + " of " + grouped(samples);
  if (finished == 0) return "before the first sample was finished, " + counts;
  return "after sample " + std::string(last) + ", " + counts;
}

}  // namespace lodex
