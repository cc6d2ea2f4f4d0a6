#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace lodex {

/// What a cell or an intermediate result is. `NumericText` is text that was entered as text but is
/// a number ("00123", "12.0", "5E1"): it keeps its spelling and counts as its number in formulas
/// and in NumberRC.
enum class ValueKind : std::uint8_t { Empty, Number, Text, NumericText, Boolean, Error, Formula };

/// Error values of cells. They are values, not failures.
enum class ErrorCode : std::uint8_t {
  Null,
  DivisionByZero,
  Value,
  Ref,
  Name,
  Num,
  NotAvailable,
  Circular
};

/// "#DIV/0!" and the like. A circular reference shows "#CIRC!".
std::string_view errorText(ErrorCode code);

/// The code of an error text such as "#N/A" (any case); false if it is none.
bool errorFromText(std::string_view text, ErrorCode& code);

/// Immutable text with a reference count (one thread only). A copy costs no allocation.
class SharedText {
 public:
  SharedText() = default;
  explicit SharedText(std::string_view text);
  SharedText(const SharedText& other) : rep_(other.rep_) { retain(); }
  SharedText(SharedText&& other) noexcept : rep_(std::exchange(other.rep_, nullptr)) {}
  SharedText& operator=(SharedText other) noexcept {
    std::swap(rep_, other.rep_);
    return *this;
  }
  ~SharedText() { release(rep_); }

  /// Lives as long as any SharedText that shares it.
  std::string_view view() const;

  /// The raw counted block, for stores that keep it in a union. `adopt` takes over one count.
  struct Rep;
  Rep* detach() { return std::exchange(rep_, nullptr); }
  static SharedText adopt(Rep* rep);
  static SharedText share(Rep* rep);
  static std::string_view viewOf(const Rep* rep);
  static void release(Rep* rep);

 private:
  void retain();
  Rep* rep_ = nullptr;
};

/// A value without a formula: nothing, a number, text, a truth value or an error.
class Value {
 public:
  Value() = default;
  Value(double number) : kind_(ValueKind::Number), number_(number) {}
  static Value text(std::string_view text) { return Value(ValueKind::Text, SharedText(text)); }
  static Value text(SharedText text) { return Value(ValueKind::Text, std::move(text)); }
  static Value numericText(SharedText text) {
    return Value(ValueKind::NumericText, std::move(text));
  }
  /// Text as cells take it in: nothing for "", the number for a number in its usual spelling (as
  /// numberText writes it), NumericText for any other spelling of a number, else Text.
  static Value stored(std::string_view text);
  static Value boolean(bool truth);
  static Value error(ErrorCode code);

  /// Changes the number of a Number.
  void setNumber(double number) { number_ = number; }

  ValueKind kind() const { return kind_; }
  bool isEmpty() const { return kind_ == ValueKind::Empty; }
  bool isNumber() const { return kind_ == ValueKind::Number; }
  bool isText() const { return kind_ == ValueKind::Text || kind_ == ValueKind::NumericText; }
  bool isError() const { return kind_ == ValueKind::Error; }
  bool isBoolean() const { return kind_ == ValueKind::Boolean; }

  /// The number of a Number, 1 or 0 of a Boolean, the value of a text that is numeric, else 0.
  double asNumber() const;
  /// What is stored as the number of a Number, Boolean or Error; anything else has none.
  double storedNumber() const { return number_; }
  bool asBoolean() const { return number_ != 0; }
  ErrorCode asError() const { return static_cast<ErrorCode>(static_cast<int>(number_)); }
  std::string_view textView() const { return text_.view(); }
  const SharedText& sharedText() const { return text_; }

  /// The text under the General format: "" for Empty, numberText for numbers, "TRUE"/"FALSE",
  /// the error's text.
  std::string asText() const;

  friend bool operator==(const Value& a, const Value& b);

 private:
  Value(ValueKind kind, SharedText text) : kind_(kind), text_(std::move(text)) {}

  ValueKind kind_ = ValueKind::Empty;
  double number_ = 0;
  SharedText text_;
};

}  // namespace lodex
