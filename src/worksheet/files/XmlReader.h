#pragma once

#include <string_view>
#include <vector>

namespace lodex {

struct XmlAttribute {
  std::string_view prefix;
  std::string_view name;
  std::string_view value;
};

/// The attributes of one element.
class XmlAttributes {
 public:
  explicit XmlAttributes(const std::vector<XmlAttribute>& list) : list_(list) {}
  /// The value of the attribute of that name under any prefix, or `otherwise`.
  std::string_view operator()(std::string_view name, std::string_view otherwise = {}) const;
  /// The value of the attribute under that prefix, or "".
  std::string_view prefixed(std::string_view prefix, std::string_view name) const;
  bool has(std::string_view name) const;
  /// A whole number, or `otherwise` where it is missing or malformed.
  int number(std::string_view name, int otherwise) const;
  /// True for "1", "true" and "on"; `otherwise` where it is missing.
  bool flag(std::string_view name, bool otherwise = false) const;

 private:
  const std::vector<XmlAttribute>& list_;
};

/// What a document consists of, in order. Names come without their prefix; texts live only during
/// the call, and one text may come in several pieces.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void start(std::string_view name, const XmlAttributes& attributes) = 0;
  virtual void end(std::string_view name) = 0;
  virtual void text(std::string_view text) = 0;
};

/// Walks through an XML document. Throws FileError when it is malformed.
void readXml(std::string_view document, XmlHandler& handler);

}  // namespace lodex
