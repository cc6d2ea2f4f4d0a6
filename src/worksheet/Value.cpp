#include "worksheet/Value.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <new>

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr std::array<std::string_view, 8> errorTexts{"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                     "#NAME?", "#NUM!",   "#N/A",    "#CIRC!"};

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
