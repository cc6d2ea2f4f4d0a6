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
constexpr size_t maxForeign = 4000;       // sheets and names of one other workbook, and workbooks
constexpr size_t maxForeignSheets = 100;  // their names stand in one record
constexpr int noSheet = -2;
constexpr int addInBook = 1, firstForeignBook = 2;

// A path with the marks that files hold instead of volumes and folders.
std::u16string encodedPath(const std::string& path) {
  const std::u16string plain = toUtf16(path);
  // A server and its topic, which are no path.
  if (plain.find(u'\3') != std::u16string::npos) return plain;
  std::u16string out = u"\1";
  if (path.find("://") != std::string::npos) {
    out += u'\5';
    out += static_cast<char16_t>(plain.size());
    return out + plain;
  }
  size_t at = 0;
  if (path.starts_with("\\\\")) {
    out += u"\1@";
    at = 2;
  } else if (path.size() > 2 && path[1] == ':' && path[2] == '\\') {
    out += u'\1';
    out += plain[0];
    at = 3;
  }
  for (; at < plain.size(); ++at) {
    if (plain.compare(at, 3, u"..\\") == 0) {
      out += u'\4';
      at += 2;
    } else {
      out += plain[at] == u'\\' ? u'\3' : plain[at];
    }
  }
  return out;
}

void writeLongText(RecordWriter& out, std::u16string_view text) {
  out.u16(static_cast<unsigned>(text.size()));
  writeUnicodeCharacters(out, text);
}

// A name without content: its value is where it comes from.
void writeExternName(RecordWriter& out, const std::string& name, int sheet) {
  const std::u16string text = toUtf16(name);
  out.begin(idExternName);
  out.u16(0);
  out.u16(static_cast<unsigned>(sheet));
  out.u16(0);
  out.u8(static_cast<unsigned>(text.size()));
  writeUnicodeCharacters(out, text);
  out.u16(2);
  out.raw(std::string_view("\x1C\x17", 2));
}

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
  return addRange({0, from - 1, to - 1});
}

int LinkWriter::addRange(const Range& range) {
  const auto known = rangeNumbers_.find(range);
  if (known != rangeNumbers_.end()) return known->second;
  if (ranges_.size() >= maxNumbers) return -1;
  ranges_.push_back(range);
  return rangeNumbers_[range] = static_cast<int>(ranges_.size()) - 1;
}

// The place of the other workbook in foreign_; -1 when there is no room.
int LinkWriter::foreignBook(const std::string& path) {
  for (size_t i = 0; i < foreign_.size(); ++i) {
    if (equalsNoCase(foreign_[i].path, path)) return static_cast<int>(i);
  }
  if (foreign_.size() >= maxForeign || toUtf16(path).size() > maxNameLength - 4) return -1;
  foreign_.push_back({path, {}, {}});
  return static_cast<int>(foreign_.size()) - 1;
}

// The number, from 0, of another workbook's sheet; -1 when there is no room.
int LinkWriter::foreignSheet(ForeignBook& book, const std::string& sheet) {
  for (size_t i = 0; i < book.sheets.size(); ++i) {
    if (equalsNoCase(book.sheets[i], sheet)) return static_cast<int>(i);
  }
  if (book.sheets.size() >= maxForeignSheets || toUtf16(sheet).size() > 31) return -1;
  book.sheets.push_back(sheet);
  return static_cast<int>(book.sheets.size()) - 1;
}

int LinkWriter::foreignRange(const std::string& path, const std::string& first,
                             const std::string& last) {
  const int index = foreignBook(path);
  if (index < 0) return -1;
  if (first.empty()) return addRange({firstForeignBook + index, noSheet, noSheet});
  ForeignBook& book = foreign_[static_cast<size_t>(index)];
  const int from = foreignSheet(book, first);
  const int to = last.empty() ? from : foreignSheet(book, last);
  return from < 0 || to < 0 ? -1 : addRange({firstForeignBook + index, from, to});
}

std::pair<int, int> LinkWriter::foreignName(const std::string& path, const std::string& sheet,
                                            const std::string& name) {
  const int range = foreignRange(path, sheet, {});
  if (range < 0 || toUtf16(name).size() > maxNameLength) return {-1, 0};
  const Range& place = ranges_[static_cast<size_t>(range)];
  ForeignBook& book = foreign_[static_cast<size_t>(place.book - firstForeignBook)];
  const std::pair<std::string, int> wanted{name, std::max(0, place.first + 1)};
  auto hit = std::find(book.names.begin(), book.names.end(), wanted);
  if (hit == book.names.end()) {
    if (book.names.size() >= maxForeign) return {-1, 0};
    hit = book.names.insert(book.names.end(), wanted);
  }
  return {range, static_cast<int>(hit - book.names.begin()) + 1};
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
  const int range = addRange({addInBook, noSheet, noSheet});
  auto hit = std::find(addIns_.begin(), addIns_.end(), function);
  if (hit == addIns_.end()) hit = addIns_.insert(addIns_.end(), std::string(function));
  return {range, static_cast<int>(hit - addIns_.begin()) + 1};
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

void LinkWriter::writeForeignBook(RecordWriter& out, const ForeignBook& book) {
  out.begin(idSupBook);
  out.u16(static_cast<unsigned>(book.sheets.size()));
  writeLongText(out, encodedPath(book.path));
  for (const std::string& sheet : book.sheets) writeLongText(out, toUtf16(sheet));
  for (const auto& [name, sheet] : book.names) writeExternName(out, name, sheet);
}

void LinkWriter::write(RecordWriter& out) {
  out.begin(idSupBook);
  out.u16(static_cast<unsigned>(worksheet_.NumSheets()));
  out.u16(0x0401);
  // Without add-ins their book is left out, and the others move up.
  const int shift = addIns_.empty() ? 1 : 0;
  if (!addIns_.empty()) {
    out.begin(idSupBook);
    out.u16(1);
    out.u16(0x3A01);
    for (const std::string& function : addIns_) writeExternName(out, function, 0);
  }
  for (const ForeignBook& book : foreign_) writeForeignBook(out, book);
  out.begin(idExternSheet);
  out.u16(static_cast<unsigned>(ranges_.size()));
  for (const Range& range : ranges_) {
    const int book = range.book >= firstForeignBook ? range.book - shift : range.book;
    out.u16(static_cast<unsigned>(book));
    out.u16(static_cast<unsigned>(range.first) & 0xFFFF);
    out.u16(static_cast<unsigned>(range.last) & 0xFFFF);
  }
  for (const Name& name : names_) writeName(out, name);
}

}  // namespace lodex::biff
