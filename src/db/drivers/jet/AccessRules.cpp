#include "db/drivers/jet/AccessRules.h"

#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/sql/JetSql.h"
#include "db/sql/JetTokens.h"

namespace lodex {

namespace {

bool isAnyWord(const JetToken& token, std::initializer_list<std::string_view> words) {
  if (token.kind != JetToken::Word) return false;
  for (const auto word : words) {
    if (equalsNoCase(token.text, word)) return true;
  }
  return false;
}

bool isMark(const JetToken& token, std::string_view mark) {
  return token.kind == JetToken::Mark && token.text == mark;
}

bool isComparison(const JetToken& token) {
  static constexpr std::string_view kMarks[] = {"=", "<", ">", "<=", ">=", "<>"};
  for (const auto mark : kMarks) {
    if (isMark(token, mark)) return true;
  }
  return isAnyWord(token, {"LIKE", "IN", "BETWEEN", "IS"});
}

bool isValue(const JetToken& token) {
  return token.kind == JetToken::Number || token.kind == JetToken::Text ||
         token.kind == JetToken::Quoted || token.kind == JetToken::Date || isMark(token, "-") ||
         isAnyWord(token, {"True", "False", "Yes", "No"});
}

// Puts the field into a rule wherever it was left out.
class Rule {
 public:
  Rule(std::string_view text, std::string_view field)
      : text_(text), field_("[" + std::string(field) + "]"), tokens_(splitJetTokens(text)) {}

  std::string whole() const { return conditions(0, tokens_.size() - 1, 0); }

 private:
  // The tokens from `at` up to `end`: conditions with And and Or between them.
  std::string conditions(size_t at, size_t end, int depth) const {
    if (depth > 20) throw Error("it is nested too deeply");
    std::string result;
    while (at < end) {
      const size_t stop = endOfCondition(at, end);
      result += condition(at, stop, depth);
      if (stop < end) result += " " + tokens_[stop].text + " ";
      at = stop + 1;
    }
    return result;
  }

  size_t endOfCondition(size_t at, size_t end) const {
    int brackets = 0;
    bool inBetween = false;
    for (; at < end; ++at) {
      const JetToken& token = tokens_[at];
      if (isMark(token, "(")) ++brackets;
      if (isMark(token, ")")) --brackets;
      if (brackets > 0) continue;
      if (isAnyWord(token, {"BETWEEN"})) inBetween = true;
      if (!isAnyWord(token, {"AND", "OR", "XOR", "EQV", "IMP"})) continue;
      if (!inBetween) return at;
      inBetween = false;
    }
    return end;
  }

  std::string condition(size_t at, size_t end, int depth) const {
    if (at >= end) return {};
    if (isAnyWord(tokens_[at], {"NOT"})) return "NOT " + condition(at + 1, end, depth + 1);
    if (isMark(tokens_[at], "(") && closing(at, end) == end - 1) {
      return "(" + conditions(at + 1, end - 1, depth + 1) + ")";
    }
    std::string piece(text_.substr(tokens_[at].start, tokens_[end - 1].end - tokens_[at].start));
    if (isComparison(tokens_[at])) return field_ + " " + piece;
    bool onlyValues = true;
    for (size_t i = at; i < end; ++i) onlyValues = onlyValues && isValue(tokens_[i]);
    return onlyValues ? field_ + " = " + piece : piece;
  }

  size_t closing(size_t open, size_t end) const {
    int brackets = 0;
    for (size_t at = open; at < end; ++at) {
      if (isMark(tokens_[at], "(")) ++brackets;
      if (isMark(tokens_[at], ")") && --brackets == 0) return at;
    }
    return end;
  }

  std::string_view text_;
  std::string field_;
  std::vector<JetToken> tokens_;
};

// A GUID of random numbers, as the engine writes it.
constexpr std::string_view kNewGuid =
    "'{' || hex(randomblob(4)) || '-' || hex(randomblob(2)) || '-4' || "
    "substr(hex(randomblob(2)), 2) || '-A' || substr(hex(randomblob(2)), 2) || '-' || "
    "hex(randomblob(6)) || '}'";

std::string withoutEqual(std::string_view text) {
  text = trimWhite(text);
  if (text.starts_with("=")) text = trimWhite(text.substr(1));
  return std::string(text);
}

}  // namespace

std::string translatedDefault(std::string_view value) {
  const std::string text = withoutEqual(value);
  if (equalsNoCase(text, "Yes") || equalsNoCase(text, "On")) return "-1";
  if (equalsNoCase(text, "No") || equalsNoCase(text, "Off")) return "0";
  if (equalsNoCase(text, "GenGUID()")) return std::string(kNewGuid);
  return readJetExpression(text, SqlTarget::Sqlite);
}

std::string translatedRule(std::string_view field, std::string_view rule) {
  const std::string whole =
      field.empty() ? std::string(trimWhite(rule)) : Rule(rule, field).whole();
  for (const JetToken& token : splitJetTokens(whole)) {
    if (isAnyWord(token, {"LIKE"})) throw Error("a pattern cannot be a condition of a table");
    if (isAnyWord(token, {"Now", "Date", "Time"})) {
      throw Error("a condition of a table cannot depend on the time");
    }
  }
  return readJetExpression(whole, SqlTarget::Sqlite);
}

}  // namespace lodex
