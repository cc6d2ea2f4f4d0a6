#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

/// The record stream inside an .xls file. Record numbers and layouts follow the published
/// descriptions of the format: Microsoft's [MS-XLS] and, for the older versions, "The Microsoft
/// Excel File Format" by Daniel Rentz.
namespace lodex::biff {

/// Record numbers that reader and writer share. Names end in the version that introduced a number
/// where several exist.
enum RecordId : std::uint16_t {
  idBlank2 = 0x0001,
  idInteger2 = 0x0002,
  idNumber2 = 0x0003,
  idLabel2 = 0x0004,
  idBoolErr2 = 0x0005,
  idFormula = 0x0006,
  idString2 = 0x0007,
  idRow2 = 0x0008,
  idBof2 = 0x0009,
  idEof = 0x000A,
  idExternCount = 0x0016,
  idExternSheet = 0x0017,
  idName = 0x0018,
  idFormat2 = 0x001E,
  idArray2 = 0x0021,
  idDateMode = 0x0022,
  idExternName = 0x0023,
  idColWidth2 = 0x0024,
  idFilePass = 0x002F,
  idFont = 0x0031,
  idContinue = 0x003C,
  idWindow1 = 0x003D,
  idWindow22 = 0x003E,
  idPane = 0x0041,
  idCodePage = 0x0042,
  idXf2 = 0x0043,
  idIxfe2 = 0x0044,
  idFontColor2 = 0x0045,
  idWriteAccess = 0x005C,
  idColInfo = 0x007D,
  idSheetProperties = 0x0081,
  idBoundSheet = 0x0085,
  idSheetHeader4 = 0x008F,
  idPalette = 0x0092,
  idMulRk = 0x00BD,
  idMulBlank = 0x00BE,
  idRString = 0x00D6,
  idXf5 = 0x00E0,
  idInterfaceHeader = 0x00E1,
  idSst = 0x00FC,
  idLabelSst = 0x00FD,
  idUserExclusive = 0x0194,
  idFileLock = 0x0195,
  idSupBook = 0x01AE,
  idDimensions = 0x0200,
  idBlank3 = 0x0201,
  idNumber3 = 0x0203,
  idLabel3 = 0x0204,
  idBoolErr3 = 0x0205,
  idFormula3 = 0x0206,
  idString3 = 0x0207,
  idRow3 = 0x0208,
  idBof3 = 0x0209,
  idName3 = 0x0218,
  idArray3 = 0x0221,
  idExternName3 = 0x0223,
  idFont3 = 0x0231,
  idWindow23 = 0x023E,
  idXf3 = 0x0243,
  idRk = 0x027E,
  idStyle = 0x0293,
  idFormula4 = 0x0406,
  idBof4 = 0x0409,
  idFormat4 = 0x041E,
  idXf4 = 0x0443,
  idSharedFormula = 0x04BC,
  idBof5 = 0x0809
};

/// Little-endian values from a run of bytes, front to back. Reading past the end gives zeros and
/// makes `ok` false for good, so that a short record needs one check.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

  std::uint8_t u8() { return number<std::uint8_t>(); }
  std::uint16_t u16() { return number<std::uint16_t>(); }
  std::int16_t i16() { return static_cast<std::int16_t>(u16()); }
  std::uint32_t u32() { return number<std::uint32_t>(); }
  double f64() { return std::bit_cast<double>(number<std::uint64_t>()); }

  /// The next `count` bytes, or all that are left.
  std::string_view bytes(size_t count) {
    if (count > bytes_.size()) ok_ = false;
    const std::string_view part = bytes_.substr(0, count);
    bytes_.remove_prefix(part.size());
    return part;
  }
  void skip(size_t count) { bytes(count); }
  std::string_view rest() const { return bytes_; }
  size_t left() const { return bytes_.size(); }
  bool ok() const { return ok_; }

 private:
  template <typename T>
  T number() {
    static_assert(std::endian::native == std::endian::little);
    T value = 0;
    if (bytes_.size() < sizeof value) {
      ok_ = false;
      bytes_ = {};
      return value;
    }
    std::memcpy(&value, bytes_.data(), sizeof value);
    bytes_.remove_prefix(sizeof value);
    return value;
  }

  std::string_view bytes_;
  bool ok_ = true;
};

/// The largest data part of a record in version 8.
inline constexpr size_t maxRecordSize = 8224;

/// One record; `data` borrows from the stream's bytes.
struct Record {
  std::uint16_t id = 0;
  std::string_view data;
  size_t start = 0;  // position of the record's header
};

/// Walks through the records from a position on.
class RecordStream {
 public:
  explicit RecordStream(std::string_view bytes, size_t start = 0) : bytes_(bytes), next_(start) {}

  /// False at the end of the stream. A record that is cut by the end gives what is there of it, and
  /// counts as damage.
  bool next(Record& record) {
    if (next_ > bytes_.size() || bytes_.size() - next_ < 4) return false;
    ByteReader header(bytes_.substr(next_, 4));
    record.start = next_;
    record.id = header.u16();
    const size_t size = header.u16();
    record.data = bytes_.substr(next_ + 4, size);
    if (record.data.size() < size || size > maxRecordSize) isDamaged_ = true;
    next_ += 4 + size;
    return true;
  }

  /// The next record's number, 0xFFFF at the end.
  std::uint16_t peek() const {
    if (next_ > bytes_.size() || bytes_.size() - next_ < 4) return 0xFFFF;
    return ByteReader(bytes_.substr(next_, 2)).u16();
  }

  /// The parts of a record that CONTINUE records extend; moves past them.
  std::vector<std::string_view> withContinuations(const Record& record) {
    std::vector<std::string_view> parts{record.data};
    Record more;
    while (peek() == idContinue && next(more)) parts.push_back(more.data);
    return parts;
  }

  /// True when a record was cut by the end of the stream or longer than any can be.
  bool isDamaged() const { return isDamaged_; }

  size_t position() const { return next_; }
  void position(size_t start) { next_ = start; }

 private:
  std::string_view bytes_;
  size_t next_;
  bool isDamaged_ = false;
};

/// True for the BOF records of any version.
bool isBof(std::uint16_t id);

/// The version (2, 3, 4, 5 or 8; 7 counts as 5) that a BOF record announces. Some programs write
/// odd version words, for which the record's number and `inWorkbookStream` decide.
int versionOf(const Record& bof, bool inWorkbookStream);

/// Builds the record stream of a file to be written.
class RecordWriter {
 public:
  /// Begins a record; what follows goes into it until the next begin.
  void begin(std::uint16_t id);
  void u8(unsigned value) { bytes_.push_back(static_cast<char>(value)); }
  void u16(unsigned value) { number(static_cast<std::uint16_t>(value)); }
  void u32(std::uint32_t value) { number(value); }
  void f64(double value) { number(std::bit_cast<std::uint64_t>(value)); }
  void raw(std::string_view bytes) { bytes_ += bytes; }
  /// Bytes of the current record so far.
  size_t recordSize() const { return bytes_.size() - start_ - 4; }
  size_t position() const { return bytes_.size(); }
  /// Overwrites four bytes written before.
  void patchU32(size_t position, std::uint32_t value);
  /// Ends the last record and gives all bytes.
  std::string finish();

 private:
  template <typename T>
  void number(T value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes_.append(raw, sizeof value);
  }
  void closeRecord();

  std::string bytes_;
  size_t start_ = 0;
  bool open_ = false;
};

}  // namespace lodex::biff
