#include "worksheet/files/xls/LinkWriter.h"

#include <algorithm>

#include "basic/Text.h"
#include "worksheet/files/xls/BiffLinks.h"
#include "worksheet/files/xls/FormulaEncoder.h"

namespace lodex::biff {
namespace {

constexpr size_t maxNumbers = 1300;  // ranges that fit into one record
constexpr size_t maxNameLength = 255;
constexpr size_t maxNames = 32000;
constexpr std::pair<int, int> addInMark{-2, -2};

}  // namespace

void writeUnicodeCharacters(RecordWriter& out, std::u16string_view text) {
  const bool wide = std::any_of(text.begin(), text.end(), [](char16_t c) { return c > 0xFF; });
  out.u8(wide ? 1 : 0);
  for (char16_t c : text) {
    if (wide) {
      out.u16(c);
    } else {
      out.u8(c);
    }
  }
}

LinkWriter::LinkWriter(const Worksheet& worksheet) : worksheet_(worksheet) {
  std::vector<const DefinedName*> sources;
  for (const DefinedName& defined : worksheet.definedNames()) {
    if (defined.name.empty() || toUtf16(defined.name).size() > maxNameLength) continue;
    if (names_.size() >= maxNames) break;
    Name name;
    name.text = defined.name;
    name.sheet = defined.sheet;
    name.hidden = defined.hidden;
    names_.push_back(std::move(name));
    sources.push_back(&defined);
    nameNumbers_.emplace(std::pair(toUpper(defined.name), defined.sheet),
                         static_cast<int>(names_.size()));
  }
  // A name may refer to one that comes later, so all have numbers before the first is encoded.
  for (size_t i = 0; i < sources.size(); ++i) {
    const auto encoded =
        encodeFormula(*this, sources[i]->formula, sources[i]->sheet, FormulaUse::Name);
    names_[i].code = encoded ? encoded->code : "\x1C\x17";  // #REF!
    names_[i].extra = encoded ? encoded->extra : "";
  }
}

int LinkWriter::range(std::string_view first, std::string_view last) {
  const int from = worksheet_.SheetNumber(first);
  const int to = last.empty() ? from : worksheet_.SheetNumber(last);
  if (from == 0 || to == 0) return -1;
  const std::pair<int, int> sheets{from - 1, to - 1};
  const auto known = rangeNumbers_.find(sheets);
  if (known != rangeNumbers_.end()) return known->second;
  if (ranges_.size() >= maxNumbers) return -1;
  ranges_.push_back(sheets);
  return rangeNumbers_[sheets] = static_cast<int>(ranges_.size()) - 1;
}

int LinkWriter::nameOfSheet(std::string_view text, int sheet) const {
  const auto hit = nameNumbers_.find({toUpper(text), sheet});
  return hit == nameNumbers_.end() ? 0 : hit->second;
}

int LinkWriter::addName(std::string_view text, bool function) {
  if (names_.size() >= maxNames || toUtf16(text).size() > maxNameLength) return 0;
  Name name;
  name.text = text;
  name.function = function;
  name.hidden = function;
  names_.push_back(std::move(name));
  return nameNumbers_[{toUpper(text), 0}] = static_cast<int>(names_.size());
}

int LinkWriter::name(std::string_view text, int sheet) {
  if (sheet != 0) {
    if (const int own = nameOfSheet(text, sheet)) return own;
  }
  const int known = nameOfSheet(text, 0);
  return known != 0 ? known : addName(text, false);
}

int LinkWriter::laterFunction(std::string_view function) {
  const int known = nameOfSheet(function, 0);
  return known != 0 ? known : addName(function, true);
}

std::pair<int, int> LinkWriter::addInFunction(std::string_view function) {
  if (addInRange_ < 0) {
    addInRange_ = static_cast<int>(ranges_.size());
    ranges_.push_back(addInMark);
  }
  auto hit = std::find(addIns_.begin(), addIns_.end(), function);
  if (hit == addIns_.end()) hit = addIns_.insert(addIns_.end(), std::string(function));
  return {addInRange_, static_cast<int>(hit - addIns_.begin()) + 1};
}

void LinkWriter::writeName(RecordWriter& out, const Name& name) const {
  const int builtin = builtinNumber(name.text);
  const std::u16string text =
      builtin >= 0 ? std::u16string(1, static_cast<char16_t>(builtin)) : toUtf16(name.text);
  out.begin(idName);
  out.u16((name.hidden ? 0x0001u : 0u) | (name.function ? 0x000Au : 0u) |
          (builtin >= 0 ? 0x0020u : 0u));
  out.u8(0);
  out.u8(static_cast<unsigned>(text.size()));
  out.u16(static_cast<unsigned>(name.code.size()));
  out.u16(0);
  out.u16(static_cast<unsigned>(name.sheet));
  out.u32(0);
  writeUnicodeCharacters(out, text);
  out.raw(name.code);
  out.raw(name.extra);
}

void LinkWriter::write(RecordWriter& out) {
  out.begin(idSupBook);
  out.u16(static_cast<unsigned>(worksheet_.NumSheets()));
  out.u16(0x0401);
  if (addInRange_ >= 0) {
    out.begin(idSupBook);
    out.u16(1);
    out.u16(0x3A01);
    for (const std::string& function : addIns_) {
      out.begin(idExternName);
      out.u16(0);
      out.u32(0);
      out.u8(static_cast<unsigned>(function.size()));
      writeUnicodeCharacters(out, toUtf16(function));
      // The value of a function that is not loaded.
      out.u16(2);
      out.raw(std::string_view("\x1C\x17", 2));
    }
  }
  out.begin(idExternSheet);
  out.u16(static_cast<unsigned>(ranges_.size()));
  for (const auto& [first, last] : ranges_) {
    out.u16(std::pair(first, last) == addInMark ? 1 : 0);
    out.u16(static_cast<unsigned>(first) & 0xFFFF);
    out.u16(static_cast<unsigned>(last) & 0xFFFF);
  }
  for (const Name& name : names_) writeName(out, name);
}

}  // namespace lodex::biff
