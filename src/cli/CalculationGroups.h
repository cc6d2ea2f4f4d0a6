#pragma once

#include <string>

#include "calc/CalculationGroup.h"
#include "session/Session.h"

namespace lodex {

/// Loads a calculation group: one of the groups folder, or any folder of workbooks given by its
/// path. Throws Error naming the groups that there are.
void loadGroup(CalculationGroup& group, const std::string& name, const SessionRecord& record);

}  // namespace lodex
