#include <QAction>
#include <QFile>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTabWidget>
#include <QToolButton>
#include <QXmlStreamReader>
#include <algorithm>

#include "gui/EveryForm.h"
#include "gui/FormLoader.h"
#include "gui/FormWindow.h"
#include "gui/GuiFixture.h"
#include "gui/grid/WorksheetView.h"
#include "gui/widgets/Mnemonics.h"

namespace lodex {
namespace {

class AllForms : public GuiTest {
 protected:
  EveryForm every{session};
  const std::vector<Form*>& forms = every.forms;
};

// The caption that a window file gives a control's widget; null for widgets without one.
QString captionOf(const QObject& object) {
  if (auto* action = qobject_cast<const QAction*>(&object)) return action->text();
  if (auto* button = qobject_cast<const QAbstractButton*>(&object)) return button->text();
  if (auto* label = qobject_cast<const QLabel*>(&object)) return label->text();
  if (auto* group = qobject_cast<const QGroupBox*>(&object)) return group->title();
  return {};
}

QStringList optionCaptions(const QObject& object) {
  QStringList captions;
  if (auto* tabs = qobject_cast<const QTabWidget*>(&object)) {
    for (int i = 0; i < tabs->count(); ++i) captions << tabs->tabText(i);
  } else {
    for (auto* option : object.findChildren<QRadioButton*>()) captions << option->text();
  }
  return captions;
}

QStringList toQt(const std::vector<std::string>& texts) {
  QStringList all;
  for (const std::string& text : texts) all << lodex::toQt(text);
  return all;
}

// A window file may take in another one as a widget of its class.
QStringList tabStops(const QString& window) {
  QFile file(QStringLiteral(":/forms/%1.ui").arg(window));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  QStringList stops;
  QXmlStreamReader xml(&file);
  while (!xml.atEnd()) {
    if (!xml.readNextStartElement()) continue;
    const QString part = xml.attributes().value(QLatin1String("class")).toString();
    if (xml.name() == QLatin1String("tabstop")) {
      stops << xml.readElementText();
    } else if (QFile::exists(QStringLiteral(":/forms/%1.ui").arg(part))) {
      stops << tabStops(part);
    }
  }
  return stops;
}

TEST_F(AllForms, HaveAWidgetForEveryControl) {
  for (Form* form : forms) {
    FormWindow window(*form);
    EXPECT_EQ(window.binding()->missing(), QStringList()) << form->name();
    EXPECT_EQ(window.windowTitle(),
              lodex::toQt(form->caption().empty() ? "Lodex Geo" : form->caption()));
  }
}

// Designer and translators see the captions of the window files; the forms know their own.
TEST_F(AllForms, CaptionsOfTheWindowFilesAreTheForms) {
  for (Form* form : forms) {
    const std::unique_ptr<QWidget> window(loadFormFile(lodex::toQt(form->name())));
    for (const Control* control : form->controls()) {
      const std::string where = form->name() + "." + control->name();
      QString name = lodex::toQt(control->name());
      if (dynamic_cast<const TextBox*>(control) || dynamic_cast<const ListBox*>(control)) {
        name += QStringLiteral("Caption");
      }
      const auto* object = window->findChild<QObject*>(name);
      if (const auto* options = dynamic_cast<const OptionButtons*>(control)) {
        EXPECT_EQ(optionCaptions(*object), toQt(options->captions())) << where;
      } else if (!control->caption().empty()) {
        ASSERT_NE(object, nullptr) << where;
        EXPECT_EQ(captionOf(*object), lodex::toQt(control->caption())) << where;
      }
    }
  }
}

TEST_F(AllForms, TabStopsAreAllInputsInOrder) {
  for (Form* form : forms) {
    FormWindow window(*form);
    const QStringList stops = tabStops(lodex::toQt(form->name()));
    QSet<QString> inputs;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
      const QString name = widget->objectName();
      const bool partOfAnother = name.isEmpty() || name.startsWith(QLatin1String("qt_"));
      const bool ofGrid = std::any_of(stops.begin(), stops.end(), [&](const QString& stop) {
        const auto* grid = window.findChild<WorksheetView*>(stop);
        return grid && grid != widget && grid->isAncestorOf(widget);
      });
      if (partOfAnother || ofGrid || !(widget->focusPolicy() & Qt::TabFocus)) continue;
      if (!qobject_cast<const QToolButton*>(widget)) inputs.insert(name);
    }
    for (const QString& stop : stops) {
      EXPECT_NE(window.findChild<QWidget*>(stop), nullptr) << form->name() << ' ' << fromQt(stop);
    }
    const QSet<QString> left = inputs - QSet<QString>(stops.begin(), stops.end());
    EXPECT_EQ(QStringList(left.values()), QStringList()) << form->name();
    EXPECT_EQ(stops.size(), QSet<QString>(stops.begin(), stops.end()).size()) << form->name();
  }
}

TEST_F(AllForms, EnterPressesNothingButTheDefaultButton) {
  for (Form* form : forms) {
    FormWindow window(*form);
    int defaults = 0;
    for (const auto* button : window.findChildren<QPushButton*>()) {
      defaults += button->isDefault();
      EXPECT_FALSE(button->autoDefault() && !button->isDefault())
          << form->name() << ' ' << fromQt(button->objectName());
    }
    EXPECT_LE(defaults, 1) << form->name();
    const bool answers = form->control("cmdOK") || form->control("Command1");
    const bool asks = form->control("cmdCancel") && answers;
    if (asks) {
      EXPECT_EQ(defaults, 1) << form->name();
    }
  }
}

TEST_F(AllForms, CommandsExplainThemselves) {
  for (Form* form : forms) {
    FormWindow window(*form);
    for (const Control* control : form->controls()) {
      const bool plain = control->caption() == "OK" || control->caption() == "Cancel" ||
                         control->caption() == "Close" || control->name() == "mnuCopyRowMineral";
      const bool command = dynamic_cast<const Button*>(control) != nullptr ||
                           dynamic_cast<const CheckBox*>(control) != nullptr;
      if (plain || !command) continue;
      const auto* object = window.findChild<QObject*>(lodex::toQt(control->name()));
      EXPECT_FALSE(object->property("toolTip").toString().isEmpty())
          << form->name() << '.' << control->name();
    }
  }
}

TEST_F(AllForms, LettersForAltAreNeverAmbiguous) {
  for (Form* form : forms) {
    FormWindow window(*form);
    QStringList letters;
    for (const auto* button : window.findChildren<QAbstractButton*>()) {
      letters << QKeySequence::mnemonic(button->text()).toString();
    }
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (label->buddy()) letters << QKeySequence::mnemonic(label->text()).toString();
    }
    letters.removeAll(QString());
    EXPECT_EQ(letters.removeDuplicates(), 0) << form->name();
  }
}

TEST_F(AllForms, InputsHaveNamesForScreenReaders) {
  for (Form* form : forms) {
    FormWindow window(*form);
    EXPECT_EQ(namelessInputs(window), "") << form->name();
  }
}

TEST_F(AllForms, EscapeCancels) {
  for (Form* form : forms) {
    if (form == &session.splash) continue;
    FormWindow window(*form);
    form->show();
    window.show();
    QTest::keyClick(&window, Qt::Key_Escape);
    settle();
    EXPECT_FALSE(form->visible()) << form->name();
    EXPECT_FALSE(window.isVisible()) << form->name();
  }
}

TEST(Mnemonics, AreTheFirstFreeLetters) {
  struct Case {
    const char* text;
    const char* marked;
  };
  QWidget window;
  const Case cases[] = {
      {"Save", "&Save"}, {"Save As ...", "Save &As ..."}, {"&Open", "&Open"}, {"Save", "Sa&ve"},
      {"OK", "OK"},      {"A && B", "A && &B"},           {"Öljy", "&Öljy"},  {"a", "a"}};
  std::vector<QPushButton*> buttons;
  for (const Case& row : cases) {
    buttons.push_back(new QPushButton(QString::fromUtf8(row.text), &window));
  }
  addMnemonics(window);
  for (size_t i = 0; i < buttons.size(); ++i) {
    EXPECT_EQ(buttons[i]->text(), QString::fromUtf8(cases[i].marked)) << cases[i].text;
  }
  EXPECT_EQ(withoutMnemonic(QStringLiteral("A && &B&")), QStringLiteral("A & B&"));
}

}  // namespace
}  // namespace lodex
