#include "worksheet/files/XmlReader.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <memory>
#include <string>
#include <type_traits>

#include "basic/Error.h"

namespace lodex {
namespace {

std::string_view withoutPrefix(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

}  // namespace

class XmlStream::Parser {
 public:
  explicit Parser(XmlHandler& handler) : parser_(XML_ParserCreate(nullptr)), handler_(handler) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &Parser::start, &Parser::end);
    XML_SetCharacterDataHandler(parser_.get(), &Parser::text);
  }

  void feed(std::string_view piece, bool last) {
    // The library counts bytes in an int.
    constexpr size_t most = size_t{1} << 28;
    do {
      const std::string_view part = piece.substr(0, most);
      piece.remove_prefix(part.size());
      const bool ends = last && piece.empty();
      const auto status =
          XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()), ends ? 1 : 0);
      if (thrown_) std::rethrow_exception(thrown_);
      if (status == XML_STATUS_ERROR) fail();
    } while (!piece.empty());
  }

 private:
  [[noreturn]] void fail() const {
    const XML_Error error = XML_GetErrorCode(parser_.get());
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    throw FileError("a part of the file is malformed: " + std::string(XML_ErrorString(error)) +
                    " in line " + std::to_string(XML_GetCurrentLineNumber(parser_.get())));
  }

  // An exception must not pass through the library: it is kept until the library returns.
  template <typename Call>
  static void guarded(void* user, Call call) {
    auto& self = *static_cast<Parser*>(user);
    if (self.thrown_) return;
    try {
      call(self);
    } catch (...) {
      self.thrown_ = std::current_exception();
      XML_StopParser(self.parser_.get(), XML_FALSE);
    }
  }
  static void start(void* user, const char* name, const char** attributes) {
    guarded(user, [&](Parser& self) {
      constexpr int deepest = 10000;
      if (++self.depth_ > deepest) {
        throw FileError("a part of the file is malformed: its elements are nested too deeply");
      }
      self.handler_.start(withoutPrefix(name), XmlAttributes(attributes));
    });
  }
  static void end(void* user, const char* name) {
    guarded(user, [&](Parser& self) {
      --self.depth_;
      self.handler_.end(withoutPrefix(name));
    });
  }
  static void text(void* user, const char* text, int size) {
    guarded(user, [&](Parser& self) {
      self.handler_.text(std::string_view(text, static_cast<size_t>(size)));
    });
  }

  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> parser_;
  XmlHandler& handler_;
  int depth_ = 0;
  std::exception_ptr thrown_;
};

const char* XmlAttributes::find(std::string_view name) const {
  for (const char** at = list_; *at != nullptr; at += 2) {
    if (withoutPrefix(*at) == name) return at[1];
  }
  return nullptr;
}

std::string_view XmlAttributes::operator()(std::string_view name,
                                           std::string_view otherwise) const {
  const char* value = find(name);
  return value != nullptr ? value : otherwise;
}

bool XmlAttributes::has(std::string_view name) const {
  return find(name) != nullptr;
}

std::string_view XmlAttributes::prefixed(std::string_view prefix, std::string_view name) const {
  for (const char** at = list_; *at != nullptr; at += 2) {
    const std::string_view whole = *at;
    const size_t colon = whole.find(':');
    const std::string_view own =
        colon == std::string_view::npos ? std::string_view() : whole.substr(0, colon);
    if (own == prefix && withoutPrefix(whole) == name) return at[1];
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

XmlStream::XmlStream(XmlHandler& handler) : parser_(std::make_unique<Parser>(handler)) {}
XmlStream::~XmlStream() = default;

void XmlStream::feed(std::string_view piece) {
  parser_->feed(piece, false);
}
void XmlStream::finish() {
  parser_->feed({}, true);
}

void readXml(std::string_view document, XmlHandler& handler) {
  XmlStream xml(handler);
  xml.feed(document);
  xml.finish();
}

}  // namespace lodex
