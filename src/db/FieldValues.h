#pragma once

#include <string_view>

#include "db/FieldTypes.h"

namespace lodex {

/// The value as a field keeps it: numeric texts as numbers in a numeric field, whole numbers
/// rounded with halves to even, dates as dateText gives them, -1 and 0 in a Boolean field, numbers
/// as texts in a text field. Throws Error naming table and field for what does not fit the field's
/// type, range or length.
FieldValue valueForField(const FieldValue& value, const Field& field, std::string_view table);

/// A value of single precision as it was entered: 0.1 for the float nearest to it. A value that is
/// no float stays as it is.
double enteredSingle(double value);

}  // namespace lodex
