#pragma once

#include <optional>
#include <string_view>

#include "import/SystemRows.h"

namespace lodex {

/// What a laboratory writes as "<0.01": half of the limit, which is what geochemists substitute
/// most often (as discussed by Helsel, Statistics for Censored Environmental Data, 2012). Empty for
/// every other text.
std::optional<double> halfOfLimit(std::string_view text);

/// Writes numbers in place of the values below a detection limit that are in the columns of
/// numbers of an identified sheet. Returns how many.
int convertBelowDetection(const DescribedSheet& sheet);

}  // namespace lodex
