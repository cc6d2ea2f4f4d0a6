#include "worksheet/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/NumberFormatParts.h"

namespace lodex {
namespace {

using numberformat::Section;
using numberformat::TokenKind;

// A sheet shows thousands of cells under a handful of formats, so each is taken apart once.
const std::vector<Section>& sectionsOf(std::string_view format) {
  static std::unordered_map<std::string, std::vector<Section>> known;
  const std::string key(format);
  const auto hit = known.find(key);
  if (hit != known.end()) return hit->second;
  if (known.size() > 1000) known.clear();
  return known[key] = numberformat::parseFormat(format);
}

bool isGeneral(std::string_view format) {
  return format.empty() || format == "@" || equalsNoCase(format, "General");
}

// The section that texts are shown under: the fourth, or a last one with "@"; null for none.
const Section* textSection(const std::vector<Section>& sections) {
  if (sections.size() >= 4) return &sections[3];
  return !sections.empty() && sections.back().isText ? &sections.back() : nullptr;
}

std::string underTextSection(std::string_view text, const Section& section) {
  std::string out;
  for (const auto& token : section.tokens) {
    if (token.kind == TokenKind::Text || token.kind == TokenKind::General) {
      out += text;
    } else if (token.kind == TokenKind::Literal) {
      out += token.text;
    }
  }
  return out;
}

struct Choice {
  const Section* section = nullptr;
  bool ownSign = false;  // the section says itself that the number is negative
};

Choice chooseSection(const std::vector<Section>& sections, double number) {
  size_t count = std::min<size_t>(sections.size(), 3);
  // A last section for text leaves the numbers to those before it.
  if (count > 1 && count == sections.size() && sections[count - 1].isText) --count;
  const bool conditional =
      std::any_of(sections.begin(), sections.begin() + static_cast<long>(count),
                  [](const Section& s) { return s.condition.has_value(); });
  if (!conditional) {
    if (count >= 2 && number < 0) return {&sections[1], true};
    if (count >= 3 && number == 0) return {&sections[2], false};
    return {&sections[0], false};
  }
  for (size_t i = 0; i < count; ++i) {
    const auto& condition = sections[i].condition;
    if (condition && condition->admits(number)) return {&sections[i], condition->onlyNegative()};
    if (condition) continue;
    const bool forNegatives = i == 1 && count == 3;
    if (!forNegatives) return {&sections[i], false};
    if (number < 0) return {&sections[i], true};
  }
  return {};
}

std::string formattedNumber(double number, std::string_view format, bool dates1904) {
  const std::vector<Section>& sections = sectionsOf(format);
  if (sections.empty() || !std::isfinite(number)) return numberText(number);
  const Choice choice = chooseSection(sections, number);
  if (choice.section == nullptr) return numberText(number);
  if (choice.section->tokens.empty()) return {};
  if (choice.section->isDate) {
    // Workbooks that count from 1904 show negative times.
    const bool negative = dates1904 && number < 0;
    const auto text =
        numberformat::dateText(negative ? -number : number, *choice.section, dates1904);
    return !text ? numberText(number) : negative && !choice.ownSign ? "-" + *text : *text;
  }
  const std::string digits = numberformat::digitsText(std::abs(number), *choice.section);
  return number < 0 && !choice.ownSign ? "-" + digits : digits;
}

}  // namespace

std::string formattedText(const Value& value, std::string_view format, bool dates1904) {
  if (isGeneral(format)) return value.asText();
  if (value.isNumber()) return formattedNumber(value.asNumber(), format, dates1904);
  if (!value.isText()) return value.asText();
  const Section* section = textSection(sectionsOf(format));
  return section == nullptr ? value.asText() : underTextSection(value.textView(), *section);
}

std::optional<std::int32_t> formattedColor(const Value& value, std::string_view format) {
  if (!value.isNumber() || isGeneral(format)) return std::nullopt;
  const Choice choice = chooseSection(sectionsOf(format), value.asNumber());
  if (choice.section == nullptr || choice.section->color < 0) return std::nullopt;
  return choice.section->color;
}

bool isDateFormat(std::string_view format) {
  if (isGeneral(format)) return false;
  const std::vector<Section>& sections = sectionsOf(format);
  return std::any_of(sections.begin(), sections.end(), [](const Section& s) { return s.isDate; });
}

}  // namespace lodex
