#include <gtest/gtest.h>

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "gui/Application.h"
#include "gui/Resources.h"

// The windows run without a screen, and remember nothing of the tester's.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QTemporaryDir home;
  qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
  qputenv("XDG_DATA_HOME", home.path().toUtf8());
  qputenv("HOME", home.path().toUtf8());
  testing::InitGoogleTest(&argc, argv);
  lodex::loadResources();
  lodex::Application application(argc, argv);
  return RUN_ALL_TESTS();
}
