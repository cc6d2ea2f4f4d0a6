#include "calc/InputNeed.h"

#include <algorithm>

#include "basic/Text.h"

namespace lodex {
namespace {

// What follows the word at the start of a text; empty when the text starts otherwise.
std::string_view afterWord(std::string_view text, std::string_view word) {
  if (!startsWithNoCase(text, word)) return {};
  return trimBlanks(text.substr(word.size()));
}

}  // namespace

InputNeed parseNeed(std::string_view text) {
  InputNeed need;
  for (const std::string& part : split(text, ",")) {
    const std::string_view word = trimBlanks(part);
    const std::string_view set = afterWord(word, "one of ");
    if (equalsNoCase(word, "required")) {
      need.kind = InputNeed::Kind::Required;
    } else if (equalsNoCase(word, "optional")) {
      need.kind = InputNeed::Kind::Optional;
    } else if (equalsNoCase(word, "as analysed")) {
      need.asAnalysed = true;
    } else if (!set.empty()) {
      need.kind = InputNeed::Kind::OneOf;
      need.set = set;
    } else {
      return {};
    }
  }
  return need;
}

bool needsMissing(std::string_view text, const std::vector<std::string>& missing) {
  if (missing.empty()) return false;
  const std::string_view names = afterWord(trimBlanks(text), "needs ");
  if (names.empty()) return true;
  for (const std::string& name : split(names, ",")) {
    const bool isMissing = std::any_of(
        missing.begin(), missing.end(),
        [&](const std::string& other) { return equalsNoCase(trimBlanks(name), other); });
    if (isMissing) return true;
  }
  return false;
}

}  // namespace lodex
