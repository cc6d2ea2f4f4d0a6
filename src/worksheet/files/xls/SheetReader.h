#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "worksheet/Worksheet.h"
#include "worksheet/files/xls/BiffLinks.h"
#include "worksheet/files/xls/BiffStyles.h"
#include "worksheet/files/xls/FormulaDecoder.h"
#include "worksheet/formula/FormulaCell.h"

namespace lodex::biff {

/// What the sheets of a file share.
struct FileContext {
  FileContext(Worksheet& worksheet) : out(worksheet), styles(worksheet.formats(), links.codePage) {}

  Worksheet& out;
  Links links;
  Styles styles;
  std::vector<SharedText> texts;  // the shared string table
  bool writtenHere = false;       // by writeXls, which marks what kind of text a cell holds
  bool hasFormulas = false;
  bool hasResults = false;     // whether any formula has a value
  size_t formulaBytes = 0;     // of formula text so far
  size_t maxFormulaBytes = 0;  // more is no honest file of this size
  size_t cellBytes = 0;        // of memory that cells take, about
  size_t maxCellBytes = 0;
};

/// Reads the records of one sheet into a sheet of the worksheet.
class SheetReader {
 public:
  /// `sheet` counts from 1. The styles may be the sheet's own.
  SheetReader(FileContext& file, Styles& styles, int sheet);

  /// Reads from behind the sheet's BOF record to its EOF record. False when the stream ends before.
  bool read(RecordStream& records);

  /// One record that is no BOF or EOF; formulas take their further records from the stream.
  void record(const Record& record, RecordStream& records);

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
  void countMemory(const Place& at);
  void setNumber(const Place& at, double number);
  void setValue(const Place& at, const Value& value);
  void setText(const Place& at, SharedText text);
  void setBlank(const Place& at);

  void cellRecord(const Record& record, RecordStream& records);
  void mulRk(ByteReader in);
  void mulBlank(ByteReader in);
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
  std::string stringRecord(const Record& record, RecordStream& records);
  void sharedFormula(const Record& record, FormulaBase entry);
  void setFormula(const Place& at, std::string_view code, std::string_view extra,
                  const Value& cached);
  bool setSharedFormula(const Place& at, FormulaBase entry, const Value& cached);
  void store(const Place& at, const std::string& text, const Value& cached,
             std::shared_ptr<const ArrayBlock> block = nullptr);

  FileContext& file_;
  Styles& styles_;
  CellStore& cells_;
  int sheet_;
  int version_;
  unsigned ixfe_ = 0;
  bool frozen_ = false;
  bool hasCells_ = false;
  std::vector<bool> touched_;  // blocks of rows that hold a cell, column by column
  std::vector<SharedFormula> shared_;
  std::map<std::pair<int, int>, size_t> sharedAt_;  // by the cell to which entry tokens point
};

/// A number stored in 30 bits.
double numberOfRk(std::uint32_t rk);

}  // namespace lodex::biff
