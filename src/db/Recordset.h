#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "db/Connection.h"
#include "db/Driver.h"
#include "db/RowFilter.h"

namespace lodex {

/// What is being done to the current record: nothing, its values are being changed, or it is new.
enum class EditMode { None, InProgress, Add };

/// The records that a query returned, with one of them current. Fields count from 0, as in stored
/// settings. A recordset with a client cursor holds its records itself; those of a forward-only one
/// pass by, and RecordCount is -1, Filter, Sort, Find and moving back throw Error.
///
/// Records of a client cursor can be written when they come one by one from a single table: set
/// values, then Update. Moving away from a changed record updates it too. After a refusal the
/// record stays as it is being edited, until it is mended or CancelUpdate gives it up.
class Recordset {
 public:
  /// Takes the records of `rows`; the first one is current.
  Recordset(std::unique_ptr<RowSource> rows, CursorKind cursor);

  const std::vector<Field>& Fields() const { return fields_; }
  /// The place of a field without regard to case; -1 if there is none.
  int FieldIndex(std::string_view name) const;

  bool Eof() const;
  bool Bof() const;
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  /// Makes the record at a place of AbsolutePosition current; throws Error beyond the last one.
  void Move(int place);
  /// Number of records under the filter.
  int RecordCount() const;
  /// The place of the current record under the filter and sorting, from 1; 0 for none.
  int AbsolutePosition() const;

  /// The current record's value. Throws Error for no current record or no such field.
  const FieldValue& Value(int field) const;
  const FieldValue& Value(std::string_view field) const;
  /// The same as text, "" for Null; Booleans read "True" and "False".
  std::string Text(int field) const;
  std::string Text(std::string_view field) const;

  /// Shows only the records that meet a condition (see RowFilter), all for "", and moves to the
  /// first of them. A condition that cannot be read throws Error and changes nothing.
  void Filter(std::string_view condition);
  const std::string& Filter() const { return filterText_; }

  /// Sorts by fields, such as "[Mineral], [Location] DESC", and moves to the first record; "" gives
  /// back the original order. Null comes first, numbers before texts, texts without case.
  void Sort(std::string_view order);
  const std::string& Sort() const { return sortText_; }

  /// Whether records can be written.
  bool Updatable() const { return writer_ != nullptr; }
  EditMode Editing() const { return editMode_; }
  /// Begins a new record, which becomes the current one. Its values are Null until they are set.
  void AddNew();
  /// Sets a value of the current record. Throws Error for a field that is an expression.
  void SetValue(int field, FieldValue value);
  void SetValue(std::string_view field, FieldValue value);
  /// Writes the new or changed record. Throws Error naming table and field for a value that does
  /// not fit, and for what the database refuses (a key that exists, a required field left empty).
  void Update();
  void CancelUpdate();
  /// Deletes the current record; it stays current, without values, until the next move.
  void Delete();

  /// Names the current record, through filters and sorting, as long as the recordset lives.
  int Bookmark() const;
  /// Makes a record current; throws Error if the filter hides it or it was deleted.
  void Bookmark(int bookmark);

  /// Moves from the current record on to the first that meets a condition; at the end if none.
  void Find(std::string_view condition);

 private:
  struct SortField {
    int field;
    bool descending;
  };

  void requireClient(std::string_view what) const;
  void requireWriter() const;
  void settle();
  void dropDeleted();
  std::vector<FieldChange> changes() const;
  const Row& current() const;
  int fieldOrThrow(std::string_view name) const;
  std::vector<SortField> parseOrder(std::string_view order) const;
  void arrange();

  CursorKind cursor_;
  std::vector<Field> fields_;
  std::unordered_map<std::string, int> fieldPlaces_;  // by the name in upper case
  std::vector<Row> rows_;                             // of a client cursor
  std::vector<FieldValue> records_;                   // their numbers in the database
  std::vector<bool> deleted_;
  std::vector<int> visible_;  // rows under filter and sorting
  int position_ = 0;          // index into visible_; its size at the end, -1 before the start
  std::unique_ptr<RowSource> source_;  // of a forward-only cursor
  std::unique_ptr<RecordWriter> writer_;
  EditMode editMode_ = EditMode::None;
  Row edited_;
  std::vector<bool> changed_;      // fields of edited_
  int returnTo_ = 0;               // position before AddNew
  bool currentIsDeleted_ = false;  // the record at position_ is to leave visible_
  Row passing_;
  bool atEnd_ = false;
  RowFilter filter_;
  std::string filterText_;
  std::vector<SortField> order_;
  std::string sortText_;
};

}  // namespace lodex
