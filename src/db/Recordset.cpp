#include "db/Recordset.h"

#include <algorithm>

#include "basic/Error.h"
#include "basic/Text.h"
#include "db/Errors.h"

namespace lodex {

Recordset::Recordset(std::unique_ptr<RowSource> rows, CursorKind cursor)
    : cursor_(cursor), fields_(rows->fields()) {
  for (size_t i = 0; i < fields_.size(); ++i) {
    fieldPlaces_.emplace(toUpper(fields_[i].name), static_cast<int>(i));
  }
  if (cursor_ == CursorKind::ForwardOnly) {
    source_ = std::move(rows);
    atEnd_ = !source_->next(passing_);
    return;
  }
  Row row;
  while (rows->next(row)) rows_.push_back(row);
  arrange();
}

int Recordset::FieldIndex(std::string_view name) const {
  const auto place = fieldPlaces_.find(toUpper(name));
  return place == fieldPlaces_.end() ? -1 : place->second;
}

int Recordset::fieldOrThrow(std::string_view name) const {
  const int field = FieldIndex(name);
  if (field < 0) {
    throw Error("There is no field \"" + std::string(name) + "\"", dberror::NoSuchItem);
  }
  return field;
}

bool Recordset::Eof() const {
  if (cursor_ == CursorKind::ForwardOnly) return atEnd_;
  return position_ >= static_cast<int>(visible_.size());
}

bool Recordset::Bof() const {
  return cursor_ == CursorKind::Client && (visible_.empty() || position_ < 0);
}

void Recordset::MoveFirst() {
  requireClient("Moving to the first record");
  position_ = 0;
}

void Recordset::MoveLast() {
  requireClient("Moving to the last record");
  position_ = std::max(0, static_cast<int>(visible_.size()) - 1);
}

void Recordset::MoveNext() {
  if (Eof()) throw Error("There is no record after the last one", dberror::NoCurrentRecord);
  if (cursor_ == CursorKind::ForwardOnly) {
    atEnd_ = !source_->next(passing_);
  } else {
    ++position_;
  }
}

void Recordset::MovePrevious() {
  requireClient("Moving back");
  if (Bof()) throw Error("There is no record before the first one", dberror::NoCurrentRecord);
  --position_;
}

void Recordset::Move(int place) {
  requireClient("Moving to a place");
  if (place < 1 || place > RecordCount()) {
    throw Error("There is no record number " + std::to_string(place), dberror::NoCurrentRecord);
  }
  position_ = place - 1;
}

int Recordset::RecordCount() const {
  return cursor_ == CursorKind::Client ? static_cast<int>(visible_.size()) : -1;
}

int Recordset::AbsolutePosition() const {
  return cursor_ == CursorKind::Client && !Eof() && !Bof() ? position_ + 1 : 0;
}

const Row& Recordset::current() const {
  if (Eof() || Bof()) throw Error("There is no current record", dberror::NoCurrentRecord);
  return cursor_ == CursorKind::Client ? rows_[visible_[position_]] : passing_;
}

const FieldValue& Recordset::Value(int field) const {
  if (field < 0 || field >= static_cast<int>(fields_.size())) {
    throw Error("There is no field number " + std::to_string(field), dberror::NoSuchItem);
  }
  return current()[field];
}

const FieldValue& Recordset::Value(std::string_view field) const {
  return Value(fieldOrThrow(field));
}

std::string Recordset::Text(int field) const {
  const FieldValue& value = Value(field);
  if (fields_[field].type.code == FieldCode::Boolean && !isNull(value)) {
    return fieldNumber(value) != 0 ? "True" : "False";
  }
  return fieldText(value);
}

std::string Recordset::Text(std::string_view field) const {
  return Text(fieldOrThrow(field));
}

void Recordset::requireClient(std::string_view what) const {
  if (cursor_ == CursorKind::ForwardOnly) {
    throw Error(std::string(what) + " needs a recordset with a client cursor",
                dberror::NotSupported);
  }
}

void Recordset::Filter(std::string_view condition) {
  requireClient("A filter");
  filter_ = RowFilter(condition, fields_);
  filterText_ = condition;
  arrange();
}

void Recordset::Sort(std::string_view order) {
  requireClient("Sorting");
  order_ = parseOrder(order);
  sortText_ = order;
  arrange();
}

void Recordset::Find(std::string_view condition) {
  requireClient("Searching");
  const RowFilter wanted(condition, fields_);
  if (Bof() && !visible_.empty()) MoveFirst();
  while (!Eof() && !wanted.accepts(current())) ++position_;
}

std::vector<Recordset::SortField> Recordset::parseOrder(std::string_view order) const {
  std::vector<SortField> fields;
  size_t at = 0;
  while (at < order.size()) {
    // A comma inside brackets belongs to the name.
    const bool bracketed = trimWhite(order.substr(at)).starts_with('[');
    const size_t close = bracketed ? order.find(']', at) : at;
    size_t end = close == std::string_view::npos ? close : order.find(',', close);
    if (end == std::string_view::npos) end = order.size();
    std::string_view piece = trimWhite(order.substr(at, end - at));
    at = end + 1;
    if (piece.empty()) continue;

    SortField sort{0, false};
    const size_t blank = piece.find_last_of(" ]");
    if (blank != std::string_view::npos && piece[blank] == ' ') {
      const std::string_view last = piece.substr(blank + 1);
      if (equalsNoCase(last, "DESC") || equalsNoCase(last, "ASC")) {
        sort.descending = equalsNoCase(last, "DESC");
        piece = trimWhite(piece.substr(0, blank));
      }
    }
    if (piece.size() > 1 && piece.front() == '[' && piece.back() == ']') {
      piece = piece.substr(1, piece.size() - 2);
    }
    sort.field = fieldOrThrow(piece);
    fields.push_back(sort);
  }
  return fields;
}

void Recordset::arrange() {
  visible_.clear();
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (filter_.accepts(rows_[i])) visible_.push_back(static_cast<int>(i));
  }
  if (!order_.empty()) {
    std::stable_sort(visible_.begin(), visible_.end(), [this](int a, int b) {
      for (const SortField& sort : order_) {
        const int order = compareFields(rows_[a][sort.field], rows_[b][sort.field]);
        if (order != 0) return sort.descending ? order > 0 : order < 0;
      }
      return false;
    });
  }
  position_ = 0;
}

}  // namespace lodex
