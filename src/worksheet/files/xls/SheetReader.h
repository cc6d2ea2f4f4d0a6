#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "worksheet/Worksheet.h"
#include "worksheet/files/ReadBudget.h"
#include "worksheet/files/xls/BiffLinks.h"
#include "worksheet/files/xls/BiffStyles.h"
#include "worksheet/files/xls/FormulaDecoder.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex::biff {

/// What the sheets of a file share.
struct FileContext {
  FileContext(Worksheet& worksheet, size_t fileBytes)
      : out(worksheet), styles(worksheet.formats(), links.codePage), budget(fileBytes) {}

  Worksheet& out;
  Links links;
  Styles styles;
  std::vector<SharedText> texts;  // the shared string table
  bool writtenHere = false;       // by writeXls, which marks what kind of text a cell holds
  ReadBudget budget;
  struct CellPlace {
    int sheet, row, column;  // from 1
  };
  bool hasResults = false;         // whether any formula has a value
  std::vector<CellPlace> noValue;  // formulas whose value is an empty text
};

/// Reads the records of one sheet into a sheet of the worksheet.
class SheetReader {
 public:
  /// `sheet` counts from 1. The styles may be the sheet's own.
  SheetReader(FileContext& file, Styles& styles, int sheet);

  /// Reads from after the sheet's BOF record to its EOF record. What is damaged or missing is
  /// reported to the findings of the worksheet.
  void read(RecordStream& records);

  /// One record that is neither BOF nor EOF; formulas take their further records from the stream.
  void record(const Record& record, RecordStream& records);

  /// Looks for damage: between the records of cells come no others. Part of `record`.
  void watch(const Record& record);

  /// Reports damage at the end of the sheet: `complete` is false when there was no EOF record.
  void finish(const RecordStream& records, bool complete);

  bool hasCells() const { return hasCells_; }

 private:
  struct Place {
    int row = 0, column = 0;  // from 0
    std::uint32_t format = 0;
    bool textMark = false;
  };
  struct SharedFormula {
    int row1 = 0, row2 = 0, column1 = 0, column2 = 0;
    std::string_view code, extra;
    bool isArray = false;
    std::string text;  // of an array formula
    std::shared_ptr<const ArrayBlock> block;
  };

  Place place(ByteReader& in);
  Place oldPlace(ByteReader& in);
  bool usable(const Place& at, const ByteReader& in);
  bool usableWhole(const Place& at, const ByteReader& in);
  void report(Severity severity, std::string_view text, const Place& at);
  void reportAfterLast(Severity severity, std::string_view text);
  bool looksLikeNextCell(const Record& record) const;
  void setNumber(const Place& at, double number);
  void setValue(const Place& at, const Value& value);
  void setText(const Place& at, SharedText text);
  void setBlank(const Place& at);

  void cellRecord(const Record& record, RecordStream& records);
  void mulRk(ByteReader in);
  void mulBlank(ByteReader in);
  void checkRunEnd(const Place& end, ByteReader in);
  void label(const Record& record, RecordStream& records);
  void formula(const Record& record, RecordStream& records);
  void boolErr(const Place& at, ByteReader in);
  void rowRecord(ByteReader in);
  void oldRowRecord(ByteReader in);
  void columnInfo(ByteReader in);
  void columnWidth(ByteReader in);
  void setColumns(int first, int last, double width, bool hidden);
  void window(const Record& record);
  void pane(ByteReader in);
  std::string stringRecord(const Record& record, RecordStream& records, bool& complete);
  void sharedFormula(const Record& record, FormulaBase entry);
  void setFormula(const Place& at, std::string_view code, std::string_view extra,
                  const Value& cached);
  bool setSharedFormula(const Place& at, FormulaBase entry, const Value& cached);
  void storeFormula(const Place& at, const std::string& text, const Value& cached,
                    std::shared_ptr<const ArrayBlock> block = nullptr);

  FileContext& file_;
  Styles& styles_;
  CellStore& cells_;
  int sheet_;
  int version_;
  unsigned ixfe_ = 0;
  bool frozen_ = false;
  bool hasCells_ = false;
  bool strangerInTable_ = false;  // a record that does not belong among the cells
  bool strangerIsCell_ = false;   // the first of those looks like a cell
  Place last_;                    // the cell read last
  std::vector<SharedFormula> shared_;
  std::map<std::pair<int, int>, size_t> sharedAt_;  // by the cell to which entry tokens point
};

/// A number stored in 30 bits.
double numberOfRk(std::uint32_t rk);

}  // namespace lodex::biff
