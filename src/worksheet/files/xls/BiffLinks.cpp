#include "worksheet/files/xls/BiffLinks.h"

#include <array>
#include <cctype>

#include "basic/Text.h"
#include "worksheet/formula/Parser.h"

namespace lodex::biff {
namespace {

constexpr std::array<std::string_view, 14> builtinNames{
    "Consolidate_Area", "Auto_Open",       "Auto_Close",   "Extract",        "Database",
    "Criteria",         "Print_Area",      "Print_Titles", "Recorder",       "Data_Form",
    "Auto_Activate",    "Auto_Deactivate", "Sheet_Title",  "_FilterDatabase"};

constexpr size_t maxEntries = 65536;

// Paths are stored with marks of their own for volumes and folders.
std::string decodedPath(std::string_view encoded) {
  if (encoded.empty()) return {};
  const char kind = encoded.front();
  if (kind == '\0' || kind == '\2') return {};
  if (kind != '\1') return std::string(encoded);
  std::string path;
  encoded.remove_prefix(1);
  while (!encoded.empty()) {
    const char c = encoded.front();
    encoded.remove_prefix(1);
    if (c == '\1') {  // a volume: a letter or "@" for a network share
      const char volume = encoded.empty() ? '@' : encoded.front();
      if (!encoded.empty()) encoded.remove_prefix(1);
      path += volume == '@' ? "\\\\" : std::string(1, volume) + ":\\";
    } else if (c == '\2' || c == '\3') {
      path += '\\';
    } else if (c == '\4') {
      path += "..\\";
    } else if (c == '\5') {  // an address of the web, after its length
      if (!encoded.empty()) encoded.remove_prefix(1);
    } else if (c > '\5' && c <= '\10') {
      continue;  // start-up folders, whose place only the writing program knows
    } else {
      path += c;
    }
  }
  return path;
}

// Sheets of these files end at column IV, so that a name such as "PRA1" was no cell then. It is one
// on wider sheets, where an underscore keeps it a name.
bool looksLikeCell(std::string_view name) {
  size_t letters = 0;
  while (letters < name.size() && std::isalpha(static_cast<unsigned char>(name[letters])) != 0)
    ++letters;
  const std::string_view digits = name.substr(letters);
  return letters >= 1 && letters <= 3 && !digits.empty() && digits.size() <= 7 &&
         digits.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string prefixFor(const std::string& book, const std::string& first, const std::string& last) {
  formula::SheetPrefix prefix{book, first, first == last ? std::string() : last};
  return formula::prefixText(prefix);
}

const std::string* at(const std::vector<std::string>& list, int index) {
  return index >= 0 && static_cast<size_t>(index) < list.size() ? &list[static_cast<size_t>(index)]
                                                                : nullptr;
}

}  // namespace

std::string_view builtinName(unsigned number) {
  return number < builtinNames.size() ? builtinNames[number] : std::string_view();
}

int builtinNumber(std::string_view name) {
  for (size_t i = 0; i < builtinNames.size(); ++i) {
    if (equalsNoCase(builtinNames[i], name)) return static_cast<int>(i);
  }
  return -1;
}

bool Links::prefixOfRange(size_t range, std::string& prefix) const {
  if (range >= ranges.size() || ranges[range].book >= books.size()) return false;
  const SheetRange& sheets = ranges[range];
  const Book& book = books[sheets.book];
  if (book.kind == Book::Kind::AddIn) return false;
  const bool own = book.kind == Book::Kind::Own;
  const std::string* first = at(own ? tabs : book.sheets, sheets.first);
  const std::string* last = at(own ? tabs : book.sheets, sheets.last);
  if (first == nullptr || last == nullptr) return false;
  prefix = prefixFor(own ? std::string() : book.name, *first, *last);
  return true;
}

bool Links::prefixOfSheets(int book, int first, int last, std::string& prefix) const {
  if (book < 0) {
    const std::string* from = at(tabs, first);
    const std::string* to = at(tabs, last);
    if (from == nullptr || to == nullptr) return false;
    prefix = prefixFor({}, *from, *to);
    return true;
  }
  if (book == 0 || static_cast<size_t>(book) > books.size()) return false;
  const Book& other = books[static_cast<size_t>(book) - 1];
  if (other.sheets.empty()) return false;
  prefix = prefixFor(other.name, other.sheets[0], other.sheets[0]);
  return true;
}

void Links::addSupBook(std::string_view data) {
  if (books.size() >= maxEntries) return;
  ByteReader in(data);
  Book book;
  const unsigned count = in.u16();
  if (data.size() == 4) {
    book.kind = in.u16() == 0x3A01 ? Book::Kind::AddIn : Book::Kind::Own;
  } else {
    book.name = decodedPath(readUnicodeText(in, LengthBytes::Two));
    for (unsigned i = 0; i < count && in.left() > 0; ++i) {
      book.sheets.push_back(readUnicodeText(in, LengthBytes::Two));
    }
  }
  books.push_back(std::move(book));
}

void Links::addExternSheet(std::string_view data) {
  ByteReader in(data);
  if (version >= 8) {
    const unsigned count = in.u16();
    for (unsigned i = 0; i < count && in.left() >= 6 && ranges.size() < maxEntries; ++i) {
      SheetRange range;
      range.book = in.u16();
      range.first = in.i16();
      range.last = in.i16();
      ranges.push_back(range);
    }
    return;
  }
  if (books.size() >= maxEntries) return;
  const std::string text = readByteText(in, LengthBytes::One, codePage);
  Book book;
  if (!text.empty() && text.front() == '\3') {
    book.kind = Book::Kind::Own;
    book.sheets.push_back(text.substr(1));
  } else if (text == ":") {
    book.kind = Book::Kind::AddIn;
  } else {
    // "path[file]sheet", the sheet missing before version 5; or the own sheet, which has no name.
    std::string path = decodedPath(text);
    const size_t open = path.find('[');
    const size_t close = path.find(']');
    if (open != std::string::npos && close != std::string::npos && close > open) {
      book.sheets.push_back(path.substr(close + 1));
      book.name = path.substr(0, open) + path.substr(open + 1, close - open - 1);
    } else {
      book.name = std::move(path);
    }
  }
  books.push_back(std::move(book));
}

void Links::addExternName(std::string_view data) {
  if (books.empty() || books.back().names.size() >= maxEntries) return;
  ByteReader in(data);
  in.skip(version >= 5 ? 6 : version >= 3 ? 2 : 0);
  books.back().names.push_back(version >= 8 ? readUnicodeText(in, LengthBytes::One)
                                            : readByteText(in, LengthBytes::One, codePage));
}

void Links::addName(std::string_view data) {
  if (names.size() >= maxEntries) return;
  ByteReader in(data);
  Name name;
  unsigned flags = 0;
  if (version == 2) {
    flags = in.u8() & 2u ? 0x0002u : 0;
    in.skip(1);
  } else {
    flags = in.u16();
  }
  in.skip(1);  // shortcut key
  const size_t length = in.u8();
  const size_t codeSize = version == 2 ? in.u8() : in.u16();
  if (version >= 5) {
    in.skip(2);
    name.sheet = in.u16();
    in.skip(4);
  }
  name.name = version >= 8 ? readUnicodeCharacters(in, length) : codePage.toUtf8(in.bytes(length));
  if (looksLikeCell(name.name)) name.name.insert(0, 1, '_');
  name.hidden = (flags & 0x0001) != 0;
  name.macro = (flags & 0x000E) != 0;
  if ((flags & 0x0020) != 0 && name.name.size() == 1) {
    name.name = builtinName(static_cast<unsigned char>(name.name[0]));
  }
  name.code = in.bytes(codeSize);
  name.extra = in.rest();
  names.push_back(std::move(name));
}

}  // namespace lodex::biff
