#include "db/DatabaseMap.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "basic/Text.h"
#include "chem/Elements.h"
#include "db/Connection.h"
#include "db/Recordset.h"

namespace lodex {

namespace {

bool sameName(std::string_view a, std::string_view b) {
  return equalsNoCase(plainName(a), plainName(b));
}

void setLink(Worksheet& links, int row, const TableLink& link) {
  links.TextRC(row, 1, link.table1);
  links.TextRC(row, 2, link.table2);
  links.TextRC(row, 3, link.field1);
  links.TextRC(row, 4, link.field2);
}

TableLink linkAt(const Worksheet& links, int row) {
  return {links.TextRC(row, 1), links.TextRC(row, 2), links.TextRC(row, 3), links.TextRC(row, 4)};
}

// Where a field name occurs in the map.
struct FieldPlace {
  int row;
  int column;
  auto operator<=>(const FieldPlace&) const = default;
};

}  // namespace

std::string plainName(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') {
    name = name.substr(1, name.size() - 2);
  }
  return std::string(name);
}

void DatabaseMap::clear() {
  for (Worksheet* sheet : {&F1Key2, &F1Indx, &F1Avain, &F1Linkki}) *sheet = Worksheet();
  FilterList.clear();
}

int DatabaseMap::tableCount() const {
  int row = 0;
  while (row < F1Key2.LastRow() && !table(row + 1).empty()) ++row;
  return row;
}

std::vector<std::string> DatabaseMap::tables() const {
  std::vector<std::string> names;
  const int count = tableCount();
  for (int row = 1; row <= count; ++row) names.push_back(table(row));
  return names;
}

std::vector<std::string> DatabaseMap::fields(int row) const {
  std::vector<std::string> names;
  for (int column = 2; column <= F1Key2.LastCol(); ++column) {
    std::string name = F1Key2.TextRC(row, column);
    if (name.empty()) break;
    names.push_back(std::move(name));
  }
  return names;
}

int DatabaseMap::tableRow(std::string_view table) const {
  const std::string wanted = plainName(table);
  for (int row = 1; row <= F1Key2.LastRow(); ++row) {
    if (equalsNoCase(F1Key2.TextRC(row, 1), wanted)) return row;
  }
  return 0;
}

int DatabaseMap::fieldColumn(int row, std::string_view field) const {
  const std::string wanted = plainName(field);
  for (int column = 2; column <= F1Key2.LastCol(); ++column) {
    const std::string name = F1Key2.TextRC(row, column);
    if (name.empty()) return 0;
    if (equalsNoCase(name, wanted)) return column;
  }
  return 0;
}

std::string DatabaseMap::PrimaryKeyField(std::string_view table) const {
  for (int row = 1; row <= F1Indx.LastRow(); ++row) {
    if (sameName(F1Indx.TextRC(row, 1), table)) return F1Indx.TextRC(row, 2);
  }
  return {};
}

bool DatabaseMap::isKeyField(std::string_view table, std::string_view field) const {
  for (int row = 1; row <= F1Indx.LastRow(); ++row) {
    if (sameName(F1Indx.TextRC(row, 1), table) && sameName(F1Indx.TextRC(row, 2), field)) {
      return true;
    }
  }
  return false;
}

void DatabaseMap::MakeLinks() {
  F1Linkki = Worksheet();
  int last = 0;
  for (int row = 1; row <= F1Avain.LastRow() && last < maxLinks; ++row) {
    const std::string table = F1Avain.TextRC(row, 1);
    const std::string field = F1Avain.TextRC(row, 2);
    if (!field.empty()) setLink(F1Linkki, ++last, {table, table, field, field});
  }
  // A name's places come in rising order, so that the places after one are those of later tables.
  const int count = tableCount();
  std::unordered_map<std::string, std::vector<FieldPlace>> places;
  for (int row = 1; row <= count; ++row) {
    int column = 2;
    for (const std::string& field : fields(row)) {
      places[toUpper(field)].push_back({row, column++});
    }
  }
  for (int row = 1; row <= count && last < maxLinks; ++row) {
    std::vector<std::pair<FieldPlace, std::string>> partners;
    for (const std::string& field : fields(row)) {
      const std::vector<FieldPlace>& all = places[toUpper(field)];
      auto later = std::upper_bound(all.begin(), all.end(), FieldPlace{row, maxColumns});
      const auto room = static_cast<std::ptrdiff_t>(maxLinks - last);
      const auto end = later + std::min(room, all.end() - later);
      for (; later != end; ++later) partners.emplace_back(*later, field);
    }
    std::sort(partners.begin(), partners.end());
    for (const auto& [place, field] : partners) {
      if (last == maxLinks) break;
      setLink(F1Linkki, ++last,
              {table(row), table(place.row), field, F1Key2.TextRC(place.row, place.column)});
    }
  }
}

bool DatabaseMap::directLink(std::string_view first, std::string_view second,
                             TableLink& link) const {
  for (int row = 1; row <= F1Linkki.LastRow(); ++row) {
    const std::string table1 = F1Linkki.TextRC(row, 1);
    const bool forward = equalsNoCase(table1, first);
    if (!forward && !equalsNoCase(table1, second)) continue;
    if (!equalsNoCase(F1Linkki.TextRC(row, 2), forward ? second : first)) continue;
    link = linkAt(F1Linkki, row);
    if (!forward) {
      std::swap(link.table1, link.table2);
      std::swap(link.field1, link.field2);
    }
    return true;
  }
  if (F1Linkki.LastRow() < maxLinks) return false;
  const int row1 = tableRow(first);
  const int row2 = tableRow(second);
  if (row1 == 0 || row2 == 0 || row1 == row2) return false;
  for (const std::string& field : fields(row1)) {
    const int column = fieldColumn(row2, field);
    if (column == 0) continue;
    link = {table(row1), table(row2), field, F1Key2.TextRC(row2, column)};
    return true;
  }
  return false;
}

std::vector<TableLink> DatabaseMap::JoinPath(std::string_view first, std::string_view second,
                                             bool overThird) const {
  const std::string from = plainName(first);
  const std::string to = plainName(second);
  TableLink link;
  if (directLink(from, to, link)) return {link};
  if (!overThird) return {};
  for (int row = 1; row <= F1Linkki.LastRow(); ++row) {
    if (!equalsNoCase(F1Linkki.TextRC(row, 1), from)) continue;
    const TableLink start = linkAt(F1Linkki, row);
    if (equalsNoCase(start.table2, from)) continue;
    if (directLink(start.table2, to, link)) return {start, link};
  }
  return {};
}

std::string DatabaseMap::reference(int row, int column) const {
  return "[" + table(row) + "].[" + F1Key2.TextRC(row, column) + "]";
}

bool DatabaseMap::FindElementFields(int element, std::vector<ElementField>& found) const {
  found.clear();
  const int count = tableCount();
  for (int row = 1; row <= count; ++row) {
    int column = 2;
    for (std::string& name : fields(row)) {
      if (ElementNumber(name) == element) found.push_back({row, column, reference(row, column)});
      ++column;
    }
  }
  return !found.empty();
}

bool DatabaseMap::FindElementFieldsSelected(int element, const Worksheet& F1Ref,
                                            std::vector<ElementField>& found) const {
  found.clear();
  for (int column = 1; column < F1Ref.LastCol(); column += 2) {
    const int row = static_cast<int>(F1Ref.NumberRC(element, column));
    const int place = static_cast<int>(F1Ref.NumberRC(element, column + 1));
    if (row < 1 || place < 1) break;
    if (row > F1Key2.LastRow() || place > F1Key2.LastCol()) continue;
    found.push_back({row, place, reference(row, place)});
  }
  return !found.empty();
}

int DatabaseMap::addTable(std::string_view table) {
  const int row = tableCount() + 1;
  F1Key2.TextRC(row, 1, table);
  return row;
}

int DatabaseMap::addField(int row, std::string_view field) {
  const int column = static_cast<int>(fields(row).size()) + 2;
  F1Key2.TextRC(row, column, field);
  return column;
}

void DatabaseMap::addKey(std::string_view table, std::string_view field) {
  for (Worksheet* keys : {&F1Avain, &F1Indx}) {
    const int row = keys->LastRow() + 1;
    keys->TextRC(row, 1, table);
    keys->TextRC(row, 2, field);
  }
}

void CollectFilters(Connection& connection, DatabaseMap& map) {
  map.FilterList.clear();
  const auto tables = connection.OpenSchema(SchemaKind::Tables);
  for (; !tables->Eof(); tables->MoveNext()) {
    const std::string name = tables->Text("TABLE_NAME");
    if (tables->Text("TABLE_TYPE") != "VIEW" || !name.starts_with("f_")) continue;
    map.FilterList.push_back(name.substr(2));
  }
}

}  // namespace lodex
