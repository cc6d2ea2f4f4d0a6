// Text: cutting, searching, changing, and numbers as text. Positions count characters from 1.
#include <cmath>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/NumberFormat.h"
#include "worksheet/formula/Compare.h"
#include "worksheet/formula/Dates.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

constexpr double longestText = 32767;

// The byte position of character `count` (from 0); the text's size after its end.
size_t bytesOf(std::string_view text, double count) {
  size_t pos = 0;
  for (; count >= 1 && pos < text.size(); count -= 1) {
    ++pos;
    while (pos < text.size() && (static_cast<unsigned char>(text[pos]) & 0xC0) == 0x80) ++pos;
  }
  return pos;
}

Operand fnLeft(Evaluator&, Arguments a) {
  const double count = numberOr(a, 1, 1);
  if (count < 0) return ErrorCode::Value;
  return Operand::text(a[0].view().substr(0, bytesOf(a[0].view(), count)));
}

Operand fnRight(Evaluator&, Arguments a) {
  const double count = std::floor(numberOr(a, 1, 1));
  if (count < 0) return ErrorCode::Value;
  const auto length = static_cast<double>(characterCount(a[0].view()));
  return Operand::text(a[0].view().substr(bytesOf(a[0].view(), std::max(0.0, length - count))));
}

Operand fnMid(Evaluator&, Arguments a) {
  if (a[1].number < 1 || a[2].number < 0) return ErrorCode::Value;
  const std::string_view rest =
      a[0].view().substr(bytesOf(a[0].view(), std::floor(a[1].number) - 1));
  return Operand::text(rest.substr(0, bytesOf(rest, a[2].number)));
}

Operand fnReplace(Evaluator& ev, Arguments a) {
  if (a[1].number < 1 || a[2].number < 0) return ErrorCode::Value;
  const size_t from = bytesOf(a[0].view(), std::floor(a[1].number) - 1);
  const std::string_view rest = a[0].view().substr(from);
  std::string out(a[0].view().substr(0, from));
  out += a[3].view();
  out += rest.substr(bytesOf(rest, a[2].number));
  return ev.text(std::move(out));
}

Operand fnSubstitute(Evaluator& ev, Arguments a) {
  const std::string_view text = a[0].view();
  const std::string_view what = a[1].view();
  if (given(a, 3) && a[3].number < 1) return ErrorCode::Value;
  if (what.empty()) return a[0];
  const double wanted = given(a, 3) ? std::floor(a[3].number) : 0;
  std::string out;
  size_t pos = 0;
  double hits = 0;
  for (;;) {
    const size_t hit = text.find(what, pos);
    if (hit == std::string_view::npos) break;
    out += text.substr(pos, hit - pos);
    ++hits;
    out += wanted == 0 || hits == wanted ? a[2].view() : what;
    if (out.size() > longestText * 4) return ErrorCode::Value;
    pos = hit + what.size();
  }
  out += text.substr(pos);
  return ev.text(std::move(out));
}

Operand findText(Arguments a, bool pattern) {
  const std::string_view text = a[1].view();
  const double start = numberOr(a, 2, 1);
  if (start < 1 || start > static_cast<double>(characterCount(text)) + 1) return ErrorCode::Value;
  const size_t from = bytesOf(text, std::floor(start) - 1);
  size_t hit;
  if (!pattern) {
    hit = text.find(a[0].view(), from);
  } else if (hasWildcards(a[0].view())) {
    hit = findPattern(text, a[0].view(), from);
  } else {
    hit = findNoCase(text, a[0].view(), from);
  }
  if (hit == std::string_view::npos) return ErrorCode::Value;
  return static_cast<double>(characterCount(text.substr(0, hit))) + 1;
}

// Blanks at the ends go, runs of blanks inside become one.
Operand fnTrim(Evaluator& ev, Arguments a) {
  std::string out;
  for (const char c : trimBlanks(a[0].view())) {
    if (c != ' ' || out.empty() || out.back() != ' ') out += c;
  }
  return ev.text(std::move(out));
}

Operand fnClean(Evaluator& ev, Arguments a) {
  std::string out;
  for (const char c : a[0].view()) {
    if (static_cast<unsigned char>(c) >= 32) out += c;
  }
  return ev.text(std::move(out));
}

Operand fnProper(Evaluator& ev, Arguments a) {
  std::string out;
  bool inside = false;
  for (const char32_t c : decodeUtf8(a[0].view())) {
    std::string one;
    appendUtf8(one, c);
    const std::string upper = toUpper(one);
    const std::string lower = toLower(one);
    out += inside ? lower : upper;
    inside = upper != lower;
  }
  return ev.text(std::move(out));
}

Operand fnRept(Evaluator& ev, Arguments a) {
  const double count = std::floor(a[1].number);
  const auto size = static_cast<double>(a[0].view().size());
  if (count < 0 || count * size > longestText) return ErrorCode::Value;
  std::string out;
  if (size == 0) return ev.text(out);
  for (double i = 0; i < count; ++i) out += a[0].view();
  return ev.text(std::move(out));
}

Operand fnChar(Evaluator& ev, Arguments a) {
  int code = 0;
  if (!wholeBetween(a[0].number, 1, 255, code)) return ErrorCode::Value;
  const char byte = static_cast<char>(code);
  return ev.text(fromWindows1252(std::string_view(&byte, 1)));
}

Operand fnCode(Evaluator&, Arguments a) {
  if (a[0].view().empty()) return ErrorCode::Value;
  const char32_t first = decodeUtf8(a[0].view().substr(0, bytesOf(a[0].view(), 1)))[0];
  if (first < 128) return static_cast<double>(first);
  // The number of the character in Windows-1252; "?" for others.
  for (int code = 128; code < 256; ++code) {
    const char byte = static_cast<char>(code);
    if (decodeUtf8(fromWindows1252(std::string_view(&byte, 1)))[0] == first)
      return static_cast<double>(code);
  }
  return 63.0;
}

Operand fnConcatenate(Evaluator& ev, Arguments a) {
  std::string out;
  for (const Operand& argument : a) out += argument.view();
  return ev.text(std::move(out));
}

// Joins all values, of areas row by row.
Operand joinValues(Evaluator& ev, Arguments a, std::string_view separator, bool skipEmpty) {
  std::string out;
  bool first = true;
  Operand error;
  const auto add = [&](const Operand& value) {
    if (value.isError()) {
      error = value;
      return false;
    }
    const std::string text = ev.toText(value);
    if (skipEmpty && text.empty()) return true;
    if (!first) out += separator;
    first = false;
    out += text;
    if (out.size() <= longestText) return true;
    error = ErrorCode::Value;
    return false;
  };
  for (const Operand& argument : a) {
    if (argument.isArea() && !skipEmpty) {
      const Area area = ev.used(argument.area);
      if (static_cast<double>(area.rows()) * area.columns() > 4e6) return ErrorCode::Value;
      for (int row = area.row1; row <= area.row2; ++row) {
        for (int column = area.column1; column <= area.column2; ++column) {
          if (!add(ev.cell(area.sheet, row, column))) return error;
        }
      }
    } else if (!ev.visitValues(argument, [&](const Operand& value, bool) { return add(value); })) {
      return error;
    }
  }
  return ev.text(std::move(out));
}

// A number as a cell of the format General shows it: in eleven characters at most.
std::string generalText(double number) {
  constexpr int most = 11;
  const std::string whole = numberText(std::abs(number));
  if (static_cast<int>(whole.size()) <= most) return numberText(number);
  const size_t point = whole.find('.');
  const bool fits = whole.find('E') == std::string::npos && point < most - 1;
  const int decimals = most - 1 - static_cast<int>(point);
  return fits ? numberText(roundDecimal(number, decimals))
              : formattedText(Value(number), "0.#####E+00");
}

Operand fnText(Evaluator& ev, Arguments a) {
  if (a[1].view().empty()) return Operand::text("");
  Value value;
  double number = 0;
  Operand error;
  if (a[0].isNumber() || a[0].isEmpty()) {
    value = Value(a[0].number);
  } else if (a[0].isText() && ev.toNumber(a[0], number, error)) {
    value = Value(number);
  } else {
    value = Value::text(ev.toView(a[0]));
  }
  if (value.isNumber() && equalsNoCase(a[1].view(), "General"))
    return ev.text(generalText(value.asNumber()));
  return ev.text(formattedText(value, a[1].view(), ev.dates1904()));
}

// A number with a fixed count of decimals and commas between thousands.
std::string fixedText(double number, int digits, bool commas) {
  number = roundDecimal(number, digits);
  char buffer[512];
  const int length =
      std::snprintf(buffer, sizeof buffer, "%.*f", std::max(0, digits), std::abs(number));
  std::string out(buffer, static_cast<size_t>(std::max(0, length)));
  if (commas) {
    size_t end = std::min(out.find('.'), out.size());
    while (end > 3) out.insert(end -= 3, ",");
  }
  return out;
}

Operand fnFixed(Evaluator& ev, Arguments a) {
  const double digits = numberOr(a, 1, 2);
  if (digits > 127 || digits < -400 || std::abs(a[0].number) > 1e300) return ErrorCode::Value;
  const bool commas = !given(a, 2) || a[2].number == 0;
  const std::string text = fixedText(a[0].number, static_cast<int>(digits), commas);
  const bool zero = text.find_first_of("123456789") == std::string::npos;
  return ev.text((a[0].number < 0 && !zero ? "-" : "") + text);
}

Operand fnDollar(Evaluator& ev, Arguments a) {
  const double digits = numberOr(a, 1, 2);
  if (digits > 127 || digits < -400 || std::abs(a[0].number) > 1e300) return ErrorCode::Value;
  const std::string text = "$" + fixedText(a[0].number, static_cast<int>(digits), true);
  const bool zero = text.find_first_of("123456789") == std::string::npos;
  return ev.text(a[0].number < 0 && !zero ? "(" + text + ")" : text);
}

Operand fnValue(Evaluator& ev, Arguments a) {
  double number = 0;
  Operand error;
  if (a[0].isBoolean()) return ErrorCode::Value;
  return ev.toNumber(a[0], number, error) ? Operand(number) : error;
}

Operand fnNumberValue(Evaluator&, Arguments a) {
  const std::string_view point =
      given(a, 1) && !a[1].view().empty() ? a[1].view().substr(0, 1) : ".";
  const std::string_view group = given(a, 2) ? a[2].view().substr(0, bytesOf(a[2].view(), 1)) : ",";
  std::string text;
  bool pastPoint = false;
  int percents = 0;
  const std::string_view in = a[0].view();
  for (size_t i = 0; i < in.size(); ++i) {
    if (in.substr(i).starts_with(point) && !pastPoint) {
      pastPoint = true;
      text += '.';
    } else if (!group.empty() && in.substr(i).starts_with(group)) {
      if (pastPoint) return ErrorCode::Value;
      i += group.size() - 1;
    } else if (in[i] == '%') {
      ++percents;
    } else if (in[i] != ' ' && in[i] != '\t') {
      text += in[i];
    }
  }
  if (text.empty()) return 0.0;
  const auto number = parseNumber(text);
  if (!number) return ErrorCode::Value;
  return *number / std::pow(100.0, percents);
}

Operand fnT(Evaluator& ev, Arguments a) {
  if (a[0].isArea() && !a[0].area.isCell()) return Operand::text("");
  const Operand value = ev.single(a[0]);
  return value.isText() || value.isError() ? value : Operand::text("");
}

constexpr FunctionInfo table[] = {
    {"LEN", 1, 1, 32, "T",
     [](Evaluator&, Arguments a) {
       return Operand(static_cast<double>(characterCount(a[0].view())));
     }},
    {"LEFT", 1, 2, 115, "Tn", fnLeft},
    {"RIGHT", 1, 2, 116, "Tn", fnRight},
    {"MID", 3, 3, 31, "TNN", fnMid},
    {"REPLACE", 4, 4, 119, "TNNT", fnReplace},
    {"SUBSTITUTE", 3, 4, 120, "TTTn", fnSubstitute},
    {"FIND", 2, 3, 124, "TTn", [](Evaluator&, Arguments a) { return findText(a, false); }},
    {"SEARCH", 2, 3, 82, "TTn", [](Evaluator&, Arguments a) { return findText(a, true); }},
    {"TRIM", 1, 1, 118, "T", fnTrim},
    {"CLEAN", 1, 1, 162, "T", fnClean},
    {"UPPER", 1, 1, 113, "T",
     [](Evaluator& ev, Arguments a) { return ev.text(toUpper(a[0].view())); }},
    {"LOWER", 1, 1, 112, "T",
     [](Evaluator& ev, Arguments a) { return ev.text(toLower(a[0].view())); }},
    {"PROPER", 1, 1, 114, "T", fnProper},
    {"REPT", 2, 2, 30, "TN", fnRept},
    {"CHAR", 1, 1, 111, "N", fnChar},
    {"CODE", 1, 1, 121, "T", fnCode},
    {"UNICHAR", 1, 1, newer, "N",
     [](Evaluator& ev, Arguments a) {
       int code = 0;
       if (!wholeBetween(a[0].number, 1, 0x10FFFF, code) || (code >= 0xD800 && code < 0xE000)) {
         return Operand(ErrorCode::Value);
       }
       std::string out;
       appendUtf8(out, static_cast<char32_t>(code));
       return ev.text(std::move(out));
     }},
    {"UNICODE", 1, 1, newer, "T",
     [](Evaluator&, Arguments a) {
       const std::u32string text = decodeUtf8(a[0].view().substr(0, bytesOf(a[0].view(), 1)));
       return text.empty() ? Operand(ErrorCode::Value) : Operand(static_cast<double>(text[0]));
     }},
    {"EXACT", 2, 2, 117, "T",
     [](Evaluator&, Arguments a) { return Operand::boolean(a[0].view() == a[1].view()); }},
    {"CONCATENATE", 1, anyNumber, 336, "T", fnConcatenate},
    {"CONCAT", 1, anyNumber, newer, "R",
     [](Evaluator& ev, Arguments a) { return joinValues(ev, a, "", true); }},
    {"TEXTJOIN", 3, anyNumber, newer, "TBR",
     [](Evaluator& ev, Arguments a) {
       return joinValues(ev, a.subspan(2), a[0].view(), a[1].number != 0);
     }},
    {"TEXT", 2, 2, 48, "VT", fnText},
    {"FIXED", 1, 3, 14, "Nnb", fnFixed},
    {"DOLLAR", 1, 2, 13, "Nn", fnDollar},
    {"USDOLLAR", 1, 2, 204, "Nn", fnDollar},
    {"VALUE", 1, 1, 33, "V", fnValue},
    {"NUMBERVALUE", 1, 3, newer, "Ttt", fnNumberValue},
    {"T", 1, 1, 130, "R", fnT},
};

}  // namespace

FunctionList textFunctions() {
  return table;
}

}  // namespace lodex::formula
