#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// Where copied cells go as tab text. The desktop gives the system's clipboard; scripts and tests
/// keep one in memory.
class Clipboard {
 public:
  virtual ~Clipboard() = default;
  virtual std::string text() = 0;
  virtual void setText(std::string_view text) = 0;
};

class MemoryClipboard : public Clipboard {
 public:
  std::string text() override { return text_; }
  void setText(std::string_view text) override { text_ = text; }

 private:
  std::string text_;
};

}  // namespace lodex
