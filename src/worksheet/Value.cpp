#include "worksheet/Value.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr std::array<std::string_view, 8> errorTexts{"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                     "#NAME?", "#NUM!",   "#N/A",    "#CIRC!"};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The value of a plain decimal spelled exactly as numberText would: no superfluous zeros, at most
// 15 digits. Files hold millions of these, and with so few digits one division rounds correctly.
std::optional<double> plainNumber(std::string_view text) {
  constexpr std::array<double, 16> powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const bool negative = text.front() == '-';
  if (negative) text.remove_prefix(1);
  if (text.empty() || text.size() > 16 || !isDigit(text.front())) return std::nullopt;
  std::int64_t digits = 0;
  size_t pos = 0;
  for (; pos < text.size() && isDigit(text[pos]); ++pos) digits = digits * 10 + (text[pos] - '0');
  if (text.front() == '0' && pos > 1) return std::nullopt;
  size_t decimals = 0;
  if (pos < text.size()) {
    if (text[pos] != '.' || !isDigit(text.back()) || text.back() == '0') return std::nullopt;
    const size_t point = pos;
    for (++pos; pos < text.size() && isDigit(text[pos]); ++pos) {
      digits = digits * 10 + (text[pos] - '0');
    }
    decimals = pos - point - 1;
    const bool nearExponent = text.substr(0, 6) == "0.0000";
    if (pos < text.size() || nearExponent) return std::nullopt;
  } else if (text.size() > 15 || (negative && digits == 0)) {
    return std::nullopt;
  }
  const double value = static_cast<double>(digits) / powers[decimals];
  return negative ? -value : value;
}

}  // namespace

struct SharedText::Rep {
  std::uint32_t count;
  std::uint32_t size;
  char* bytes() { return reinterpret_cast<char*>(this + 1); }
  const char* bytes() const { return reinterpret_cast<const char*>(this + 1); }
};

SharedText::SharedText(std::string_view text) {
  if (text.empty()) return;
  if (text.size() > UINT32_MAX) throw Error("A text is too long for a cell");
  void* memory = std::malloc(sizeof(Rep) + text.size());
  if (memory == nullptr) throw std::bad_alloc();
  rep_ = new (memory) Rep{1, static_cast<std::uint32_t>(text.size())};
  std::memcpy(rep_->bytes(), text.data(), text.size());
}

std::string_view SharedText::view() const {
  return viewOf(rep_);
}

std::string_view SharedText::viewOf(const Rep* rep) {
  return rep == nullptr ? std::string_view() : std::string_view(rep->bytes(), rep->size);
}

SharedText SharedText::adopt(Rep* rep) {
  SharedText text;
  text.rep_ = rep;
  return text;
}

SharedText SharedText::share(Rep* rep) {
  SharedText text = adopt(rep);
  text.retain();
  return text;
}

void SharedText::retain() {
  if (rep_ != nullptr) ++rep_->count;
}

void SharedText::release(Rep* rep) {
  if (rep != nullptr && --rep->count == 0) std::free(rep);
}

std::string_view errorText(ErrorCode code) {
  return errorTexts[static_cast<size_t>(code)];
}

bool errorFromText(std::string_view text, ErrorCode& code) {
  for (size_t i = 0; i < errorTexts.size(); ++i) {
    if (!equalsNoCase(text, errorTexts[i])) continue;
    code = static_cast<ErrorCode>(i);
    return true;
  }
  return false;
}

Value Value::stored(std::string_view text) {
  if (text.empty()) return {};
  if (const auto plain = plainNumber(text)) return Value(*plain);
  const auto number = parseNumber(text);
  if (!number) return Value::text(text);
  if (numberText(*number) == text) return Value(*number);
  return numericText(SharedText(text));
}

Value Value::boolean(bool truth) {
  Value value(truth ? 1.0 : 0.0);
  value.kind_ = ValueKind::Boolean;
  return value;
}

Value Value::error(ErrorCode code) {
  Value value(static_cast<double>(static_cast<int>(code)));
  value.kind_ = ValueKind::Error;
  return value;
}

double Value::asNumber() const {
  switch (kind_) {
    case ValueKind::Number:
    case ValueKind::Boolean:
      return number_;
    case ValueKind::Text:
    case ValueKind::NumericText:
      return numberOf(text_.view());
    default:
      return 0;
  }
}

std::string Value::asText() const {
  switch (kind_) {
    case ValueKind::Number:
      return numberText(number_);
    case ValueKind::Text:
    case ValueKind::NumericText:
      return std::string(text_.view());
    case ValueKind::Boolean:
      return asBoolean() ? "TRUE" : "FALSE";
    case ValueKind::Error:
      return std::string(errorText(asError()));
    default:
      return {};
  }
}

bool operator==(const Value& a, const Value& b) {
  return a.kind_ == b.kind_ && a.number_ == b.number_ && a.text_.view() == b.text_.view();
}

}  // namespace lodex
