#include "chem/FormulaParser.h"

#include <algorithm>
#include <string>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"
#include "chem/Letters.h"

namespace lodex {
namespace {

constexpr size_t maxFormulaLength = 500;
constexpr int maxDepth = 20;
constexpr double maxCount = 1e6;

bool isSign(char c) {
  return c == '+' || c == '-';
}
bool isOpen(char c) {
  return c == '(' || c == '[' || c == '{';
}

char closing(char open) {
  return open == '(' ? ')' : open == '[' ? ']' : '}';
}

// A dot that cannot be a decimal point.
constexpr char hydrateDot = '*';

// Brings typographic forms to ASCII: subscripts become digits, superscripts (charges) go, and every
// unambiguous dot becomes hydrateDot with the blanks around it removed.
std::string plainForm(std::string_view text) {
  std::string plain;
  for (const char32_t c : decodeUtf8(trimBlanks(text))) {
    const bool superscript = c == 0xB2 || c == 0xB3 || c == 0xB9 || c == 0x2070 ||
                             (c >= 0x2074 && c <= 0x2079) || c == 0x207A || c == 0x207B;
    if (superscript) continue;
    if (c >= 0x2080 && c <= 0x2089) {
      plain += static_cast<char>('0' + (c - 0x2080));
    } else if (c == 0xB7 || c == 0x2022 || c == 0x22C5 || c == 0x2219) {
      plain += hydrateDot;
    } else if (c == 0x2212 || c == 0x2013) {
      plain += '-';
    } else {
      plain += c < 128 ? static_cast<char>(c) : '?';
    }
  }
  for (const char* blank : {" .", ". ", " *", "* "}) {
    while (plain.find(blank) != std::string::npos) plain = replaceAll(plain, blank, "*");
  }
  return plain;
}

bool isWhole(std::string_view text, char open) {
  int depth = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == open) ++depth;
    if (text[i] == closing(open) && --depth == 0) return i + 1 == text.size();
  }
  return false;
}

// One symbol or one bracket: digits after it and before a sign are its charge.
bool isSingleUnit(std::string_view text) {
  if (text.empty()) return false;
  if (isOpen(text.front())) return isWhole(text, text.front());
  return isCapital(text.front()) && (text.size() == 1 || (text.size() == 2 && isSmall(text[1])));
}

// The formula without the charge at its end: "+3", "--", "3+", " 2-", "^3-".
std::string_view withoutCharge(std::string_view text) {
  const size_t caret = text.find('^');
  if (caret != std::string_view::npos) {
    const std::string_view charge = text.substr(caret + 1);
    const bool isCharge = charge.find_first_not_of("0123456789+-{}") == std::string_view::npos;
    return isCharge ? text.substr(0, caret) : text;
  }
  size_t end = text.size();
  while (end > 0 && isDigit(text[end - 1])) --end;
  const size_t digitsLast = text.size() - end;
  const size_t afterSigns = end;
  while (end > 0 && isSign(text[end - 1])) --end;
  if (end == afterSigns) return text;
  if (digitsLast > 0) return digitsLast == 1 ? text.substr(0, end) : text;

  size_t digits = end;
  while (digits > 0 && isDigit(text[digits - 1])) --digits;
  const size_t count = end - digits;
  if (count == 0) return trimBlanksRight(text.substr(0, end));
  const std::string_view before = text.substr(0, digits);
  if (!before.empty() && before.back() == ' ') return trimBlanksRight(before);
  // "Fe3+" but "NH4+"; "SO42-" but "C12H22O11-", since nobody writes a charge of one as "1-".
  if (isSingleUnit(before)) return count == 1 ? before : text.substr(0, end - 1);
  return count > 1 && text[end - 1] != '1' ? text.substr(0, end - 1) : text.substr(0, end);
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  std::optional<AtomCounts> parse() {
    AtomCounts counts;
    if (!parseParts(counts) || position_ != text_.size()) return std::nullopt;
    std::erase_if(counts, [](const auto& entry) { return entry.second == 0; });
    if (counts.empty()) return std::nullopt;
    return counts;
  }

 private:
  char peek(size_t ahead = 0) const {
    return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0';
  }

  static void add(AtomCounts& counts, const AtomCounts& more, double times) {
    for (const auto& [number, atoms] : more) {
      const auto known = std::find_if(counts.begin(), counts.end(),
                                      [n = number](const auto& entry) { return entry.first == n; });
      if (known != counts.end()) {
        known->second += atoms * times;
      } else {
        counts.emplace_back(number, atoms * times);
      }
    }
  }

  bool parseParts(AtomCounts& counts) {
    for (;;) {
      if (!parsePart(counts)) return false;
      if (peek() != hydrateDot && peek() != '.') return true;
      ++position_;
    }
  }

  bool parsePart(AtomCounts& counts) {
    double times = 1;
    lastIsAnion_ = false;
    if (isDigit(peek()) && !parseNumber(times)) return false;
    AtomCounts part;
    if (!parseGroup(part)) return false;
    while (isCapital(peek()) || isOpen(peek())) {
      if (!parseGroup(part)) return false;
    }
    add(counts, part, times);
    return true;
  }

  bool parseGroup(AtomCounts& part) {
    AtomCounts group;
    if (isOpen(peek())) {
      if (!parseBracket(group)) return false;
    } else if (!parseSymbol(group)) {
      return false;
    }
    double times = 1;
    if (isDigit(peek()) && !parseNumber(times)) return false;
    add(part, group, times);
    return true;
  }

  bool parseBracket(AtomCounts& group) {
    if (++depth_ > maxDepth) return false;
    const char close = closing(text_[position_++]);
    if (!parseParts(group) || peek() != close) return false;
    ++position_;
    --depth_;
    lastIsAnion_ = true;
    return true;
  }

  bool parseSymbol(AtomCounts& group) {
    if (!isCapital(peek())) return false;
    const size_t length = isSmall(peek(1)) ? 2 : 1;
    const int number = AtomicNumberOfSymbol(text_.substr(position_, length));
    if (number == 0) return false;
    position_ += length;
    lastIsAnion_ = number == oxygen;
    if (!lastIsAnion_) skipInnerCharge();
    group.emplace_back(number, 1.0);
    return true;
  }

  // The charge of a cation within a formula: "Fe2+Fe3+2O4". One of an anion, or without a digit,
  // would be a sum of formulas instead.
  void skipInnerCharge() {
    if (isDigit(peek()) && peek(1) == '+' && (isCapital(peek(2)) || isDigit(peek(2)))) {
      position_ += 2;
    }
  }

  bool parseNumber(double& number) {
    if (!parseDecimal(number)) return false;
    if (peek() == '/' && isDigit(peek(1))) {
      ++position_;
      const double divisor = numberOf(digits());
      if (divisor == 0) return false;
      number /= divisor;
    }
    return number <= maxCount;
  }

  bool parseDecimal(double& number) {
    const size_t start = position_;
    const double whole = numberOf(digits());
    if (peek() == '.' && isDigit(peek(1)) && !isDotOfHydrate(whole)) {
      ++position_;
      digits();
    }
    number = numberOf(text_.substr(start, position_ - start));
    return position_ - start <= 12;
  }

  std::string_view digits() {
    const size_t start = position_;
    while (isDigit(peek())) ++position_;
    return text_.substr(start, position_ - start);
  }

  bool isDotOfHydrate(double whole) const {
    std::string_view rest = text_.substr(position_ + 1);
    rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of("0123456789")));
    const bool decimalFollows = rest.size() > 1 && rest[0] == '.' && isDigit(rest[1]);
    const bool fractionFollows = rest.size() > 1 && rest[0] == '/' && isDigit(rest[1]);
    const bool numberFollows = decimalFollows || fractionFollows;
    if (depth_ == 0 && lastIsAnion_ && whole > 0 && numberFollows) return true;
    const bool water = rest.starts_with("H2O") && (rest.size() == 3 || !isDigit(rest[3]));
    if (water && whole > 0) return true;
    const std::string_view part = rest.substr(0, rest.find_first_of(".*"));
    return depth_ == 0 && lastIsAnion_ && whole >= 2 && !part.empty() && isCapital(part.front()) &&
           text_[position_ + 1] != '0' && part.find('O', 1) != std::string_view::npos;
  }

  static constexpr int oxygen = 8;
  std::string_view text_;
  size_t position_ = 0;
  int depth_ = 0;
  bool lastIsAnion_ = false;  // an oxygen or a bracket went before the number
};

}  // namespace

std::optional<AtomCounts> parseFormula(std::string_view text) {
  if (text.size() > maxFormulaLength) return std::nullopt;
  const std::string plain = plainForm(text);
  return Parser(withoutCharge(plain)).parse();
}

}  // namespace lodex
