#pragma once

#include <string_view>

namespace lodex {

/// True when a text fits a pattern, without regard to case: "*" and "%" stand for any characters,
/// "?" and "_" for one, "#" for a digit, "[a-z]" for one of a set and "[!a-z]" for one outside it.
/// In a set every mark stands for itself, so "[*]" is a star. A "[" that is never closed stands for
/// itself.
bool jetLike(std::string_view text, std::string_view pattern);

}  // namespace lodex
