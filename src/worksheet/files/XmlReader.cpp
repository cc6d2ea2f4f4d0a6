#include "worksheet/files/XmlReader.h"

#include <charconv>
#include <deque>
#include <optional>
#include <string>

#include "basic/Error.h"
#include "basic/Text.h"
#include "worksheet/files/TextReader.h"

namespace lodex {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool endsName(char c) {
  return isBlank(c) || c == '/' || c == '>' || c == '=' || c == '<';
}

std::string_view withoutPrefix(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

// The character that stands for an entity such as "amp" or "#xB5".
std::optional<char32_t> entity(std::string_view name) {
  if (name == "amp") return U'&';
  if (name == "lt") return U'<';
  if (name == "gt") return U'>';
  if (name == "quot") return U'"';
  if (name == "apos") return U'\'';
  if (name.size() < 2 || name.front() != '#') return std::nullopt;
  const bool hex = name[1] == 'x';
  name.remove_prefix(hex ? 2 : 1);
  std::uint32_t code = 0;
  const auto result = std::from_chars(name.data(), name.data() + name.size(), code, hex ? 16 : 10);
  if (result.ec != std::errc() || result.ptr != name.data() + name.size()) return std::nullopt;
  return code;
}

// The text with its entities replaced; one that is unknown stays as it is.
std::string decoded(std::string_view text) {
  std::string out;
  while (true) {
    const size_t mark = text.find('&');
    out += text.substr(0, mark);
    if (mark == std::string_view::npos) return out;
    text.remove_prefix(mark);
    const size_t end = text.substr(0, 12).find(';');
    const auto character =
        end == std::string_view::npos ? std::nullopt : entity(text.substr(1, end - 1));
    if (character) {
      appendUtf8(out, *character);
      text.remove_prefix(end + 1);
    } else {
      out += '&';
      text.remove_prefix(1);
    }
  }
}

class Reader {
 public:
  Reader(std::string_view document, XmlHandler& handler) : rest_(document), handler_(handler) {}

  void run() {
    while (!rest_.empty()) {
      const size_t tag = rest_.find('<');
      if (!open_.empty()) emitText(rest_.substr(0, tag));
      if (tag == std::string_view::npos) break;
      rest_.remove_prefix(tag);
      markup();
      if (started_ && open_.empty()) return;
    }
    fail("it ends too early");
  }

 private:
  [[noreturn]] static void fail(const char* reason) {
    throw FileError(std::string("a part of the file is malformed: ") + reason);
  }

  // Cuts everything up to and including `mark` and gives what stood before it.
  std::string_view cutAt(std::string_view mark) {
    const size_t place = rest_.find(mark);
    if (place == std::string_view::npos) fail("it ends too early");
    const std::string_view before = rest_.substr(0, place);
    rest_.remove_prefix(place + mark.size());
    return before;
  }

  bool skipStart(std::string_view mark) {
    if (rest_.substr(0, mark.size()) != mark) return false;
    rest_.remove_prefix(mark.size());
    return true;
  }

  void emitText(std::string_view text) {
    if (text.empty()) return;
    if (text.find('&') == std::string_view::npos) {
      handler_.text(text);
    } else {
      handler_.text(decoded(text));
    }
  }

  void markup() {
    if (skipStart("<!--")) {
      cutAt("-->");
    } else if (skipStart("<![CDATA[")) {
      const std::string_view text = cutAt("]]>");
      if (!open_.empty() && !text.empty()) handler_.text(text);
    } else if (skipStart("<?")) {
      cutAt("?>");
    } else if (skipStart("<!")) {
      // A document type; its own entities are of no use in a workbook and a danger to memory.
      const size_t end = rest_.find_first_of("[>");
      if (end != std::string_view::npos && rest_[end] == '[') cutAt("]");
      cutAt(">");
    } else if (skipStart("</")) {
      const std::string_view name = takeName();
      cutAt(">");
      if (open_.empty() || open_.back() != name) fail("its elements are not nested properly");
      close();
    } else {
      rest_.remove_prefix(1);
      startTag();
    }
  }

  void close() {
    handler_.end(withoutPrefix(open_.back()));
    open_.pop_back();
  }

  void skipBlanks() {
    while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
  }

  std::string_view takeName() {
    size_t size = 0;
    while (size < rest_.size() && !endsName(rest_[size])) ++size;
    if (size == 0) fail("a name is missing");
    const std::string_view name = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return name;
  }

  void startTag() {
    constexpr size_t deepest = 10000;
    open_.push_back(takeName());
    started_ = true;
    if (open_.size() > deepest) fail("its elements are nested too deeply");
    attributes_.clear();
    values_.clear();
    while (true) {
      skipBlanks();
      if (skipStart("/>")) {
        handler_.start(withoutPrefix(open_.back()), XmlAttributes(attributes_));
        close();
        return;
      }
      if (skipStart(">")) {
        handler_.start(withoutPrefix(open_.back()), XmlAttributes(attributes_));
        return;
      }
      attribute();
    }
  }

  void attribute() {
    const std::string_view name = takeName();
    skipBlanks();
    if (!skipStart("=")) fail("an attribute has no value");
    skipBlanks();
    if (rest_.empty() || (rest_.front() != '"' && rest_.front() != '\'')) {
      fail("an attribute has no value");
    }
    const std::string_view quote = rest_.substr(0, 1);
    rest_.remove_prefix(1);
    std::string_view value = cutAt(quote);
    if (value.find('&') != std::string_view::npos) value = values_.emplace_back(decoded(value));
    const size_t colon = name.find(':');
    const std::string_view prefix =
        colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
    attributes_.push_back({prefix, withoutPrefix(name), value});
  }

  std::string_view rest_;
  XmlHandler& handler_;
  std::vector<std::string_view> open_;
  bool started_ = false;  // the outermost element has been met
  std::vector<XmlAttribute> attributes_;
  std::deque<std::string> values_;  // decoded values, at fixed addresses
};

}  // namespace

std::string_view XmlAttributes::operator()(std::string_view name,
                                           std::string_view otherwise) const {
  for (const XmlAttribute& attribute : list_) {
    if (attribute.name == name) return attribute.value;
  }
  return otherwise;
}

bool XmlAttributes::has(std::string_view name) const {
  for (const XmlAttribute& attribute : list_) {
    if (attribute.name == name) return true;
  }
  return false;
}

std::string_view XmlAttributes::prefixed(std::string_view prefix, std::string_view name) const {
  for (const XmlAttribute& attribute : list_) {
    if (attribute.name == name && attribute.prefix == prefix) return attribute.value;
  }
  return {};
}

int XmlAttributes::number(std::string_view name, int otherwise) const {
  const std::string_view text = (*this)(name);
  int value = otherwise;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() ? value : otherwise;
}

bool XmlAttributes::flag(std::string_view name, bool otherwise) const {
  if (!has(name)) return otherwise;
  const std::string_view text = (*this)(name);
  return text == "1" || text == "true" || text == "on";
}

void readXml(std::string_view document, XmlHandler& handler) {
  // Nearly every document is UTF-8; only the wide encodings need a conversion.
  const std::string_view start = document.substr(0, 2);
  const bool wide = start == "\xFF\xFE" || start == "\xFE\xFF" ||
                    start == std::string_view("<\0", 2) || start == std::string_view("\0<", 2);
  if (wide) {
    const std::string converted = decodeText(document);
    Reader(converted, handler).run();
  } else {
    Reader(document, handler).run();
  }
}

}  // namespace lodex
