#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "worksheet/Value.h"
#include "worksheet/files/xls/BiffLinks.h"

namespace lodex::biff {

/// Where relative references of a formula count from. Rows and columns count from 0.
struct FormulaBase {
  int row = 0;
  int column = 0;
};

/// Turns the tokens of a formula into text as a user would type it, without "=", with "," between
/// arguments. `code` are the tokens and `extra` the data after them that array constants need.
/// Nothing is returned for tokens that are damaged, unknown or too long to be a formula.
std::optional<std::string> decodeFormula(const Links& links, std::string_view code,
                                         std::string_view extra, FormulaBase base = {});

/// The cell that an entry token points to, for formulas shared by a block of cells: true when
/// `code` consists of such a token.
bool isEntryToken(const Links& links, std::string_view code, FormulaBase& entry);

/// The error value of a stored code; #N/A for an unknown one.
ErrorCode errorOfCode(unsigned code);
unsigned codeOfError(ErrorCode error);

}  // namespace lodex::biff
