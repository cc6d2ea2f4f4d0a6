#include <algorithm>
#include <cctype>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/NumberFormatParts.h"

namespace lodex::numberformat {
namespace {

bool isDatePart(TokenKind kind) {
  return kind >= TokenKind::Year;
}

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// The colours that a section can name; -1 for any other word.
std::int32_t colorNamed(std::string_view name) {
  struct Named {
    std::string_view name;
    std::int32_t color;
  };
  for (const Named& known :
       {Named{"black", 0x000000}, Named{"blue", 0x0000FF}, Named{"cyan", 0x00FFFF},
        Named{"green", 0x00FF00}, Named{"magenta", 0xFF00FF}, Named{"red", 0xFF0000},
        Named{"white", 0xFFFFFF}, Named{"yellow", 0xFFFF00}}) {
    if (known.name == name) return known.color;
  }
  return -1;
}

class Parser {
 public:
  explicit Parser(std::string_view format) : rest_(format) {}

  std::vector<Section> run() {
    std::vector<Section> sections;
    do {
      section_ = Section();
      while (!rest_.empty() && rest_.front() != ';') {
        if (!token()) return {};
      }
      finishSection();
      sections.push_back(std::move(section_));
    } while (takeStart(";"));
    return sections;
  }

 private:
  bool takeStart(std::string_view start) {
    if (!startsWithNoCase(rest_, start)) return false;
    rest_.remove_prefix(start.size());
    return true;
  }

  void add(TokenKind kind, char letter = '\0', int count = 0) {
    section_.tokens.push_back({kind, {}, letter, count});
  }

  bool exponent() {
    section_.tokens.push_back({TokenKind::Exponent, std::string(rest_.substr(0, 1)), rest_[1], 0});
    rest_.remove_prefix(2);
    return hasDigits();
  }

  void addLiteral(std::string_view text) {
    section_.tokens.push_back({TokenKind::Literal, std::string(text), '\0', 0});
  }

  // One whole UTF-8 character off the front.
  std::string_view takeCharacter() {
    size_t size = rest_.empty() ? 0 : 1;
    while (size < rest_.size() && (rest_[size] & 0xC0) == 0x80) ++size;
    const std::string_view character = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return character;
  }

  int takeRun(char letter) {
    size_t size = 0;
    while (size < rest_.size() && lower(rest_[size]) == letter) ++size;
    rest_.remove_prefix(size);
    return static_cast<int>(size);
  }

  bool hasDigits() const {
    return std::any_of(section_.tokens.begin(), section_.tokens.end(),
                       [](const Token& token) { return token.kind == TokenKind::Digit; });
  }

  // False for something that no number format holds.
  bool token() {
    if (takeStart("General")) return add(TokenKind::General), true;
    if (takeStart("AM/PM")) return add(TokenKind::AmPm, 'M'), true;
    if (rest_.starts_with("a/p")) return rest_.remove_prefix(3), add(TokenKind::AmPm, 'a'), true;
    if (takeStart("A/P")) return add(TokenKind::AmPm, 'A'), true;
    if (startsWithNoCase(rest_, "E+") || startsWithNoCase(rest_, "E-")) return exponent();
    const char c = rest_.front();
    switch (c) {
      case '"':
        return quoted();
      case '[':
        return bracketed();
      case '\\':
        rest_.remove_prefix(1);
        addLiteral(takeCharacter());
        return true;
      case '_':
        rest_.remove_prefix(1);
        takeCharacter();
        addLiteral(" ");
        return true;
      case '*':
        rest_.remove_prefix(1);
        takeCharacter();
        return true;
      case '0':
      case '#':
      case '?':
        rest_.remove_prefix(1);
        add(TokenKind::Digit, c);
        return true;
      case '.':
        rest_.remove_prefix(1);
        return point();
      case ',':
        return commas();
      case '%':
        rest_.remove_prefix(1);
        ++section_.percents;
        add(TokenKind::Percent);
        return true;
      case '/':
        rest_.remove_prefix(1);
        return slash();
      case '@':
        rest_.remove_prefix(1);
        add(TokenKind::Text);
        return true;
      default:
        return datePart(lower(c)) || otherCharacter();
    }
  }

  bool quoted() {
    rest_.remove_prefix(1);
    const size_t end = rest_.find('"');
    if (end == std::string_view::npos) return false;
    addLiteral(rest_.substr(0, end));
    rest_.remove_prefix(end + 1);
    return true;
  }

  bool bracketed() {
    const size_t end = rest_.find(']');
    if (end == std::string_view::npos) return false;
    const std::string inside = toLower(rest_.substr(1, end - 1));
    const std::string_view original = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    if (inside.empty()) return false;
    const char first = inside.front();
    if (first == '<' || first == '>' || first == '=') return condition(inside);
    if (first == '$') {
      // "[$EUR-40B]": a currency and the language it belongs to.
      addLiteral(original.substr(1, std::min(original.find('-'), original.size()) - 1));
      return true;
    }
    const bool oneLetter = inside.find_first_not_of(first) == std::string::npos;
    const int count = static_cast<int>(inside.size());
    if (oneLetter && first == 'h') return add(TokenKind::ElapsedHours, '\0', count), true;
    if (oneLetter && first == 'm') return add(TokenKind::ElapsedMinutes, '\0', count), true;
    if (oneLetter && first == 's') return add(TokenKind::ElapsedSeconds, '\0', count), true;
    section_.color = colorNamed(inside);
    return true;
  }

  bool condition(std::string_view text) {
    const size_t value = text.find_first_not_of("<>=");
    if (value == std::string_view::npos) return false;
    const auto number = parseNumber(text.substr(value));
    if (!number) return false;
    section_.condition = Condition{std::string(text.substr(0, value)), *number};
    return true;
  }

  // A point opens the decimals of a number, or those of the seconds before it.
  bool point() {
    const bool afterSeconds =
        !section_.tokens.empty() && (section_.tokens.back().kind == TokenKind::Second ||
                                     section_.tokens.back().kind == TokenKind::ElapsedSeconds);
    if (afterSeconds && !rest_.empty() && rest_.front() == '0') {
      add(TokenKind::SubSecond, '\0', takeRun('0'));
    } else {
      add(TokenKind::Point);
    }
    return true;
  }

  // Commas between digits ask for groups of three, after the last one for division by 1000.
  bool commas() {
    const bool afterDigit =
        !section_.tokens.empty() && section_.tokens.back().kind == TokenKind::Digit;
    const int count = takeRun(',');
    if (!afterDigit) {
      addLiteral(std::string(static_cast<size_t>(count), ','));
      return true;
    }
    const char next = rest_.empty() ? '\0' : rest_.front();
    if (next == '0' || next == '#' || next == '?') {
      section_.grouped = true;
    } else {
      section_.thousands += count;
    }
    return true;
  }

  bool slash() {
    const bool afterDigit =
        !section_.tokens.empty() && section_.tokens.back().kind == TokenKind::Digit;
    if (!afterDigit) return addLiteral("/"), true;
    add(TokenKind::Slash);
    size_t digits = 0;
    while (digits < rest_.size() && rest_[digits] >= '0' && rest_[digits] <= '9') ++digits;
    if (digits > 0 && digits < 6 && rest_.front() != '0') {
      add(TokenKind::Denominator, '\0', static_cast<int>(numberOf(rest_.substr(0, digits))));
      rest_.remove_prefix(digits);
    }
    return true;
  }

  bool datePart(char letter) {
    TokenKind kind;
    switch (letter) {
      case 'y':
        kind = TokenKind::Year;
        break;
      case 'm':
        kind = TokenKind::Month;
        break;
      case 'd':
        kind = TokenKind::Day;
        break;
      case 'h':
        kind = TokenKind::Hour;
        break;
      case 's':
        kind = TokenKind::Second;
        break;
      default:
        return false;
    }
    add(kind, '\0', takeRun(letter));
    return true;
  }

  bool otherCharacter() {
    const char c = rest_.front();
    if (std::isalpha(static_cast<unsigned char>(c))) return false;
    addLiteral(takeCharacter());
    return true;
  }

  // An "m" means minutes after hours and next to seconds.
  void finishSection() {
    auto& tokens = section_.tokens;
    std::vector<size_t> parts;
    for (size_t i = 0; i < tokens.size(); ++i) {
      if (isDatePart(tokens[i].kind)) parts.push_back(i);
      section_.isText = section_.isText || tokens[i].kind == TokenKind::Text;
    }
    section_.isDate = !parts.empty();
    const auto kindAt = [&](size_t place) { return tokens[parts[place]].kind; };
    for (size_t p = 0; p < parts.size(); ++p) {
      Token& token = tokens[parts[p]];
      if (token.kind != TokenKind::Month || token.count > 2) continue;
      const auto isSecond = [](TokenKind kind) {
        return kind == TokenKind::Second || kind == TokenKind::ElapsedSeconds;
      };
      const bool afterHours =
          p > 0 && (kindAt(p - 1) == TokenKind::Hour || kindAt(p - 1) == TokenKind::ElapsedHours);
      const bool nextToSeconds =
          (p > 0 && isSecond(kindAt(p - 1))) || (p + 1 < parts.size() && isSecond(kindAt(p + 1)));
      if (afterHours || nextToSeconds) token.kind = TokenKind::Minute;
    }
  }

  std::string_view rest_;
  Section section_;
};

}  // namespace

bool Condition::admits(double number) const {
  if (comparison == "<") return number < value;
  if (comparison == "<=") return number <= value;
  if (comparison == ">") return number > value;
  if (comparison == ">=") return number >= value;
  if (comparison == "<>") return number != value;
  return number == value;
}

bool Condition::onlyNegative() const {
  return (comparison == "<" || comparison == "<=" || comparison == "=") && value <= 0 &&
         !(comparison != "<" && value == 0);
}

std::vector<Section> parseFormat(std::string_view format) {
  return Parser(format).run();
}

}  // namespace lodex::numberformat
