#include "worksheet/files/xls/XlsWriter.h"

#include <algorithm>
#include <vector>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/files/xls/OleFile.h"
#include "worksheet/files/xls/SheetWriter.h"
#include "worksheet/files/xls/XlsMark.h"

namespace lodex {
namespace {

using namespace biff;

constexpr size_t maxSheetName = 31;
constexpr size_t smallestStream = 4096;  // shorter ones are packed in a way some programs dislike

// Names without the characters that the format refuses, each once.
std::vector<std::u16string> sheetNames(const Worksheet& worksheet) {
  std::vector<std::u16string> names;
  std::vector<std::string> taken;
  for (int sheet = 1; sheet <= worksheet.NumSheets(); ++sheet) {
    std::u16string plain = toUtf16(worksheet.SheetName(sheet));
    if (plain.size() > maxSheetName) {
      throw FileError("The sheet name " + worksheet.SheetName(sheet) +
                      " is longer than the 31 characters that an .xls file allows");
    }
    for (char16_t& c : plain) {
      if (std::u16string_view(u"[]:*?/\\").find(c) != std::u16string_view::npos) c = u'_';
    }
    std::u16string name = plain;
    const auto isTaken = [&] {
      return std::find(taken.begin(), taken.end(), toUpper(fromUtf16(name))) != taken.end();
    };
    for (int number = 2; isTaken(); ++number) {
      const std::u16string tail = toUtf16("~" + std::to_string(number));
      name = plain.substr(0, maxSheetName - tail.size()) + tail;
    }
    taken.push_back(toUpper(fromUtf16(name)));
    names.push_back(std::move(name));
  }
  return names;
}

void writeAccess(RecordWriter& out) {
  out.begin(idInterfaceHeader);
  out.u16(1200);
  out.begin(0x00C1);  // no menus added
  out.u16(0);
  out.begin(0x00E2);
  out.begin(idWriteAccess);
  out.u16(static_cast<unsigned>(writerName.size()));
  out.u8(0);
  out.raw(writerName);
  out.raw(std::string(112 - 3 - writerName.size(), ' '));
}

// Programs want the tab in front to be one that shows: the current sheet, or else the first that is
// visible; a workbook without any shows its first.
int frontSheet(const Worksheet& worksheet) {
  const auto shows = [&](int sheet) {
    return worksheet.sheetVisibility(sheet) == SheetVisibility::Visible;
  };
  if (shows(worksheet.Sheet())) return worksheet.Sheet();
  for (int sheet = 1; sheet <= worksheet.NumSheets(); ++sheet) {
    if (shows(sheet)) return sheet;
  }
  return 1;
}

void writeWindow(RecordWriter& out, int front) {
  out.begin(idWindow1);
  out.u16(0);
  out.u16(0);
  out.u16(0x4000);
  out.u16(0x2000);
  out.u16(0x0038);
  out.u16(static_cast<unsigned>(front - 1));
  out.u16(0);
  out.u16(1);
  out.u16(600);
}

unsigned visibilityNumber(SheetVisibility visibility) {
  return visibility == SheetVisibility::Visible ? 0 : visibility == SheetVisibility::Hidden ? 1 : 2;
}

}  // namespace

std::string writeXls(const Worksheet& worksheet) {
  WriteContext file{worksheet, LinkWriter(worksheet), StyleWriter(worksheet.formats()), {}};
  std::vector<std::string> sheets;
  for (int sheet = 1; sheet <= worksheet.NumSheets(); ++sheet) {
    sheets.push_back(sheetRecords(file, sheet));
  }

  RecordWriter out;
  writeBof(out, 0x0005);
  writeAccess(out);
  out.begin(idCodePage);
  out.u16(1200);
  out.begin(idDateMode);
  out.u16(worksheet.dates1904() ? 1 : 0);
  const int front = frontSheet(worksheet);
  writeWindow(out, front);
  file.styles.write(out);
  const std::vector<std::u16string> names = sheetNames(worksheet);
  std::vector<size_t> startsAt;
  for (int sheet = 1; sheet <= worksheet.NumSheets(); ++sheet) {
    const std::u16string& name = names[static_cast<size_t>(sheet) - 1];
    out.begin(idBoundSheet);
    startsAt.push_back(out.position());
    out.u32(0);
    out.u8(sheet == front ? 0 : visibilityNumber(worksheet.sheetVisibility(sheet)));
    out.u8(0);
    out.u8(static_cast<unsigned>(name.size()));
    writeUnicodeCharacters(out, name);
  }
  file.links.write(out);
  file.texts.write(out);
  out.begin(idEof);

  size_t start = out.position();
  for (size_t i = 0; i < sheets.size(); ++i) {
    out.patchU32(startsAt[i], static_cast<std::uint32_t>(start));
    start += sheets[i].size();
  }
  std::string stream = out.finish();
  stream.reserve(std::max(start, smallestStream));
  for (const std::string& sheet : sheets) stream += sheet;
  if (stream.size() < smallestStream) stream.resize(smallestStream, '\0');
  return ole::writeContainer("Workbook", stream);
}

}  // namespace lodex
