#include "worksheet/files/xlsx/XlsxReader.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Text.h"
#include "worksheet/Worksheet.h"
#include "worksheet/files/XmlReader.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/xlsx/XlsxParts.h"

namespace lodex {
namespace {

using Relations = std::map<std::string, XlsxRelation>;

std::string relationsPath(const std::string& part) {
  const std::string folder = folderOf(part);
  return (folder.empty() ? "" : folder + "/") + "_rels/" + fileNameOf(part) + ".rels";
}

Relations relationsOf(const ZipArchive& archive, const std::string& part) {
  const std::string path = relationsPath(part);
  if (!archive.has(path)) return {};
  return readXlsxRelations(archive.read(path), folderOf(part));
}

// The path of the first relation of a type; "" if there is none.
std::string targetOfType(const Relations& relations, std::string_view type) {
  for (const auto& [id, relation] : relations) {
    if (relation.type == type) return relation.target;
  }
  return {};
}

// The main part of the package, whatever it is a document of.
std::string mainPart(const ZipArchive& archive) {
  return targetOfType(relationsOf(archive, ""), "officeDocument");
}

struct SheetEntry {
  std::string name;
  std::string relation;
  SheetVisibility visibility = SheetVisibility::Visible;
};

struct NameEntry {
  std::string name;
  std::string formula;
  int sheet = -1;  // place among the sheets, from 0; -1 for the whole workbook
  bool hidden = false;
};

// What workbook.xml says.
class WorkbookHandler : public XmlHandler {
 public:
  std::vector<SheetEntry> sheets;
  std::vector<NameEntry> names;
  bool dates1904 = false;
  bool calculateOnLoad = false;
  int activeTab = 0;

  void start(std::string_view element, const XmlAttributes& attributes) override {
    if (element == "sheet") {
      SheetEntry sheet;
      sheet.name = attributes("name");
      for (std::string_view prefix : {"r", "rel", ""}) {
        if (sheet.relation.empty()) sheet.relation = attributes.prefixed(prefix, "id");
      }
      const std::string_view state = attributes("state");
      if (state == "hidden") sheet.visibility = SheetVisibility::Hidden;
      if (state == "veryHidden") sheet.visibility = SheetVisibility::VeryHidden;
      sheets.push_back(std::move(sheet));
    } else if (element == "definedName") {
      NameEntry name;
      name.name = attributes("name");
      name.sheet = attributes.number("localSheetId", -1);
      name.hidden = attributes.flag("hidden");
      names.push_back(std::move(name));
      inName_ = true;
    } else if (element == "workbookPr") {
      dates1904 = attributes.flag("date1904");
    } else if (element == "calcPr") {
      calculateOnLoad = attributes.flag("fullCalcOnLoad");
    } else if (element == "workbookView") {
      activeTab = attributes.number("activeTab", 0);
    }
  }

  void end(std::string_view element) override {
    if (element == "definedName") inName_ = false;
  }

  void text(std::string_view text) override {
    if (inName_) names.back().formula += text;
  }

 private:
  bool inName_ = false;
};

std::vector<DefinedName> definedNames(const std::vector<NameEntry>& entries,
                                      const std::vector<int>& numbers) {
  std::vector<DefinedName> names;
  for (const NameEntry& entry : entries) {
    DefinedName name;
    name.name = entry.name;
    name.formula = xlsxFormula(entry.formula);
    name.hidden = entry.hidden;
    if (entry.sheet >= 0 && entry.sheet < static_cast<int>(numbers.size())) {
      name.sheet = numbers[entry.sheet];
      if (name.sheet == 0) continue;  // a name of a chart sheet
    }
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

bool looksLikeXlsx(const ZipArchive& archive) {
  const std::string main = mainPart(archive);
  if (extensionOf(main) == "bin") {
    throw FileError("binary workbooks (.xlsb) cannot be read; save it as .xlsx first");
  }
  const bool named = fileNameOf(main) == "workbook.xml" && archive.has(main);
  return !main.empty() && (named || archive.hasFolder("xl"));
}

void readXlsx(const ZipArchive& archive, size_t fileBytes, Worksheet& into) {
  const std::string main = mainPart(archive);
  WorkbookHandler book;
  readXml(archive, main, book);
  const Relations relations = relationsOf(archive, main);
  XlsxBook parts{into, ReadBudget(fileBytes), {}, {}, book.calculateOnLoad};
  const std::string strings = targetOfType(relations, "sharedStrings");
  if (!strings.empty()) readXlsxStrings(archive, strings, parts);
  // Looks may be missing; the values are worth having without them.
  const auto partOfLooks = [&](std::string_view type) {
    const std::string path = targetOfType(relations, type);
    if (path.empty()) return std::string();
    if (archive.has(path)) return archive.read(path);
    into.findingsForReader().warn("the part " + path +
                                  " is missing: dates may show as numbers, and colours differ");
    return std::string();
  };
  const auto theme = readXlsxTheme(partOfLooks("theme"));
  parts.styles = readXlsxStyles(partOfLooks("styles"), theme, into);

  into.dates1904(book.dates1904);
  std::vector<int> numbers;  // sheet number by place in the workbook; 0 for one without cells
  int count = 0;
  for (const SheetEntry& entry : book.sheets) {
    const auto relation = relations.find(entry.relation);
    // A module of macros may stand among the sheets without a part of its own.
    if (relation == relations.end() && !entry.relation.empty()) {
      throw FileError("the sheet " + entry.name + " has no part");
    }
    const bool hasCells = relation != relations.end() && relation->second.type == "worksheet";
    numbers.push_back(hasCells ? ++count : 0);
    if (!hasCells) continue;
    if (count > 1) into.InsertSheets(count, 1);
    into.SheetName(count, entry.name);
    into.sheetVisibility(count, entry.visibility);
    readXml(archive, relation->second.target, *xlsxSheetHandler(parts, count));
  }
  into.setDefinedNames(definedNames(book.names, numbers));
  const bool known = book.activeTab >= 0 && book.activeTab < static_cast<int>(numbers.size());
  into.Sheet(known ? std::max(1, numbers[book.activeTab]) : 1);
}

}  // namespace lodex
