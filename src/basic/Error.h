#pragma once

#include <stdexcept>
#include <string>

namespace lodex {

/// What ends an operation: bad input, a file that cannot be read, a database that refuses.
/// The text is meant for the user and names the thing concerned. Programmer's faults are asserts,
/// and expected failures are return values.
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& text, int number = 0)
      : std::runtime_error(text), number_(number) {}

  /// The number shown in "Error <number> <text>"; 0 when there is none.
  int number() const { return number_; }

 private:
  int number_;
};

/// A file that is missing, unreadable, damaged or of a kind nobody knows.
class FileError : public Error {
 public:
  using Error::Error;
};

}  // namespace lodex
