#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QScrollArea>
#include <QString>
#include <QTabWidget>
#include <QTest>
#include <QWidget>

#include "form/Dialogs.h"
#include "form/EventPump.h"
#include "gui/QtText.h"
#include "session/Session.h"

namespace lodex {

/// Drives windows by the object names of their widgets. Questions go to a script: one that nobody
/// expected fails the test.
class GuiTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_TRUE(dialogs.allAsked()) << "an expected question was not put";
  }

  template <typename Widget>
  static Widget* child(QWidget& root, const char* name) {
    auto* found = root.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << "no widget " << name;
    return found;
  }
  static void click(QWidget& root, const char* name) {
    QTest::mouseClick(child<QWidget>(root, name), Qt::LeftButton);
    settle();
  }
  /// What takes the focus below the root and has no name for screen readers.
  static std::string namelessInputs(QWidget& root) {
    std::string nameless;
    for (QWidget* widget : root.findChildren<QWidget*>()) {
      const QString name = widget->objectName();
      if (name.isEmpty() || name.startsWith(QLatin1String("qt_"))) continue;
      // Pages have names each; what scrolls them needs none.
      if (qobject_cast<QTabWidget*>(widget) || qobject_cast<QScrollArea*>(widget)) continue;
      if (!(widget->focusPolicy() & Qt::TabFocus)) continue;
      QAccessibleInterface* read = QAccessible::queryAccessibleInterface(widget);
      if (!read || read->text(QAccessible::Name).isEmpty()) nameless += fromQt(name) + ' ';
    }
    return nameless;
  }
  /// Lets what is queued reach the widgets.
  static void settle() { QApplication::processEvents(); }

  ScriptedDialogs dialogs;
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
};

}  // namespace lodex
