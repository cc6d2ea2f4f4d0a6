#pragma once

#include "db/Dates.h"

struct sqlite3;
struct sqlite3_value;

namespace lodex {

/// The date functions of the Jet dialect: Year, Month, Day, Hour, Minute, Second, Weekday,
/// DatePart, DateSerial, DateValue, CDate, DateAdd, DateDiff, IsDate.
void addJetDateFunctions(sqlite3* database);

/// The date that a text holds or that a number stands for (days since 1899-12-30). Throws Error if
/// there is none.
DateTime requireDate(sqlite3_value* value);

/// The day of the year, and its week: weeks begin on Sunday, the first one with the first of
/// January.
int dayOfYear(const DateTime& date);
int weekOfYear(const DateTime& date);

}  // namespace lodex
