#include "db/sql/JetTokens.h"

#include <array>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Dates.h"
#include "db/Errors.h"

namespace lodex {

namespace {

constexpr size_t kShownStatement = 500;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool startsName(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '@' || byte >= 0x80;
}

// The first bytes of a text, whole characters only.
std::string_view startOf(std::string_view text, size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

class Splitter {
 public:
  explicit Splitter(std::string_view sql) : sql_(sql) {}

  std::vector<JetToken> run() {
    while (skipBlanks(), at_ < sql_.size()) {
      tokens_.push_back(next());
      if (isOldSubquery(tokens_.back())) openSubquery();
    }
    tokens_.push_back({JetToken::End, "", sql_.size(), sql_.size()});
    return std::move(tokens_);
  }

 private:
  void skipBlanks() {
    while (at_ < sql_.size()) {
      if (sql_.substr(at_).starts_with("--")) {
        while (at_ < sql_.size() && sql_[at_] != '\n') ++at_;
      } else if (std::string_view(" \t\r\n\f").find(sql_[at_]) != std::string_view::npos) {
        ++at_;
      } else {
        return;
      }
    }
  }

  // Old Access wrote a query in FROM as [SELECT ...]. and could not nest brackets in it.
  bool isOldSubquery(const JetToken& token) const {
    const std::string_view behind = sql_.substr(at_, 2);
    return sql_[token.start] == '[' && startsWithNoCase(token.text, "SELECT ") &&
           (behind == "." || behind == ". " || behind == ".)");
  }

  void openSubquery() {
    const JetToken whole = tokens_.back();
    tokens_.back() = {JetToken::Mark, "(", whole.start, whole.start + 1};
    for (JetToken& token : Splitter(whole.text).run()) {
      token.start += whole.start + 1;
      token.end += whole.start + 1;
      if (token.kind != JetToken::End) tokens_.push_back(std::move(token));
    }
    tokens_.push_back({JetToken::Mark, ")", whole.end - 1, whole.end});
    ++at_;
  }

  JetToken next() {
    JetToken token;
    token.start = at_;
    const char c = sql_[at_];
    if (c == '[') {
      take(token, JetToken::Name, ']', "a name is not closed by ]");
    } else if (c == '`') {
      take(token, JetToken::Name, '`', "a name is not closed by `");
    } else if (c == '\'') {
      take(token, JetToken::Text, '\'', "a text is not closed by its quote");
    } else if (c == '"') {
      take(token, JetToken::Quoted, '"', "a text is not closed by its quote");
    } else if (c == '#') {
      take(token, JetToken::Date, '#', "a date is not closed by #");
      const auto date = parseDate(token.text);
      if (!date) failAt(sql_, token, "this is no date");
      token.text = dateText(*date);
    } else if (isDigit(c) || (c == '.' && at_ + 1 < sql_.size() && isDigit(sql_[at_ + 1]))) {
      takeNumber(token);
    } else if (startsName(c)) {
      takeWord(token);
    } else {
      takeMark(token);
    }
    token.end = at_;
    return token;
  }

  // Up to the closing character; doubled, it stands for itself, except for "]".
  void take(JetToken& token, JetToken::Kind kind, char close, std::string_view reason) {
    token.kind = kind;
    for (++at_; at_ < sql_.size(); ++at_) {
      if (sql_[at_] == close) {
        const bool doubled = close != ']' && at_ + 1 < sql_.size() && sql_[at_ + 1] == close;
        if (!doubled) {
          ++at_;
          return;
        }
        ++at_;
      }
      token.text += sql_[at_];
    }
    token.text = std::string(sql_.substr(token.start, 20));
    failAt(sql_, token, reason);
  }

  void takeNumber(JetToken& token) {
    token.kind = JetToken::Number;
    const auto digits = [this] {
      while (at_ < sql_.size() && isDigit(sql_[at_])) ++at_;
    };
    digits();
    if (at_ < sql_.size() && sql_[at_] == '.') {
      ++at_;
      digits();
    }
    if (at_ < sql_.size() && (sql_[at_] == 'e' || sql_[at_] == 'E')) {
      size_t exponent = at_ + 1;
      if (exponent < sql_.size() && (sql_[exponent] == '+' || sql_[exponent] == '-')) ++exponent;
      if (exponent < sql_.size() && isDigit(sql_[exponent])) {
        at_ = exponent;
        digits();
      }
    }
    token.text = std::string(sql_.substr(token.start, at_ - token.start));
  }

  void takeWord(JetToken& token) {
    token.kind = JetToken::Word;
    while (at_ < sql_.size() && (startsName(sql_[at_]) || isDigit(sql_[at_]))) ++at_;
    token.text = std::string(sql_.substr(token.start, at_ - token.start));
    // Left$ and Left are one function.
    if (at_ < sql_.size() && sql_[at_] == '$') ++at_;
  }

  void takeMark(JetToken& token) {
    constexpr std::array<std::string_view, 6> kPairs{"<>", "<=", ">=", "!=", "==", "||"};
    token.kind = JetToken::Mark;
    for (const auto pair : kPairs) {
      if (sql_.substr(at_).starts_with(pair)) {
        token.text = pair;
        at_ += 2;
        return;
      }
    }
    token.text = std::string(1, sql_[at_]);
    ++at_;
  }

  std::string_view sql_;
  size_t at_ = 0;
  std::vector<JetToken> tokens_;
};

}  // namespace

std::string shownStatement(std::string_view sql) {
  const std::string_view start = startOf(sql, kShownStatement);
  return std::string(start) + (start.size() < sql.size() ? "..." : "");
}

void failAt(std::string_view sql, const JetToken& token, std::string_view reason) {
  size_t line = 1;
  size_t lineStart = 0;
  for (size_t i = 0; i < token.start && i < sql.size(); ++i) {
    if (sql[i] == '\n') {
      ++line;
      lineStart = i + 1;
    }
  }
  const size_t column = characterCount(sql.substr(lineStart, token.start - lineStart)) + 1;
  const std::string place =
      token.kind == JetToken::End ? "the end" : "\"" + std::string(startOf(token.text, 60)) + "\"";
  throw Error("The statement cannot be used at line " + std::to_string(line) + ", column " +
                  std::to_string(column) + ", " + place + ": " + std::string(reason) +
                  ", in: " + shownStatement(sql),
              dberror::BadStatement);
}

std::vector<JetToken> splitJetTokens(std::string_view sql) {
  return Splitter(sql).run();
}

}  // namespace lodex
