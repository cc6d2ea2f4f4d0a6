#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lodex {

/// One piece of a statement in the Jet dialect.
struct JetToken {
  enum Kind {
    Word,    ///< a keyword, a function or a plain name
    Name,    ///< a name in [ ] or ` `, without them
    Text,    ///< a text in single quotes, without them
    Quoted,  ///< the same in double quotes: a text, or a name where only a name is possible
    Number,
    Date,  ///< between "#", in the form 2020-01-31 or 2020-01-31 12:00:00
    Mark,  ///< an operator, a bracket, a comma, or any other character
    End
  };
  Kind kind = End;
  std::string text;
  size_t start = 0;  ///< place in the statement, in bytes from 0
  size_t end = 0;    ///< after its last byte
};

/// The error for a place in a statement: names line, column (both from 1), what is written there
/// and why it cannot be used.
[[noreturn]] void failAt(std::string_view sql, const JetToken& token, std::string_view reason);

/// A statement as messages show it: long ones only at their start.
std::string shownStatement(std::string_view sql);

/// Splits a statement; the last token is an End. Throws Error naming the place for a text, name or
/// date that is not closed and for a date that is none.
std::vector<JetToken> splitJetTokens(std::string_view sql);

}  // namespace lodex
