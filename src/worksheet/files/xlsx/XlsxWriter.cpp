#include "worksheet/files/xlsx/XlsxWriter.h"

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/xlsx/XlsxParts.h"
#include "worksheet/files/xlsx/XlsxWriterParts.h"

namespace lodex {
namespace {

constexpr std::string_view header =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
const std::string package = "http://schemas.openxmlformats.org/package/2006/";
const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
const std::string contentType = "application/vnd.openxmlformats-officedocument.spreadsheetml.";

std::string sheetPath(int sheet) {
  return "worksheets/sheet" + std::to_string(sheet) + ".xml";
}

void checkSheetName(const std::string& name) {
  const bool fits = toUtf16(name).size() <= 31 &&
                    name.find_first_of("[]:*?/\\") == std::string::npos && name.front() != '\'' &&
                    name.back() != '\'';
  if (!fits) throw FileError("The sheet name " + name + " cannot stand in an .xlsx file");
}

bool hidden(const Worksheet& book, int sheet) {
  return book.sheetVisibility(sheet) != SheetVisibility::Visible;
}

// The sheet in front when the file opens: the current one, or the first that can be seen.
int frontSheet(const Worksheet& book) {
  if (!hidden(book, book.Sheet())) return book.Sheet();
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) {
    if (!hidden(book, sheet)) return sheet;
  }
  return 1;
}

std::string sheetElement(const Worksheet& book, int sheet, int front) {
  const std::string number = std::to_string(sheet);
  std::string out = "<sheet name=\"" + xmlEscaped(book.SheetName(sheet)) + "\" sheetId=\"" +
                    number + "\" r:id=\"rId" + number + "\"";
  if (hidden(book, sheet) && sheet != front) {
    const bool very = book.sheetVisibility(sheet) == SheetVisibility::VeryHidden;
    out += std::string(" state=\"") + (very ? "veryHidden" : "hidden") + "\"";
  }
  return out + "/>";
}

std::string nameElement(const Worksheet& book, const DefinedName& name) {
  std::string out = "<definedName name=\"" + xmlEscaped(name.name) + "\"";
  if (name.sheet > 0 && name.sheet <= book.NumSheets()) {
    out += " localSheetId=\"" + std::to_string(name.sheet - 1) + "\"";
  }
  if (name.hidden) out += " hidden=\"1\"";
  return out + ">" + xmlEscaped(xlsxFileFormula(name.formula)) + "</definedName>";
}

std::string workbookDocument(const Worksheet& book, int front) {
  std::string out =
      "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
      "xmlns:r=\"" +
      office + "\">";
  if (book.dates1904()) out += "<workbookPr date1904=\"1\"/>";
  out += "<bookViews><workbookView activeTab=\"" + std::to_string(front - 1) + "\"/></bookViews>";
  out += "<sheets>";
  for (int sheet = 1; sheet <= book.NumSheets(); ++sheet) out += sheetElement(book, sheet, front);
  out += "</sheets>";
  if (!book.definedNames().empty()) {
    out += "<definedNames>";
    for (const DefinedName& name : book.definedNames()) out += nameElement(book, name);
    out += "</definedNames>";
  }
  return out + "</workbook>";
}

std::string relation(const std::string& id, const std::string& type, const std::string& target) {
  return "<Relationship Id=\"" + id + "\" Type=\"" + office + "/" + type + "\" Target=\"" + target +
         "\"/>";
}

std::string relations(const std::string& list) {
  return "<Relationships xmlns=\"" + package + "relationships\">" + list + "</Relationships>";
}

std::string workbookRelations(int sheets) {
  std::string list;
  for (int sheet = 1; sheet <= sheets; ++sheet) {
    list += relation("rId" + std::to_string(sheet), "worksheet", sheetPath(sheet));
  }
  list += relation("rId" + std::to_string(sheets + 1), "styles", "styles.xml");
  list += relation("rId" + std::to_string(sheets + 2), "sharedStrings", "sharedStrings.xml");
  return relations(list);
}

std::string contentTypes(int sheets) {
  const auto part = [](const std::string& path, const std::string& kind) {
    return "<Override PartName=\"/xl/" + path + "\" ContentType=\"" + contentType + kind +
           "+xml\"/>";
  };
  std::string out = "<Types xmlns=\"" + package +
                    "content-types\"><Default Extension=\"rels\" "
                    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>" +
                    part("workbook.xml", "sheet.main") + part("styles.xml", "styles") +
                    part("sharedStrings.xml", "sharedStrings");
  for (int sheet = 1; sheet <= sheets; ++sheet) out += part(sheetPath(sheet), "worksheet");
  return out + "</Types>";
}

}  // namespace

size_t XlsxTextTable::idOf(std::string_view text) {
  const auto [place, isNew] = ids_.try_emplace(std::string(text), texts_.size());
  if (isNew) texts_.push_back(&place->first);
  return place->second;
}

std::string XlsxTextTable::document() const {
  std::string out = "<sst xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
  for (const std::string* text : texts_) {
    out += "<si><t xml:space=\"preserve\">" + xmlEscaped(*text) + "</t></si>";
  }
  return out + "</sst>";
}

std::string writeXlsx(const Worksheet& book) {
  const int sheets = book.NumSheets();
  const int front = frontSheet(book);
  XlsxTextTable texts;
  XlsxStyleTable styles(book.formats());
  ZipWriter zip;
  const auto add = [&](const std::string& path, const std::string& document) {
    zip.add(path, std::string(header) + document);
  };
  add("[Content_Types].xml", contentTypes(sheets));
  add("_rels/.rels", relations(relation("rId1", "officeDocument", "xl/workbook.xml")));
  add("xl/workbook.xml", workbookDocument(book, front));
  add("xl/_rels/workbook.xml.rels", workbookRelations(sheets));
  for (int sheet = 1; sheet <= sheets; ++sheet) {
    checkSheetName(book.SheetName(sheet));
    add("xl/" + sheetPath(sheet), xlsxSheetDocument(book, sheet, sheet == front, texts, styles));
  }
  add("xl/styles.xml", styles.document());
  add("xl/sharedStrings.xml", texts.document());
  return zip.finish();
}

}  // namespace lodex
