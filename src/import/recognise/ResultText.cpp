#include "import/recognise/ResultText.h"

#include <string>
#include <unordered_map>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

const std::unordered_map<std::string, ResultKind>& signWords() {
  static const auto& words =
      *new std::unordered_map<std::string, ResultKind>{{"bdl", ResultKind::Below},
                                                       {"<lod", ResultKind::Below},
                                                       {"belowlod", ResultKind::Below},
                                                       {"<dl", ResultKind::Below},
                                                       {"<mdl", ResultKind::Below},
                                                       {"b.d.", ResultKind::Below},
                                                       {"bd", ResultKind::Below},
                                                       {"b.d.l.", ResultKind::Below},
                                                       {"belowdetection", ResultKind::Below},
                                                       {"<loq", ResultKind::Below},
                                                       {"<d.l.", ResultKind::Below},
                                                       {"blod", ResultKind::Below},
                                                       {"<dl.", ResultKind::Below},
                                                       {"tr", ResultKind::Below},
                                                       {"tr.", ResultKind::Below},
                                                       {"trace", ResultKind::Below},
                                                       {"nd", ResultKind::Missing},
                                                       {"n.d.", ResultKind::Missing},
                                                       {"n.d", ResultKind::Missing},
                                                       {"na", ResultKind::Missing},
                                                       {"n.a.", ResultKind::Missing},
                                                       {"n.a", ResultKind::Missing},
                                                       {"n/a", ResultKind::Missing},
                                                       {"is", ResultKind::Missing},
                                                       {"i.s.", ResultKind::Missing},
                                                       {"ins", ResultKind::Missing},
                                                       {"nss", ResultKind::Missing},
                                                       {"lnr", ResultKind::Missing},
                                                       {"snr", ResultKind::Missing},
                                                       {"nr", ResultKind::Missing},
                                                       {"--", ResultKind::Missing},
                                                       {"-", ResultKind::Missing},
                                                       {"---", ResultKind::Missing},
                                                       {".", ResultKind::Missing},
                                                       {"*", ResultKind::Missing},
                                                       {"nan", ResultKind::Missing},
                                                       {"null", ResultKind::Missing},
                                                       {"none", ResultKind::Missing},
                                                       {"x", ResultKind::Missing},
                                                       {"\xE2\x80\x93", ResultKind::Missing},
                                                       {"\xE2\x80\x94", ResultKind::Missing},
                                                       {">uol", ResultKind::Above},
                                                       {"ovr", ResultKind::Above},
                                                       {"over", ResultKind::Above}};
  return words;
}

// Digits in groups of three after the first: "1,234" or "12 345 678".
bool isGrouped(std::string_view whole, std::string_view separator) {
  const auto groups = split(whole, separator);
  if (groups.size() < 2 || groups[0].empty() || groups[0].size() > 3) return false;
  for (size_t i = 0; i < groups.size(); ++i) {
    if (i > 0 && groups[i].size() != 3) return false;
    if (groups[i].find_first_not_of("0123456789") != std::string::npos) return false;
  }
  return true;
}

// The number with a decimal point and without marks of thousands; "" when it is none.
std::string plainNumber(std::string_view text, bool decimalComma) {
  std::string_view sign;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    sign = text.substr(0, 1);
    text.remove_prefix(1);
  }
  const size_t comma = text.find_last_of(',');
  const size_t point = text.find_last_of('.');
  std::string digits(text);
  char decimal = '.';
  if (comma != std::string_view::npos && (point == std::string_view::npos || comma > point)) {
    const bool single = text.find(',') == comma && point == std::string_view::npos;
    const bool thousands = point == std::string_view::npos && isGrouped(text, ",");
    if (thousands && (!decimalComma || !single)) {
      return std::string(sign) + replaceAll(digits, ",", "");
    }
    if (text.find(',') != comma) return {};
    decimal = ',';
  }
  const size_t at = digits.find_last_of(decimal);
  std::string whole = digits.substr(0, at);
  const std::string rest = at == std::string::npos ? "" : "." + digits.substr(at + 1);
  for (const char* separator : {" ", "\xC2\xA0", "\xE2\x80\xAF", "'", decimal == '.' ? "," : "."}) {
    if (isGrouped(whole, separator)) {
      whole = replaceAll(whole, separator, "");
      break;
    }
  }
  return std::string(sign) + whole + rest;
}

}  // namespace

ResultText readResult(std::string_view text, bool decimalComma) {
  text = trimWhite(text);
  if (text.empty()) return {ResultKind::Blank, 0, false};
  if (const auto plain = parseNumber(text)) return {ResultKind::Number, *plain, true};
  constexpr size_t longest = 24;
  if (text.size() > longest) return {};
  const std::string word = replaceAll(toLower(text), " ", "");
  const auto sign = signWords().find(word);
  if (sign != signWords().end()) return {sign->second, 0, false};

  ResultKind kind = ResultKind::Number;
  if (text.front() == '<' || text.starts_with("\xE2\x89\xA4")) kind = ResultKind::Below;
  if (text.front() == '>' || text.starts_with("\xE2\x89\xA5")) kind = ResultKind::Above;
  if (kind != ResultKind::Number) {
    text.remove_prefix(text.front() == '<' || text.front() == '>' ? 1 : 3);
    if (!text.empty() && text.front() == '=') text.remove_prefix(1);
    text = trimWhite(text);
  }
  // Footnotes: "12*", "12 a".
  while (text.size() > 1 && (text.back() == '*' || text.back() == '#')) text.remove_suffix(1);
  if (text.size() > 1 && isDigit(text[text.size() - 2]) && text.back() >= 'a' &&
      text.back() <= 'd') {
    text.remove_suffix(1);
  }
  text = trimWhite(text);
  if (text.empty() || !(isDigit(text.back()) || text.back() == '.')) return {};
  const auto number = parseNumber(plainNumber(text, decimalComma));
  if (!number) return {};
  return {kind, *number, true};
}

}  // namespace lodex
