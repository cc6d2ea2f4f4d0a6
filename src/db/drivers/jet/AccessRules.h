#pragma once

#include <string>
#include <string_view>

namespace lodex {

/// A field's default value in Access ("=Date()", "Yes", "\"none\"") as an expression of the
/// embedded engine. Throws Error for what has no
/// counterpart.
std::string translatedDefault(std::string_view value);

/// A validation rule of Access as a condition of the embedded engine. A rule of a field may leave
/// the field out, as in ">0 And <=100"; `field` is "" for the rule of a table. Throws Error for
/// what cannot be a condition of a table there: functions of Access, patterns, the day of today.
std::string translatedRule(std::string_view field, std::string_view rule);

}  // namespace lodex
