#pragma once

#include <string_view>

namespace lodex {

/// What a laboratory writes in place of a result.
enum class ResultKind {
  Blank,
  Number,
  Below,    // "<0.01": under the limit that follows
  Above,    // ">10000"
  Missing,  // "n.d.", "NSS", "--": no result
  Text,     // none of these
};

struct ResultText {
  ResultKind kind = ResultKind::Text;
  double number = 0;       // the value, or the limit
  bool hasNumber = false;  // false for "bdl" and "<LOD", whose limit stands elsewhere
};

/// Reads the text of a result. Takes "1,234.5", "1 234,5", "0,01", "12*" and "1.2E4" for numbers;
/// whether a single comma parts decimals or thousands ("1,234") only its column can tell:
/// `decimalComma` says so.
ResultText readResult(std::string_view text, bool decimalComma = false);

}  // namespace lodex
