// The small parts of the package: relations, shared texts and the theme's colours.
#include <charconv>
#include <deque>
#include <optional>

#include "basic/Text.h"
#include "worksheet/files/XmlReader.h"
#include "worksheet/files/ZipArchive.h"
#include "worksheet/files/xlsx/XlsxParts.h"

namespace lodex {
namespace {

std::string lastPiece(std::string_view text, char separator) {
  return std::string(text.substr(text.rfind(separator) + 1));
}

// A target such as "worksheets/sheet1.xml", "../x.xml" or "/xl/x.xml" as a path of the package.
std::string resolved(std::string_view target, std::string_view folder) {
  const bool absolute = !target.empty() && target.front() == '/';
  std::deque<std::string> pieces;
  const std::string whole =
      absolute ? std::string(target) : std::string(folder) + "/" + std::string(target);
  for (std::string& piece : split(whole, "/")) {
    if (piece == "..") {
      if (!pieces.empty()) pieces.pop_back();
    } else if (!piece.empty() && piece != ".") {
      pieces.push_back(std::move(piece));
    }
  }
  return join({pieces.begin(), pieces.end()}, "/");
}

class RelationsHandler : public XmlHandler {
 public:
  explicit RelationsHandler(std::string_view folder) : folder_(folder) {}
  std::map<std::string, XlsxRelation> relations;

  void start(std::string_view element, const XmlAttributes& attributes) override {
    if (element != "Relationship" || attributes("TargetMode") == "External") return;
    relations[std::string(attributes("Id"))] = {lastPiece(attributes("Type"), '/'),
                                                resolved(attributes("Target"), folder_)};
  }
  void end(std::string_view) override {}
  void text(std::string_view) override {}

 private:
  std::string_view folder_;
};

class StringsHandler : public XmlHandler {
 public:
  explicit StringsHandler(XlsxBook& book) : book_(book) {}

  void start(std::string_view element, const XmlAttributes&) override {
    if (element == "si") current_.clear();
    if (element == "rPh") inPhonetic_ = true;
    inText_ = element == "t" && !inPhonetic_;
  }
  void end(std::string_view element) override {
    if (element == "si") {
      book_.budget.takeText(current_);
      book_.strings.push_back(Value::text(xlsxText(current_)));
    }
    if (element == "rPh") inPhonetic_ = false;
    inText_ = false;
  }
  void text(std::string_view text) override {
    if (inText_) current_ += text;
  }

 private:
  XlsxBook& book_;
  std::string current_;
  bool inText_ = false;
  bool inPhonetic_ = false;
};

std::int32_t hexColor(std::string_view text) {
  std::int32_t color = 0;
  std::from_chars(text.data(), text.data() + text.size(), color, 16);
  return color;
}

class ThemeHandler : public XmlHandler {
 public:
  std::vector<std::int32_t> colors;

  void start(std::string_view element, const XmlAttributes& attributes) override {
    if (element == "clrScheme") inScheme_ = true;
    if (!inScheme_) return;
    if (element == "srgbClr") colors.push_back(hexColor(attributes("val")));
    if (element == "sysClr") colors.push_back(hexColor(attributes("lastClr")));
  }
  void end(std::string_view element) override {
    if (element == "clrScheme") inScheme_ = false;
  }
  void text(std::string_view) override {}

 private:
  bool inScheme_ = false;
};

// The character of an escape "_x000D_" at the start of the text.
std::optional<char32_t> escape(std::string_view text) {
  if (text.size() < 7 || text.substr(0, 2) != "_x" || text[6] != '_') return std::nullopt;
  std::uint32_t code = 0;
  const auto result = std::from_chars(text.data() + 2, text.data() + 6, code, 16);
  if (result.ec != std::errc() || result.ptr != text.data() + 6) return std::nullopt;
  return code;
}

}  // namespace

std::map<std::string, XlsxRelation> readXlsxRelations(std::string_view document,
                                                      std::string_view folder) {
  RelationsHandler handler(folder);
  readXml(document, handler);
  return handler.relations;
}

void readXlsxStrings(const ZipArchive& archive, const std::string& path, XlsxBook& book) {
  StringsHandler handler(book);
  readXml(archive, path, handler);
}

std::vector<std::int32_t> readXlsxTheme(std::string_view document) {
  ThemeHandler handler;
  if (!document.empty()) readXml(document, handler);
  // The document lists dark before light; styles number light before dark.
  auto& colors = handler.colors;
  if (colors.size() >= 4) {
    std::swap(colors[0], colors[1]);
    std::swap(colors[2], colors[3]);
  }
  return colors;
}

std::string xlsxText(std::string_view text) {
  std::string out;
  size_t mark = text.find("_x");
  while (mark != std::string_view::npos) {
    const auto character = escape(text.substr(mark));
    out += text.substr(0, mark);
    if (character) {
      appendUtf8(out, *character);
    } else {
      out += '_';
    }
    text.remove_prefix(mark + (character ? 7 : 1));
    mark = text.find("_x");
  }
  return out + std::string(text);
}

}  // namespace lodex
