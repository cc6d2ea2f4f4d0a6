#pragma once

#include <string_view>

namespace lodex::biff {

/// The user name that writeXls leaves in its files. Such files tell text that is a number's
/// spelling from text that merely looks like a number: the latter has a style with a text mark.
inline constexpr std::string_view writerName = "Lodex Geo";

/// Whether the data of a WRITEACCESS record carry that name.
inline bool isWrittenHere(std::string_view data) {
  return data.size() > 3 && data.substr(3, writerName.size()) == writerName;
}

}  // namespace lodex::biff
