#include <algorithm>

#include "basic/Text.h"
#include "worksheet/files/ods/OdsParts.h"

namespace lodex {
namespace {

// "$Sheet1.$A$1" as "Sheet1!$A$1", ".B2" as "B2". `pos` moves past the address.
std::string oneAddress(std::string_view text, size_t& pos) {
  std::string sheet;
  if (pos < text.size() && text[pos] == '$') {
    // The mark of an absolute sheet, unless the address has no sheet at all.
    const size_t rest = text.find_first_of(".:", pos);
    if (rest != std::string_view::npos && text[rest] == '.') ++pos;
  }
  if (pos < text.size() && text[pos] == '\'') {
    do {
      sheet += text[pos++];
    } while (pos < text.size() && text[pos] != '\'');
    while (pos < text.size() && text[pos] != '.') sheet += text[pos++];
  } else {
    size_t end = pos;
    while (end < text.size() && text[end] != '.' && text[end] != ':') ++end;
    if (end < text.size() && text[end] == '.') {
      sheet = text.substr(pos, end - pos);
      pos = end;
    }
  }
  if (pos < text.size() && text[pos] == '.') ++pos;
  const size_t end = std::min(text.find(':', pos), text.size());
  const std::string cell(text.substr(pos, end - pos));
  pos = end;
  return sheet.empty() ? cell : sheet + "!" + cell;
}

}  // namespace

std::string odsReference(std::string_view text) {
  size_t pos = 0;
  std::string out = oneAddress(text, pos);
  if (pos >= text.size()) return out;
  ++pos;
  const std::string second = oneAddress(text, pos);
  // The sheet is named once; "Sheet1.A1:Sheet1.B2" is the long form of the same.
  const size_t mark = second.rfind('!');
  return out + ":" + (mark == std::string::npos ? second : second.substr(mark + 1));
}

std::string odsFormula(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals != std::string_view::npos && equals < 8) text.remove_prefix(equals + 1);
  std::string out;
  int braces = 0;
  for (size_t pos = 0; pos < text.size();) {
    const char c = text[pos];
    size_t end = pos + 1;
    if (c == '"') {
      end = std::min(text.find('"', end), text.size() - 1) + 1;
      out += text.substr(pos, end - pos);
    } else if (c == '[') {
      const size_t close = std::min(text.find(']', pos), text.size());
      out += odsReference(text.substr(pos + 1, close - pos - 1));
      end = std::min(close + 1, text.size());
    } else {
      braces += c == '{' ? 1 : c == '}' ? -1 : 0;
      out += c == ';' ? ',' : c == '|' && braces > 0 ? ';' : c;
    }
    pos = end;
  }
  return replaceAll(out, "COM.MICROSOFT.", "");
}

}  // namespace lodex
