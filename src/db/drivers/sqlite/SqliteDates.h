#pragma once

struct sqlite3;

namespace lodex {

/// The date functions of the Jet dialect: Year, Month, Day, Hour, Minute, Second, Weekday,
/// DatePart, DateSerial, DateValue, CDate, DateAdd, DateDiff, IsDate, and Format for dates and
/// numbers.
void addJetDateFunctions(sqlite3* database);

}  // namespace lodex
