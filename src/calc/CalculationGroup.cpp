#include "calc/CalculationGroup.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>

#include "basic/Error.h"
#include "basic/Files.h"
#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace fs = std::filesystem;
namespace {

constexpr int valueColumn = 3;
constexpr int prerequisiteColumn = 4;
constexpr int leastSheets = 5;

bool isMethodFile(const fs::directory_entry& entry) {
  std::error_code failed;
  if (entry.is_directory(failed)) return false;
  const std::string name = pathText(entry.path().filename());
  // Spreadsheet programs keep notes with these names beside an open workbook.
  if (name.starts_with("~$") || name.starts_with(".")) return false;
  const std::string ending = extensionOf(name);
  return ending == "xls" || ending == "xlsx";
}

std::vector<std::string> methodFiles(std::string_view folder) {
  std::vector<std::string> files;
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(nativePath(folder), failed)) {
    if (isMethodFile(entry)) files.push_back(pathText(entry.path()));
  }
  std::sort(files.begin(), files.end(), [](const std::string& a, const std::string& b) {
    const int order = compareNoCase(a, b);
    return order != 0 ? order < 0 : a < b;
  });
  return files;
}

std::string withoutBrackets(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') {
    name = name.substr(1, name.size() - 2);
  }
  return std::string(name);
}

void findSheets(MethodBook& method) {
  Worksheet& book = method.book;
  method.inputSheet = book.SheetNumber("Input");
  method.outputSheet = book.SheetNumber("Output");
  if (method.inputSheet == 0 || method.outputSheet == 0) {
    const int missing = leastSheets - book.NumSheets();
    if (missing > 0) book.InsertSheets(book.NumSheets() + 1, missing);
    if (method.inputSheet == 0) method.inputSheet = 3;
    if (method.outputSheet == 0) method.outputSheet = 5;
  }
  const auto inRole = [&](int sheet) {
    const bool free = sheet != method.inputSheet && sheet != method.outputSheet;
    return sheet <= book.NumSheets() && free ? sheet : 0;
  };
  method.listSheet = inRole(1);
  method.linkSheet = inRole(2);
  method.mapSheet = inRole(4);
}

// The place that the list sheet gives; 0 for none.
int listPlace(const MethodBook& method) {
  if (method.listSheet == 0) return 0;
  for (int row = 1; row <= method.book.LastRow(method.listSheet); ++row) {
    const std::string text = method.book.TextSRC(method.listSheet, row, 1);
    if (!isNumericText(text)) continue;
    return std::max(0, parseInteger(text).value_or(0));
  }
  return 0;
}

}  // namespace

std::string MethodBook::outputName(int row) const {
  const std::string name = book.TextSRC(outputSheet, row, 2);
  return name.empty() ? book.TextSRC(outputSheet, row, 1) : name;
}

int MethodBook::outputRow(std::string_view output) const {
  for (int row = 1; row <= book.LastRow(outputSheet); ++row) {
    if (outputName(row) == output) return row;
  }
  return 0;
}

std::string methodNameOf(std::string_view path) {
  const std::string file = fileNameOf(path);
  return file.substr(0, file.find('.'));
}

bool splitReference(std::string_view text, std::string& method, std::string& item) {
  size_t dot = std::string_view::npos;
  if (text.starts_with('[')) {
    const size_t bracket = text.find("].");
    if (bracket != std::string_view::npos) dot = bracket + 1;
  } else if (std::count(text.begin(), text.end(), '.') == 1) {
    dot = text.find('.');
  }
  if (dot == std::string_view::npos || dot == 0 || dot + 1 == text.size()) return false;
  method = withoutBrackets(text.substr(0, dot));
  item = withoutBrackets(text.substr(dot + 1));
  return true;
}

std::vector<std::string> groupNames(std::string_view folder) {
  std::vector<std::string> names;
  std::error_code failed;
  for (const auto& entry : fs::directory_iterator(nativePath(folder), failed)) {
    std::error_code unknown;
    if (entry.is_directory(unknown)) names.push_back(pathText(entry.path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

void CalculationGroup::clear() {
  methods_.clear();
  found_.clear();
  folder_.clear();
}

void CalculationGroup::load(std::string_view folder, UnreadableBook unreadable) {
  clear();
  folder_ = folder;
  for (const std::string& path : methodFiles(folder)) {
    try {
      readBook(path);
    } catch (const Error& error) {
      const bool stops = unreadable == UnreadableBook::Stop;
      found_.error(std::string(error.what()) +
                       (stops ? "; the workbooks after it in the folder are not loaded" : ""),
                   {.file = path});
      if (stops) break;
    }
  }
  resolveAllLinks();
}

void CalculationGroup::readBook(const std::string& path) {
  auto made = std::make_unique<MethodBook>();
  if (made->book.Read(path) == FileType::Text) throw FileError(path + " is not a workbook");
  // How its formulas were read does not matter: every run calculates them anew.
  const Findings& read = made->book.ReadFindings();
  if (read.hasErrors() || read.count(Severity::Warning) > 0) found_.append(read);
  made->path = path;
  made->book.Title(methodNameOf(path));
  findSheets(*made);
  if (const int other = MethodIndex(made->name())) {
    found_.warn("The workbook is not used: method " + made->name() + " is " + method(other).path,
                {.file = path});
  }
  methods_.push_back(std::move(made));
}

int CalculationGroup::MethodIndex(std::string_view name) const {
  for (int number = 1; number <= count(); ++number) {
    if (equalsNoCase(method(number).name(), name)) return number;
  }
  return 0;
}

int CalculationGroup::InputSheetOf(std::string_view name) const {
  const int number = MethodIndex(name);
  return number == 0 ? 0 : method(number).book.SheetNumber("INPUT");
}

int CalculationGroup::OutputSheetOf(std::string_view name) const {
  const int number = MethodIndex(name);
  return number == 0 ? 0 : method(number).book.SheetNumber("OUTPUT");
}

std::vector<std::string> CalculationGroup::MethodListOrder() const {
  std::map<int, std::vector<std::string>> places;
  int size = count();
  for (const auto& method : methods_) {
    int place = listPlace(*method);
    if (place == 0) place = size + 1;
    size = std::max(size, place);
    places[place].push_back(method->name());
  }
  std::vector<std::string> names;
  for (const auto& [place, listed] : places) {
    for (const std::string& name : listed) {
      if (!name.empty()) names.push_back(name);
    }
  }
  return names;
}

CalculationGroup::OutputCell CalculationGroup::FindOutputCell(std::string_view methodText,
                                                              std::string_view itemText) const {
  const std::string name = withoutBrackets(methodText);
  const std::string item = withoutBrackets(itemText);
  const int number = MethodIndex(name);
  if (number == 0 || method(number).mapSheet == 0) return {};
  const MethodBook& found = method(number);
  const std::array<std::string, 5> forms = {item + "." + name, name + "." + item,
                                            "[" + name + "].[" + item + "]", item,
                                            "[" + item + "]"};
  for (int row = 1; row <= found.book.LastRow(found.mapSheet); ++row) {
    const std::string first = found.book.TextSRC(found.mapSheet, row, 1);
    const std::string second = found.book.TextSRC(found.mapSheet, row, 2);
    for (const std::string& form : forms) {
      if (form != first && form != second) continue;
      const std::string sheet = replaceAll(found.book.SheetName(found.mapSheet), "'", "''");
      return {number, row, "'[" + found.name() + "]" + sheet + "'!$C$" + std::to_string(row)};
    }
  }
  return {};
}

std::vector<std::string> CalculationGroup::TeeLaskuJono(int number) const {
  std::vector<std::string> queue;
  const MethodBook& of = method(number);
  if (of.linkSheet == 0) return queue;
  for (int row = 1; row <= of.book.LastRow(of.linkSheet); ++row) {
    std::string name = of.book.TextSRC(of.linkSheet, row, prerequisiteColumn);
    if (!name.empty()) queue.push_back(std::move(name));
  }
  return queue;
}

double CalculationGroup::MethodPriority(int number, int listPosition) const {
  const MethodBook& of = method(number);
  const double priority = of.linkSheet == 0 ? 0 : of.book.NumberSRC(of.linkSheet, 1, 2);
  return priority != 0 ? priority : listPosition + 100.0;
}

void CalculationGroup::resolveAllLinks() {
  for (int number = 1; number <= count(); ++number) resolveLinks(number);
}

void CalculationGroup::resolveLinks(int number) {
  MethodBook& of = method(number);
  of.links.clear();
  if (of.linkSheet == 0) return;
  for (int row = 2; row <= of.book.LastRow(of.linkSheet); ++row) {
    const std::string value = of.book.TextSRC(of.linkSheet, row, valueColumn);
    if (of.book.HasFormula(of.linkSheet, row, valueColumn)) continue;
    if (value.starts_with("=")) continue;
    if (value.starts_with("'")) {
      of.book.FormulaSRC(of.linkSheet, row, valueColumn, value.substr(1));
      continue;
    }
    const std::string names[] = {of.book.TextSRC(of.linkSheet, row, 2),
                                 of.book.TextSRC(of.linkSheet, row, 1)};
    if (names[0].empty() && names[1].empty()) continue;
    OutputCell source;
    for (const std::string& name : names) {
      std::string other;
      std::string item;
      if (!source.found() && splitReference(name, other, item) && MethodIndex(other) != number) {
        source = FindOutputCell(other, item);
      }
    }
    Value taken;
    if (source.found()) {
      const MethodBook& from = method(source.method);
      taken = from.book.ValueSRC(from.mapSheet, source.row, valueColumn);
      of.links.push_back({row, source.method, source.row, source.reference});
    } else if (of.mapSheet > 0) {
      taken = of.book.ValueSRC(of.mapSheet, row, prerequisiteColumn);
    }
    of.book.ValueSRC(of.linkSheet, row, valueColumn, taken);
  }
}

void CalculationGroup::replaceBook(int number, const Worksheet& book) {
  MethodBook& target = method(number);
  const std::string name = target.name();
  target.book.CopyAll(book);
  target.book.Title(name);
  findSheets(target);
  resolveAllLinks();
}

}  // namespace lodex
