#include "worksheet/files/xls/BiffText.h"

#include <iconv.h>

#include <algorithm>

#include "basic/Text.h"

namespace lodex::biff {
namespace {

constexpr std::uint8_t flagWide = 0x01, flagPhonetic = 0x04, flagRich = 0x08;

std::string iconvName(int codePage) {
  switch (codePage) {
    case 367:
      return "ASCII";
    case 1200:
    case 21010:
      return "UTF-16LE";
    case 1361:
      return "JOHAB";
    case 10000:
    case 32768:
      return "MACINTOSH";
    case 10006:
      return "MACGREEK";
    case 10007:
      return "MAC-CYRILLIC";
    case 10029:
      return "MAC-CENTRALEUROPE";
    case 10079:
      return "MACICELAND";
    case 10081:
      return "MACTURKISH";
    case 1252:
    case 32769:
      return "";
    default:
      return "CP" + std::to_string(codePage);
  }
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) { return c < 0x80; });
}

// Reads across the borders of continuation records.
class PartReader {
 public:
  explicit PartReader(const std::vector<std::string_view>& parts) : parts_(parts) {
    if (!parts_.empty()) current_ = parts_[0];
  }

  bool atEnd() {
    while (current_.empty() && part_ + 1 < parts_.size()) current_ = parts_[++part_];
    return current_.empty();
  }

  std::uint8_t u8() {
    if (atEnd()) {
      ok_ = false;
      return 0;
    }
    const auto value = static_cast<std::uint8_t>(current_.front());
    current_.remove_prefix(1);
    return value;
  }
  std::uint16_t u16() {
    const unsigned low = u8();
    return static_cast<std::uint16_t>(low | u8() << 8);
  }
  std::uint32_t u32() {
    const std::uint32_t low = u16();
    return low | static_cast<std::uint32_t>(u16()) << 16;
  }

  void skip(size_t count) {
    while (count > 0 && !atEnd()) {
      const size_t now = std::min(count, current_.size());
      current_.remove_prefix(now);
      count -= now;
    }
    if (count > 0) ok_ = false;
  }

  // `count` characters; each further part of the record begins with a flag byte of its own.
  std::string characters(size_t count, bool wide) {
    std::string text;
    while (count > 0) {
      if (current_.empty()) {
        if (atEnd()) break;
        wide = (u8() & flagWide) != 0;
      }
      const size_t width = wide ? 2 : 1;
      const size_t now = std::min(count, current_.size() / width);
      const std::string_view bytes = current_.substr(0, now * width);
      text += wide ? fromUtf16Bytes(bytes) : fromLatin1(bytes);
      current_.remove_prefix(bytes.size());
      count -= now;
      // Half a character at a part's end belongs to nothing.
      if (now == 0) current_ = {};
    }
    if (count > 0) ok_ = false;
    return text;
  }

  std::string text() {
    const size_t count = u16();
    const std::uint8_t flags = u8();
    const size_t runs = flags & flagRich ? u16() : 0;
    const size_t phonetic = flags & flagPhonetic ? u32() : 0;
    std::string result = characters(count, (flags & flagWide) != 0);
    skip(runs * 4 + phonetic);
    return result;
  }

  bool ok() const { return ok_; }

 private:
  const std::vector<std::string_view>& parts_;
  size_t part_ = 0;
  std::string_view current_;
  bool ok_ = true;
};

}  // namespace

void CodePage::close() {
  if (converter_ != nullptr) iconv_close(static_cast<iconv_t>(converter_));
  converter_ = nullptr;
}

void CodePage::set(int number) {
  close();
  const std::string name = iconvName(number);
  if (name.empty()) return;
  const iconv_t opened = iconv_open("UTF-8", name.c_str());
  if (opened != reinterpret_cast<iconv_t>(-1)) converter_ = opened;
}

std::string CodePage::toUtf8(std::string_view bytes) const {
  // Even files that announce UTF-16 hold plain bytes where those suffice.
  if (isAscii(bytes) && bytes.find('\0') == std::string_view::npos) return std::string(bytes);
  if (converter_ == nullptr) return fromWindows1252(bytes);
  const auto converter = static_cast<iconv_t>(converter_);
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  // No code page needs more than four bytes of UTF-8 for one of its own.
  std::string out(bytes.size() * 4, '\0');
  std::string copy(bytes);
  char* in = copy.data();
  size_t inLeft = copy.size();
  char* to = out.data();
  size_t toLeft = out.size();
  if (iconv(converter, &in, &inLeft, &to, &toLeft) == static_cast<size_t>(-1)) {
    return fromWindows1252(bytes);
  }
  out.resize(out.size() - toLeft);
  return out;
}

std::string fromUtf16Bytes(std::string_view bytes) {
  if (bytes.size() < 2) return {};
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), units.size() * 2);
  return fromUtf16(units);
}

std::string fromLatin1(std::string_view bytes) {
  if (isAscii(bytes)) return std::string(bytes);
  std::string out;
  for (unsigned char c : bytes) appendUtf8(out, c);
  return out;
}

std::string readByteText(ByteReader& in, LengthBytes length, const CodePage& codePage) {
  const size_t count = length == LengthBytes::One ? in.u8() : in.u16();
  return codePage.toUtf8(in.bytes(count));
}

std::string readUnicodeCharacters(ByteReader& in, size_t count) {
  const bool wide = (in.u8() & flagWide) != 0;
  return wide ? fromUtf16Bytes(in.bytes(count * 2)) : fromLatin1(in.bytes(count));
}

std::string readUnicodeText(ByteReader& in, LengthBytes length) {
  const size_t count = length == LengthBytes::One ? in.u8() : in.u16();
  const std::uint8_t flags = in.u8();
  const size_t runs = flags & flagRich ? in.u16() : 0;
  const size_t phonetic = flags & flagPhonetic ? in.u32() : 0;
  std::string text =
      flags & flagWide ? fromUtf16Bytes(in.bytes(count * 2)) : fromLatin1(in.bytes(count));
  in.skip(std::min(in.left(), runs * 4 + phonetic));
  return text;
}

std::vector<SharedText> readSharedTexts(const std::vector<std::string_view>& parts,
                                        bool& complete) {
  std::vector<SharedText> texts;
  PartReader in(parts);
  in.u32();  // number of cells that use the table
  const std::uint32_t count = in.u32();
  // The count is not to be trusted; the parts end the loop.
  while (texts.size() < count && !in.atEnd() && in.ok()) texts.emplace_back(in.text());
  complete = in.ok() && texts.size() == count && in.atEnd();
  return texts;
}

std::string readContinuedText(const std::vector<std::string_view>& parts, bool& complete) {
  PartReader in(parts);
  std::string text = in.text();
  complete = in.ok() && in.atEnd();
  return text;
}

}  // namespace lodex::biff
