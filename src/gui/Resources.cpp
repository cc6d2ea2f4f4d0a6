#include "gui/Resources.h"

#include <QtCore/qglobal.h>

// Outside of any namespace, as the macro requires.
static void initResources() {
  Q_INIT_RESOURCE(forms);
  Q_INIT_RESOURCE(icons);
  Q_INIT_RESOURCE(translations);
}

namespace lodex {

void loadResources() {
  initResources();
}

}  // namespace lodex
