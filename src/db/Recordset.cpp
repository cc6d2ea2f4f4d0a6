#include "db/Recordset.h"

#include <algorithm>
#include <cmath>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"
#include "db/Errors.h"
#include "db/FieldValues.h"

namespace lodex {

namespace {}  // namespace

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
  while (rows->next(row)) {
    rows_.push_back(row);
    records_.push_back(rows->record());
  }
  deleted_.resize(rows_.size());
  writer_ = rows->writer();
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
  settle();
  position_ = 0;
}

void Recordset::MoveLast() {
  requireClient("Moving to the last record");
  settle();
  position_ = std::max(0, static_cast<int>(visible_.size()) - 1);
}

void Recordset::MoveNext() {
  if (currentIsDeleted_) return dropDeleted();
  settle();
  if (Eof()) throw Error("There is no record after the last one", dberror::NoCurrentRecord);
  if (cursor_ == CursorKind::ForwardOnly) {
    atEnd_ = !source_->next(passing_);
  } else {
    ++position_;
  }
}

void Recordset::MovePrevious() {
  requireClient("Moving back");
  settle();
  if (Bof()) throw Error("There is no record before the first one", dberror::NoCurrentRecord);
  --position_;
}

void Recordset::Move(int place) {
  requireClient("Moving to a place");
  settle();
  if (place < 1 || place > RecordCount()) {
    throw Error("There is no record number " + std::to_string(place), dberror::NoCurrentRecord);
  }
  position_ = place - 1;
}

int Recordset::RecordCount() const {
  if (cursor_ != CursorKind::Client) return -1;
  return static_cast<int>(visible_.size()) - (currentIsDeleted_ ? 1 : 0);
}

int Recordset::AbsolutePosition() const {
  return cursor_ == CursorKind::Client && !Eof() && !Bof() ? position_ + 1 : 0;
}

const Row& Recordset::current() const {
  if (editMode_ != EditMode::None) return edited_;
  if (Eof() || Bof()) throw Error("There is no current record", dberror::NoCurrentRecord);
  if (currentIsDeleted_) {
    throw Error("The current record has been deleted", dberror::NoCurrentRecord);
  }
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
  const auto* number = std::get_if<double>(&value);
  if (number && fields_[field].type.code == FieldCode::Single) {
    return numberText(enteredSingle(*number));
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
  RowFilter filter(condition, fields_);
  settle();
  filter_ = std::move(filter);
  filterText_ = condition;
  arrange();
}

void Recordset::Sort(std::string_view order) {
  requireClient("Sorting");
  std::vector<SortField> fields = parseOrder(order);
  settle();
  order_ = std::move(fields);
  sortText_ = order;
  arrange();
}

void Recordset::Find(std::string_view condition) {
  requireClient("Searching");
  const RowFilter wanted(condition, fields_);
  settle();
  if (Bof() && !visible_.empty()) MoveFirst();
  while (!Eof() && !wanted.accepts(current())) ++position_;
}

void Recordset::requireWriter() const {
  if (!writer_) throw Error("The records of this query cannot be written", dberror::NotSupported);
}

// Before any move: a changed record is written, a deleted one leaves.
void Recordset::settle() {
  if (editMode_ != EditMode::None) Update();
  if (currentIsDeleted_) dropDeleted();
}

// The record after the deleted one takes its place.
void Recordset::dropDeleted() {
  visible_.erase(visible_.begin() + position_);
  currentIsDeleted_ = false;
}

void Recordset::AddNew() {
  requireWriter();
  settle();
  returnTo_ = position_;
  editMode_ = EditMode::Add;
  edited_.assign(fields_.size(), FieldValue());
  changed_.assign(fields_.size(), false);
}

void Recordset::SetValue(int field, FieldValue value) {
  requireWriter();
  if (field < 0 || field >= static_cast<int>(fields_.size())) {
    throw Error("There is no field number " + std::to_string(field), dberror::NoSuchItem);
  }
  if (fields_[field].column.empty()) {
    throw Error("Field [" + fields_[field].name + "] is computed and cannot be written",
                dberror::NotSupported);
  }
  if (editMode_ == EditMode::None) {
    edited_ = current();
    changed_.assign(fields_.size(), false);
    editMode_ = EditMode::InProgress;
  }
  edited_[field] = std::move(value);
  changed_[field] = true;
}

void Recordset::SetValue(std::string_view field, FieldValue value) {
  SetValue(fieldOrThrow(field), std::move(value));
}

std::vector<FieldChange> Recordset::changes() const {
  std::vector<FieldChange> list;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (!changed_[i]) continue;
    list.push_back({fields_[i].column, valueForField(edited_[i], fields_[i], writer_->table())});
  }
  return list;
}

void Recordset::Update() {
  requireWriter();
  if (editMode_ == EditMode::None) return;
  const std::vector<FieldChange> list = changes();
  Row row = edited_;
  size_t next = 0;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (changed_[i]) row[i] = list[next++].value;
  }
  if (editMode_ == EditMode::Add) {
    records_.push_back(writer_->add(list, row));
    rows_.push_back(std::move(row));
    deleted_.push_back(false);
    visible_.push_back(static_cast<int>(rows_.size()) - 1);
    position_ = static_cast<int>(visible_.size()) - 1;
  } else {
    const int place = visible_[position_];
    if (!list.empty()) writer_->change(records_[place], rows_[place], list);
    rows_[place] = std::move(row);
  }
  editMode_ = EditMode::None;
}

void Recordset::CancelUpdate() {
  if (editMode_ == EditMode::Add) position_ = returnTo_;
  editMode_ = EditMode::None;
}

void Recordset::Delete() {
  requireWriter();
  if (editMode_ != EditMode::None) return CancelUpdate();
  current();
  const int place = visible_[position_];
  writer_->remove(records_[place], rows_[place]);
  deleted_[place] = true;
  currentIsDeleted_ = true;
}

int Recordset::Bookmark() const {
  requireClient("A bookmark");
  if (editMode_ == EditMode::Add) {
    throw Error("A new record has no bookmark before its update", dberror::NoCurrentRecord);
  }
  current();
  return visible_[position_];
}

void Recordset::Bookmark(int bookmark) {
  requireClient("A bookmark");
  settle();
  const auto place = std::find(visible_.begin(), visible_.end(), bookmark);
  if (place == visible_.end()) {
    throw Error("The record of this bookmark cannot be shown", dberror::NoCurrentRecord);
  }
  position_ = static_cast<int>(place - visible_.begin());
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
    if (!deleted_[i] && filter_.accepts(rows_[i])) visible_.push_back(static_cast<int>(i));
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
