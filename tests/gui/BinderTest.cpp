#include "gui/Binder.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <memory>

#include "form/frmSelectFromList.h"
#include "gui/FormWindow.h"
#include "gui/GuiFixture.h"
#include "gui/QtServices.h"

namespace lodex {
namespace {

class TestForm : public Form {
 public:
  TestForm() : Form("frmTest", "Test") {}
  Label lblState{*this, "lblState", "red"};
  TextBox txtName{*this, "txtName", "Name is:"};
  TextBox txtLog{*this, "txtLog"};
  CheckBox chkAll{*this, "chkAll", "All"};
  OptionButtons optKind{*this, "optKind", {"one", "two"}};
  ListBox lstItems{*this, "lstItems"};
  ListBox lstMarks{*this, "lstMarks"};
  ComboBox cmbSet{*this, "cmbSet"};
  Button cmdRun{*this, "cmdRun", "Run"};
  MenuItem mnuRun{*this, "mnuRun", "&Run"};
  ProgressBar bar{*this, "bar"};
};

template <typename Widget>
Widget* make(QWidget& root, const char* name) {
  auto* widget = new Widget(&root);
  widget->setObjectName(QString::fromLatin1(name));
  return widget;
}

class BinderTest : public GuiTest {
 protected:
  BinderTest() {
    state = make<QLabel>(root, "lblState");
    caption = make<QLabel>(root, "txtNameCaption");
    name = make<QLineEdit>(root, "txtname");
    log = make<QPlainTextEdit>(root, "txtLog");
    all = make<QCheckBox>(root, "chkAll");
    kind = make<QGroupBox>(root, "optKind");
    for (const char* option : {"a", "b"}) make<QRadioButton>(*kind, option);
    items = make<QListWidget>(root, "lstItems");
    items->setSelectionMode(QAbstractItemView::ExtendedSelection);
    marks = make<QListWidget>(root, "lstMarks");
    marks->setProperty("checkBoxes", true);
    set = make<QComboBox>(root, "cmbSet");
    set->setEditable(true);
    run = make<QPushButton>(root, "cmdRun");
    menuRun = new QAction(&root);
    menuRun->setObjectName(QStringLiteral("mnuRun"));
    bar = make<QProgressBar>(root, "bar");
    form = std::make_unique<TestForm>();
    binding = bindForm(*form, root);
  }

  QWidget root;
  QLabel *state, *caption;
  QLineEdit* name;
  QPlainTextEdit* log;
  QCheckBox* all;
  QGroupBox* kind;
  QListWidget *items, *marks;
  QComboBox* set;
  QPushButton* run;
  QAction* menuRun;
  QProgressBar* bar;
  std::unique_ptr<TestForm> form;
  QPointer<Binding> binding;
};

TEST_F(BinderTest, ShowsWhatTheFormSets) {
  EXPECT_EQ(binding->missing(), QStringList());
  EXPECT_EQ(caption->text(), QStringLiteral("Name is:"));
  EXPECT_EQ(run->text(), QStringLiteral("Run"));
  form->lblState.setCaption("green");
  form->txtName.setText("Näyte");
  form->chkAll.setChecked(true);
  form->optKind.select(1);
  for (const char* text : {"a", "b", "c"}) {
    form->lstItems.add(text);
    form->lstMarks.add(text, true);
    form->cmbSet.add(text);
  }
  form->lstItems.setSelected(1, true);
  form->cmbSet.setText("free text");
  form->bar.setMaximum(40);
  form->bar.setValue(12);
  form->cmdRun.setEnabled(false);
  form->cmdRun.setToolTip("Not now");
  settle();
  EXPECT_EQ(state->text(), QStringLiteral("green"));
  EXPECT_EQ(name->text(), QStringLiteral("Näyte"));
  EXPECT_TRUE(all->isChecked());
  EXPECT_TRUE(kind->findChild<QRadioButton*>(QStringLiteral("b"))->isChecked());
  EXPECT_EQ(items->count(), 3);
  EXPECT_TRUE(items->item(1)->isSelected());
  EXPECT_FALSE(items->item(0)->isSelected());
  EXPECT_EQ(marks->item(2)->checkState(), Qt::Checked);
  EXPECT_EQ(set->currentText(), QStringLiteral("free text"));
  EXPECT_EQ(bar->value(), 12);
  EXPECT_FALSE(run->isEnabled());
  EXPECT_EQ(run->toolTip(), QStringLiteral("Not now"));

  form->lstItems.remove(0);
  form->cmdRun.setVisible(false);
  settle();
  EXPECT_EQ(items->item(0)->text(), QStringLiteral("b"));
  EXPECT_TRUE(run->isHidden());
}

TEST_F(BinderTest, TakesWhatTheUserDoes) {
  for (const char* text : {"a", "b", "c"}) {
    form->lstItems.add(text);
    form->lstMarks.add(text);
    form->cmbSet.add(text);
  }
  settle();
  int runs = 0, clicks = 0, activated = -1;
  form->cmdRun.setCommand([&] { ++runs; });
  form->mnuRun.setCommand([&] { ++runs; });
  form->lstItems.setCommand([&](int) { ++clicks; });
  form->lstItems.setActivateCommand([&](int index) { activated = index; });
  QTest::keyClicks(name, QStringLiteral("Oulu"));
  EXPECT_EQ(form->txtName.text(), "Oulu");
  all->click();
  EXPECT_TRUE(form->chkAll.checked());
  kind->findChild<QRadioButton*>(QStringLiteral("b"))->click();
  EXPECT_EQ(form->optKind.selected(), 1);
  run->click();
  menuRun->trigger();
  EXPECT_EQ(runs, 2);
  items->selectAll();
  EXPECT_EQ(form->lstItems.selectedItems(), (std::vector<int>{0, 1, 2}));
  Q_EMIT items->itemClicked(items->item(2));
  Q_EMIT items->itemClicked(items->item(2));
  EXPECT_EQ(clicks, 2) << "a click on the current item counts as well";
  Q_EMIT items->itemActivated(items->item(1));
  EXPECT_EQ(activated, 1);
  marks->item(1)->setCheckState(Qt::Checked);
  EXPECT_TRUE(form->lstMarks.checked(1));
  EXPECT_FALSE(form->lstMarks.checked(0));
  set->setEditText(QStringLiteral("typed"));
  EXPECT_EQ(form->cmbSet.text(), "typed");
}

TEST_F(BinderTest, LogGrowsAtItsEndAndStartsAnew) {
  form->txtLog.setText("first");
  settle();
  form->txtLog.appendText("\r\nsecond");
  settle();
  EXPECT_EQ(log->toPlainText(), QStringLiteral("first\nsecond"));
  form->txtLog.setText("");
  settle();
  EXPECT_EQ(log->toPlainText(), QString());
}

TEST_F(BinderTest, EitherSideMayEndFirst) {
  form.reset();
  EXPECT_FALSE(binding);
  run->click();
  name->setText(QStringLiteral("x"));
  QTest::keyClicks(name, QStringLiteral("y"));

  TestForm other;
  {
    QWidget window;
    make<QLineEdit>(window, "txtName");
    bindForm(other, window);
  }
  other.txtName.setText("nobody shows it");
  settle();
}

TEST_F(GuiTest, ModalFormReturnsWhatWasChosen) {
  QtDialogs screen;
  for (const bool accept : {true, false}) {
    frmSelectFromList choice(screen, "Which one?", {"a", "b"});
    QTimer::singleShot(0, [&] {
      QWidget* window = QApplication::activeModalWidget();
      ASSERT_NE(window, nullptr);
      EXPECT_EQ(window->windowTitle(), QStringLiteral("Which one?"));
      child<QListWidget>(*window, "lstItems")->setCurrentRow(1);
      if (accept) {
        click(*window, "cmdOK");
      } else {
        QTest::keyClick(window, Qt::Key_Escape);
      }
    });
    screen.showModal(choice);
    EXPECT_FALSE(choice.visible());
    EXPECT_EQ(choice.answer(), accept ? "b" : "");
  }
}

TEST_F(GuiTest, ModelessFormHasAWindowWhileItIsShown) {
  FormViews views(nullptr);
  frmSelectFromList form(dialogs, "List", {"a"});
  views.watch(form);
  const auto windows = [] {
    int shown = 0;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      shown += qobject_cast<FormWindow*>(window) && window->isVisible();
    }
    return shown;
  };
  form.show();
  EXPECT_EQ(windows(), 1);
  form.hide();
  EXPECT_EQ(windows(), 0);
  form.show();
  EXPECT_EQ(windows(), 1);
  for (QWidget* window : QApplication::topLevelWidgets()) window->close();
  EXPECT_TRUE(form.closed());
}

TEST_F(GuiTest, FormWithAWindowOfItsOwnBecomesModalInIt) {
  QtDialogs screen;
  FormViews views(nullptr);
  frmSelectFromList form(dialogs, "List", {"a"});
  views.watch(form);
  for (const bool shownBefore : {false, true}) {
    if (shownBefore) form.show();
    int windows = 0;
    QTimer::singleShot(0, [&] {
      for (QWidget* window : QApplication::topLevelWidgets()) windows += window->isVisible();
      QWidget* modal = QApplication::activeModalWidget();
      ASSERT_NE(modal, nullptr);
      click(*modal, "cmdCancel");
    });
    screen.showModal(form);
    EXPECT_EQ(windows, 1) << "shown before: " << shownBefore;
    EXPECT_FALSE(form.visible());
  }
  // Later it is modeless again, also when it is closed and shown at once.
  form.show();
  form.close();
  form.show();
  settle();
  FormWindow* window = FormWindow::of(form);
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  EXPECT_FALSE(window->isModal());
}

TEST(FileFilter, SpeaksQtsLanguage) {
  EXPECT_EQ(qtFileFilter("Text files (*.txt)|*.txt|All files (*.*)|*.*"),
            QStringLiteral("Text files (*.txt);;All files (*)"));
  EXPECT_EQ(qtFileFilter("Excel|*.xls;*.xlsx"), QStringLiteral("Excel (*.xls *.xlsx)"));
}

}  // namespace
}  // namespace lodex
