#include "worksheet/files/xls/XlsReader.h"

#include <algorithm>
#include <optional>

#include "basic/Error.h"
#include "worksheet/files/xls/BiffDecryption.h"
#include "worksheet/files/xls/OleFile.h"
#include "worksheet/files/xls/SheetReader.h"
#include "worksheet/files/xls/XlsMark.h"

namespace lodex {
namespace {

using namespace biff;

const std::vector<std::string_view> workbookStreams{"Workbook", "Book"};

constexpr size_t maxSheets = 2000;

constexpr unsigned typeGlobals = 0x0005, typeWorkspace4 = 0x0100, typeSheet = 0x0010;

unsigned typeOf(const Record& bof) {
  ByteReader in(bof.data);
  in.skip(2);
  const unsigned type = in.u16();
  return in.ok() ? type : typeSheet;
}

// One tab of the workbook.
struct Tab {
  std::string name;
  size_t start = 0;  // position of its BOF record
  bool isSheet = true;
  SheetVisibility visibility = SheetVisibility::Visible;
  int sheet = 0;  // of the worksheet; 0 when the tab is left out
};

class WorkbookReader {
 public:
  WorkbookReader(std::string stream, bool inWorkbookStream, Worksheet& into)
      : stream_(std::move(stream)),
        inWorkbookStream_(inWorkbookStream),
        file_(into, stream_.size()) {}

  void read();

 private:
  void setVersion(int version);
  void readWithGlobals(RecordStream& records);
  void readWorkspace4(RecordStream& records);
  void readSingleSheet(RecordStream& records);
  bool globalRecord(const Record& record, Styles& styles);
  void addTab(const Record& record);
  bool isDialog(size_t start) const;
  void makeSheets();
  void nameSheet(int sheet, std::string& name);
  void checkTabs(size_t generalEnd);
  bool readTab(const Tab& tab);
  void takeNames();
  void report(Severity severity, std::string_view text, std::string_view sheet = {});

  std::string stream_;
  bool inWorkbookStream_;
  FileContext file_;
  std::vector<Tab> tabs_;
  int activeTab_ = 0;
};

void WorkbookReader::setVersion(int version) {
  file_.links.version = version;
  file_.styles.version(version);
}

void WorkbookReader::read() {
  RecordStream records(stream_);
  Record bof;
  if (!records.next(bof) || !isBof(bof.id)) {
    throw FileError("The file is damaged: it does not begin as a workbook");
  }
  setVersion(versionOf(bof, inWorkbookStream_));
  const unsigned type = typeOf(bof);
  if (file_.links.version >= 5 && type == typeGlobals) {
    readWithGlobals(records);
  } else if (type == typeWorkspace4) {
    readWorkspace4(records);
  } else {
    readSingleSheet(records);
  }
  if (!file_.hasResults) {
    for (const auto& place : file_.noValue) {
      file_.out.setCachedValue(place.sheet, place.row, place.column, Value());
    }
  }
  const int active = activeTab_ >= 0 && static_cast<size_t>(activeTab_) < tabs_.size()
                         ? tabs_[static_cast<size_t>(activeTab_)].sheet
                         : 0;
  file_.out.Sheet(std::max(active, 1));
}

void WorkbookReader::report(Severity severity, std::string_view text, std::string_view sheet) {
  file_.out.findingsForReader().add(severity, text, {.sheet = std::string(sheet)});
}

// --- The general part ---

// False for a record of another kind.
bool WorkbookReader::globalRecord(const Record& record, Styles& styles) {
  Links& links = file_.links;
  switch (record.id) {
    case idFilePass:
      decryptStream(stream_, record, links.version);
      break;
    case idCodePage:
      links.codePage.set(ByteReader(record.data).u16());
      break;
    case idDateMode:
      file_.out.dates1904(ByteReader(record.data).u16() == 1);
      break;
    case idFont:
    case idFont3:
      styles.addFont(record.data);
      break;
    case idFontColor2:
      styles.setFontColor(record.data);
      break;
    case idFormat2:
    case idFormat4:
      styles.addFormat(record.data);
      break;
    case idXf2:
    case idXf3:
    case idXf4:
    case idXf5:
      styles.addXf(record.data);
      break;
    case idPalette:
      styles.setPalette(record.data);
      break;
    case idName:
    case idName3:
      links.addName(record.data);
      break;
    default:
      return false;
  }
  return true;
}

void WorkbookReader::readWithGlobals(RecordStream& records) {
  Links& links = file_.links;
  bool complete = false;
  bool textsComplete = true;
  Record record;
  while (!complete && records.next(record)) {
    switch (record.id) {
      case idEof:
        complete = true;
        break;
      case idBoundSheet:
        addTab(record);
        break;
      case idSst:
        file_.texts = readSharedTexts(records.withContinuations(record), textsComplete);
        break;
      case idSupBook: {
        // Long lists of sheets run on in further records.
        std::string joined;
        for (std::string_view part : records.withContinuations(record)) joined += part;
        links.addSupBook(joined);
        break;
      }
      case idExternSheet: {
        std::string joined;
        for (std::string_view part : records.withContinuations(record)) joined += part;
        links.addExternSheet(joined);
        break;
      }
      case idExternName:
      case idExternName3:
        links.addExternName(record.data);
        break;
      case idWindow1: {
        ByteReader in(record.data);
        in.skip(10);
        activeTab_ = in.u16();
        break;
      }
      case idWriteAccess:
        file_.writtenHere = isWrittenHere(record.data);
        break;
      default:
        globalRecord(record, file_.styles);
        break;
    }
  }
  if (!complete) throw FileError("The file is damaged: it ends within its general part");
  if (!textsComplete) report(Severity::Error, "the list of texts is damaged; texts may be wrong");
  if (records.isDamaged()) {
    report(Severity::Error, "the general part has a damaged record; sheets may be missing");
  }
  if (tabs_.empty()) throw FileError("The file is damaged: it has no list of sheets");
  checkTabs(records.position());
  makeSheets();
  takeNames();
  bool any = false;
  for (const Tab& tab : tabs_) {
    if (tab.sheet == 0) continue;
    any = readTab(tab) || any;
  }
  const bool onlyLeftOut =
      std::none_of(tabs_.begin(), tabs_.end(), [](const Tab& tab) { return tab.sheet != 0; });
  if (!any && !onlyLeftOut) throw FileError("The file is damaged: none of its sheets can be read");
}

void WorkbookReader::addTab(const Record& record) {
  if (tabs_.size() >= maxSheets) throw FileError("The file is damaged: it has too many sheets");
  ByteReader in(record.data);
  Tab tab;
  tab.start = in.u32();
  const unsigned visibility = in.u8() & 3;
  const unsigned kind = in.u8();
  tab.name = file_.links.version >= 8 ? readUnicodeText(in, LengthBytes::One)
                                      : readByteText(in, LengthBytes::One, file_.links.codePage);
  tab.isSheet = kind == 0;
  if (!in.ok()) report(Severity::Error, "the list of sheets is damaged", tab.name);
  tab.visibility = visibility == 0   ? SheetVisibility::Visible
                   : visibility == 1 ? SheetVisibility::Hidden
                                     : SheetVisibility::VeryHidden;
  tabs_.push_back(std::move(tab));
}

// Dialogs count as sheets in the list of tabs; they have a flag and no cells.
bool WorkbookReader::isDialog(size_t start) const {
  RecordStream records(stream_, start);
  Record record;
  bool flagged = false;
  while (records.next(record) && record.id != idEof) {
    if (record.id == idSheetProperties) flagged = (ByteReader(record.data).u16() & 0x10) != 0;
    if (record.id == idRow3 || (record.id == idDimensions && !flagged)) return false;
  }
  return flagged;
}

// Compares the list of sheets with what comes after it: the sheets themselves say what they are,
// and none may be missing from the list.
void WorkbookReader::checkTabs(size_t generalEnd) {
  RecordStream records(stream_, generalEnd);
  Record record;
  int depth = 0;
  while (records.next(record) && !records.isDamaged()) {
    if (record.id == idEof) {
      if (depth > 0) --depth;
      continue;
    }
    if (!isBof(record.id) || depth++ > 0 || typeOf(record) != typeSheet) continue;
    const auto tab = std::find_if(tabs_.begin(), tabs_.end(),
                                  [&](const Tab& each) { return each.start == record.start; });
    if (tab == tabs_.end()) {
      report(Severity::Error, "a sheet is missing from the list of sheets and cannot be read");
    } else if (!tab->isSheet) {
      tab->isSheet = true;
      report(Severity::Warning, "the list of sheets calls it something else than a sheet",
             tab->name);
    }
  }
}

void WorkbookReader::makeSheets() {
  int count = 0;
  for (Tab& tab : tabs_) {
    if (tab.isSheet && !isDialog(tab.start)) tab.sheet = ++count;
  }
  Worksheet& out = file_.out;
  out.NumSheets(std::max(count, 1));
  // Out of the way of the names to come.
  for (int sheet = 1; sheet <= count; ++sheet) out.SheetName(sheet, "\1" + std::to_string(sheet));
  for (Tab& tab : tabs_) {
    if (tab.sheet != 0) {
      nameSheet(tab.sheet, tab.name);
      out.sheetVisibility(tab.sheet, tab.visibility);
    }
    file_.links.tabs.push_back(tab.name);
  }
}

// Gives a sheet its name, changed where it is empty or taken.
void WorkbookReader::nameSheet(int sheet, std::string& name) {
  Worksheet& out = file_.out;
  const std::string wanted = name.empty() ? "Sheet" + std::to_string(sheet) : name;
  name = wanted;
  for (int number = 2; out.SheetNumber(name) != 0; ++number) {
    name = wanted + " (" + std::to_string(number) + ")";
  }
  out.SheetName(sheet, name);
}

void WorkbookReader::takeNames() {
  std::vector<DefinedName> names;
  for (const Name& name : file_.links.names) {
    if (name.macro || name.code.empty() || name.name.empty()) continue;
    auto formula = decodeFormula(file_.links, name.code, name.extra);
    if (!formula) {
      report(Severity::Warning, "the defined name " + name.name + " cannot be read");
      continue;
    }
    DefinedName defined;
    defined.name = name.name;
    defined.formula = std::move(*formula);
    defined.hidden = name.hidden;
    if (name.sheet > 0 && static_cast<size_t>(name.sheet) <= tabs_.size()) {
      defined.sheet = tabs_[static_cast<size_t>(name.sheet) - 1].sheet;
      if (defined.sheet == 0) continue;  // of a chart
    }
    names.push_back(std::move(defined));
  }
  file_.out.setDefinedNames(std::move(names));
}

// --- Sheets ---

bool WorkbookReader::readTab(const Tab& tab) {
  RecordStream records(stream_, tab.start);
  Record bof;
  if (!records.next(bof) || !isBof(bof.id)) {
    report(Severity::Error, "the sheet cannot be found in the file; all of it is missing",
           file_.out.SheetName(tab.sheet));
    return false;
  }
  if (file_.links.version < 8) file_.links.books.clear();
  SheetReader(file_, file_.styles, tab.sheet).read(records);
  return true;
}

// Before version 5 a file is one sheet, with the general records among the others.
void WorkbookReader::readSingleSheet(RecordStream& records) {
  tabs_.push_back({"Sheet1", 0, true, SheetVisibility::Visible, 1});
  file_.links.tabs.push_back("Sheet1");
  SheetReader sheet(file_, file_.styles, 1);
  bool complete = false;
  Record record;
  while (!complete && records.next(record)) {
    if (record.id == idEof) {
      complete = true;
    } else if (globalRecord(record, file_.styles)) {
      sheet.watch(record);
    } else {
      sheet.record(record, records);
    }
  }
  if (complete && isBof(records.peek())) {
    report(Severity::Error, "further parts of the workbook are not read: its beginning is damaged");
  }
  if (!complete && !sheet.hasCells()) {
    throw FileError("The file is damaged: it ends before its first cell");
  }
  sheet.finish(records, complete);
  takeNames();
}

// Version 4 binds sheets of its own kind together: each has a header with its name, and its own
// fonts and styles.
void WorkbookReader::readWorkspace4(RecordStream& records) {
  std::vector<std::string> names;
  std::vector<size_t> starts;
  Record record;
  while (records.next(record)) {
    if (record.id == idSheetHeader4) {
      ByteReader in(record.data);
      const size_t size = in.u32();
      if (names.size() >= maxSheets) throw FileError("The file is damaged: it has too many sheets");
      Tab tab;
      tab.name = readByteText(in, LengthBytes::One, file_.links.codePage);
      tab.start = records.position();
      Record bof;
      RecordStream ahead(stream_, tab.start);
      tab.isSheet = ahead.next(bof) && isBof(bof.id) && typeOf(bof) == typeSheet;
      tabs_.push_back(std::move(tab));
      records.position(records.position() + size);
    } else {
      globalRecord(record, file_.styles);
    }
  }
  if (tabs_.empty()) throw FileError("The file is damaged: it holds no sheet");
  makeSheets();
  for (const Tab& tab : tabs_) {
    if (tab.sheet == 0) continue;
    Styles own(file_.out.formats(), file_.links.codePage);
    own.version(4);
    RecordStream inside(stream_, tab.start);
    Record bof;
    inside.next(bof);
    SheetReader sheet(file_, own, tab.sheet);
    bool complete = false;
    while (!complete && inside.next(record)) {
      if (record.id == idEof) {
        complete = true;
      } else if (!globalRecord(record, own)) {
        sheet.record(record, inside);
      }
    }
    sheet.finish(inside, complete);
  }
  takeNames();
}

// The bytes of the workbook's records; empty when there are none.
std::optional<std::string> bareRecords(std::string_view bytes) {
  RecordStream records(bytes);
  Record bof;
  if (!records.next(bof) || !isBof(bof.id) || bof.data.size() < 4 || bof.data.size() > 32)
    return {};
  // Any file might begin with these two bytes; the type of the content must be a known one, too.
  const unsigned type = typeOf(bof);
  const bool known = type == typeGlobals || type == typeSheet || type == 0x0020 || type == 0x0040 ||
                     type == typeWorkspace4;
  return known ? std::optional<std::string>(bytes) : std::nullopt;
}

}  // namespace

bool looksLikeXls(std::string_view bytes) {
  if (ole::isContainer(bytes)) return ole::hasStream(bytes, workbookStreams);
  return bareRecords(bytes.substr(0, 64)).has_value();
}

void readXls(std::string_view bytes, Worksheet& into) {
  if (ole::isContainer(bytes)) {
    auto stream = ole::readStream(bytes, workbookStreams);
    if (!stream) throw FileError("The file holds no workbook");
    if (!stream->complete) {
      into.findingsForReader().error("the file is cut short or damaged; its end is missing");
    }
    WorkbookReader(std::move(stream->bytes), stream->name == workbookStreams[0], into).read();
    return;
  }
  auto records = bareRecords(bytes);
  if (!records) throw FileError("The file is not an Excel workbook");
  WorkbookReader(std::move(*records), false, into).read();
}

}  // namespace lodex
