#include "db/sql/JetLike.h"

#include <string>

#include "basic/Text.h"

namespace lodex {

namespace {

// True when the letter belongs to the set between the places `at` and `end` of the pattern.
bool inSet(std::u32string_view set, char32_t letter) {
  const bool outside = set.size() > 1 && set.front() == U'!';
  if (outside) set.remove_prefix(1);
  bool found = false;
  for (size_t i = 0; i < set.size(); ++i) {
    if (i + 2 < set.size() && set[i + 1] == U'-') {
      found = found || (set[i] <= letter && letter <= set[i + 2]);
      i += 2;
    } else {
      found = found || set[i] == letter;
    }
  }
  return found != outside;
}

// How many letters of the pattern at its start match one letter of a text; 0 if they do not.
size_t matchOne(std::u32string_view pattern, char32_t letter) {
  switch (pattern.front()) {
    case U'?':
    case U'_':
      return 1;
    case U'#':
      return letter >= U'0' && letter <= U'9' ? 1 : 0;
    case U'[': {
      const size_t close = pattern.find(U']', 2);
      if (close != std::u32string_view::npos) {
        return inSet(pattern.substr(1, close - 1), letter) ? close + 1 : 0;
      }
      break;
    }
    default:
      break;
  }
  return pattern.front() == letter ? 1 : 0;
}

bool isRun(char32_t mark) {
  return mark == U'*' || mark == U'%';
}

}  // namespace

bool jetLike(std::string_view text, std::string_view pattern) {
  const std::u32string letters = decodeUtf8(toUpper(text));
  const std::u32string marks = decodeUtf8(toUpper(pattern));
  size_t t = 0;
  size_t p = 0;
  size_t runPattern = std::u32string::npos;
  size_t runText = 0;
  // On a mismatch the last run of any letters grows by one.
  while (t < letters.size()) {
    if (p < marks.size() && isRun(marks[p])) {
      runPattern = ++p;
      runText = t;
      continue;
    }
    const size_t taken =
        p < marks.size() ? matchOne(std::u32string_view(marks).substr(p), letters[t]) : 0;
    if (taken) {
      p += taken;
      ++t;
    } else if (runPattern != std::u32string::npos) {
      p = runPattern;
      t = ++runText;
    } else {
      return false;
    }
  }
  while (p < marks.size() && isRun(marks[p])) ++p;
  return p == marks.size();
}

}  // namespace lodex
