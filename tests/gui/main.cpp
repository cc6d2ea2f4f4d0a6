#include <gtest/gtest.h>

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "gui/Application.h"
#include "gui/Resources.h"

namespace {

// An exception that no command trapped fails the test in place of asking nobody.
class TestApplication : public lodex::Application {
 public:
  using Application::Application;

 protected:
  void tellFailure(const QString& text) override { ADD_FAILURE() << text.toStdString(); }
};

}  // namespace

// The windows run without a screen, and remember nothing of the tester's.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QTemporaryDir home;
  qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
  qputenv("XDG_DATA_HOME", home.path().toUtf8());
  qputenv("HOME", home.path().toUtf8());
  testing::InitGoogleTest(&argc, argv);
  lodex::loadResources();
  TestApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
