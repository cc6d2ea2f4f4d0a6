#include <algorithm>
#include <array>
#include <charconv>

#include "basic/Numbers.h"
#include "worksheet/files/ods/OdsParts.h"

namespace lodex {
namespace {

bool isNumberStyle(std::string_view element) {
  constexpr std::array<std::string_view, 7> styles{
      "number-style", "percentage-style", "currency-style", "date-style",
      "time-style",   "boolean-style",    "text-style"};
  return std::find(styles.begin(), styles.end(), element) != styles.end();
}

Color colorOf(std::string_view text) {
  Color color = 0;
  if (text.size() != 7 || text.front() != '#') return automaticColor;
  const auto result = std::from_chars(text.data() + 1, text.data() + 7, color, 16);
  return result.ptr == text.data() + 7 ? color : automaticColor;
}

std::string zeros(int count) {
  return std::string(static_cast<size_t>(std::clamp(count, 0, 30)), '0');
}

std::string decimalPattern(const XmlAttributes& attributes) {
  const int whole = attributes.number("min-integer-digits", 1);
  const int decimals = attributes.number("decimal-places", 0);
  std::string pattern = whole > 0 ? zeros(whole) : "#";
  if (attributes.flag("grouping"))
    pattern = "#," + std::string(whole > 0 ? "##" : "###") + (whole > 0 ? zeros(1) : "");
  return decimals > 0 ? pattern + "." + zeros(decimals) : pattern;
}

}  // namespace

void OdsStyles::start(std::string_view element, const XmlAttributes& attributes) {
  if (isNumberStyle(element)) {
    numberFormat_ = &numberFormats_[std::string(attributes.prefixed("style", "name"))];
    numberFormat_->clear();
  } else if (numberFormat_ != nullptr) {
    numberPart(element, attributes);
  } else if (element == "style") {
    style_ = &styles_[std::string(attributes.prefixed("style", "name"))];
    style_->parent = attributes("parent-style-name");
    style_->dataStyle = attributes("data-style-name");
  } else if (style_ != nullptr) {
    cellPart(element, attributes);
  }
}

void OdsStyles::end(std::string_view element) {
  literal_ = false;
  if (isNumberStyle(element)) numberFormat_ = nullptr;
  if (element == "style") style_ = nullptr;
}

void OdsStyles::text(std::string_view text) {
  if (!literal_ || numberFormat_ == nullptr) return;
  // Marks that mean themselves in a number format; "%" even has to stay bare.
  if (text == "%" || text == "-" || text == "/" || text == ":" || text == " ") {
    *numberFormat_ += text;
  } else {
    *numberFormat_ += '"' + std::string(text) + '"';
  }
}

void OdsStyles::numberPart(std::string_view element, const XmlAttributes& attributes) {
  const bool isLong = attributes("style") == "long";
  const auto add = [&](std::string_view text) { *numberFormat_ += text; };
  literal_ = element == "text" || element == "currency-symbol";
  if (element == "number") {
    if (attributes.has("decimal-places") || attributes.has("grouping")) {
      add(decimalPattern(attributes));
    } else {
      add("General");
    }
  } else if (element == "scientific-number") {
    add(decimalPattern(attributes) + "E+" + zeros(attributes.number("min-exponent-digits", 2)));
  } else if (element == "fraction") {
    const int digits = std::clamp(attributes.number("min-denominator-digits", 1), 1, 4);
    const std::string marks(static_cast<size_t>(digits), '?');
    const std::string_view fixed = attributes("denominator-value");
    add("# " + marks + "/" + (fixed.empty() ? marks : std::string(fixed)));
  } else if (element == "year") {
    add(isLong ? "yyyy" : "yy");
  } else if (element == "month") {
    const bool words = attributes.flag("textual");
    add(words ? (isLong ? "mmmm" : "mmm") : (isLong ? "mm" : "m"));
  } else if (element == "day") {
    add(isLong ? "dd" : "d");
  } else if (element == "day-of-week") {
    add(isLong ? "dddd" : "ddd");
  } else if (element == "hours") {
    add(isLong ? "hh" : "h");
  } else if (element == "minutes") {
    add(isLong ? "mm" : "m");
  } else if (element == "seconds") {
    const int decimals = attributes.number("decimal-places", 0);
    add((isLong ? "ss" : "s") + (decimals > 0 ? "." + zeros(decimals) : ""));
  } else if (element == "am-pm") {
    add("AM/PM");
  } else if (element == "text-content") {
    add("@");
  }
}

void OdsStyles::cellPart(std::string_view element, const XmlAttributes& attributes) {
  CellFormat& format = style_->format;
  if (element == "table-properties") {
    style_->shown = attributes("display") != "false";
  } else if (element == "text-properties") {
    format.bold = attributes.prefixed("fo", "font-weight") == "bold";
    format.italic = attributes.prefixed("fo", "font-style") == "italic";
    const std::string_view underline = attributes("text-underline-style");
    format.underline = !underline.empty() && underline != "none";
    format.fontColor = colorOf(attributes.prefixed("fo", "color"));
  } else if (element == "table-cell-properties") {
    format.patternColor = colorOf(attributes("background-color"));
    format.pattern = format.patternColor == automaticColor ? FillPattern::None : FillPattern::Solid;
    format.wrap = attributes("wrap-option") == "wrap";
  } else if (element == "paragraph-properties") {
    const std::string_view align = attributes("text-align");
    if (align == "start" || align == "left") format.horizontal = HorizontalAlignment::Left;
    if (align == "center") format.horizontal = HorizontalAlignment::Center;
    if (align == "end" || align == "right") format.horizontal = HorizontalAlignment::Right;
  }
}

CellFormat OdsStyles::format(const std::string& style) const {
  const auto hit = styles_.find(style);
  if (hit == styles_.end()) return {};
  CellFormat format = hit->second.format;
  // A style without a number format of its own takes that of its parents.
  auto at = hit;
  for (int steps = 0; at != styles_.end() && steps < 20; ++steps) {
    const auto number = numberFormats_.find(at->second.dataStyle);
    if (number != numberFormats_.end()) {
      if (!number->second.empty()) format.numberFormat = number->second;
      break;
    }
    at = styles_.find(at->second.parent);
  }
  return format;
}

bool OdsStyles::tableShown(const std::string& style) const {
  const auto hit = styles_.find(style);
  return hit == styles_.end() || hit->second.shown;
}

}  // namespace lodex
