#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "basic/Error.h"

namespace lodex {

/// A stretch of an Access file, little-endian. It does not own its bytes. Every look beyond its end
/// throws FileError, so that what a damaged file says is never followed out of bounds.
class AccessBytes {
 public:
  AccessBytes() = default;
  AccessBytes(const std::uint8_t* data, size_t size) : data_(data), size_(size) {}

  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const std::uint8_t* data() const { return data_; }
  std::string_view chars() const { return {reinterpret_cast<const char*>(data_), size_}; }

  std::uint8_t u8(size_t at) const { return value<std::uint8_t>(at); }
  std::uint16_t u16(size_t at) const { return value<std::uint16_t>(at); }
  std::uint32_t u32(size_t at) const { return value<std::uint32_t>(at); }
  std::int16_t i16(size_t at) const { return value<std::int16_t>(at); }
  std::int32_t i32(size_t at) const { return value<std::int32_t>(at); }
  std::int64_t i64(size_t at) const { return value<std::int64_t>(at); }
  float single(size_t at) const { return value<float>(at); }
  double number(size_t at) const { return value<double>(at); }

  AccessBytes part(size_t at, size_t count) const {
    demand(at, count);
    return {data_ + at, count};
  }
  AccessBytes from(size_t at) const {
    demand(at, 0);
    return {data_ + at, size_ - at};
  }

 private:
  void demand(size_t at, size_t count) const {
    if (at > size_ || count > size_ - at) throw FileError("a record ends too early");
  }
  template <typename T>
  T value(size_t at) const {
    demand(at, sizeof(T));
    T result;
    std::memcpy(&result, data_ + at, sizeof(T));
    return result;
  }

  const std::uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace lodex
