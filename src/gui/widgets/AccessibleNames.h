#pragma once

#include <QWidget>

namespace lodex {

/// Gives the inputs below the root that have no name for screen readers the text of their label,
/// else their hint.
void addAccessibleNames(QWidget& root);

}  // namespace lodex
