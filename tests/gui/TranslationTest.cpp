#include <QFile>
#include <QKeySequence>
#include <QMenu>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

#include "gui/GuiFixture.h"
#include "gui/shell/MainWindow.h"
#include "shell/MDIMain.h"

namespace lodex {
namespace {

// What a control may show to the user in words.
std::vector<std::string> textsOf(const Control& control) {
  std::vector<std::string> texts{control.caption(), control.toolTip()};
  if (auto* options = dynamic_cast<const OptionButtons*>(&control)) {
    texts.insert(texts.end(), options->captions().begin(), options->captions().end());
  }
  return texts;
}

bool hasWords(const std::string& text) {
  static const QRegularExpression word(QStringLiteral("[A-Za-z]{2}"));
  return toQt(text).contains(word);
}

TEST_F(GuiTest, EveryTextOfShellAndDataSheetsHasAFinnishOne) {
  QTranslator finnish;
  ASSERT_TRUE(finnish.load(QStringLiteral(":/translations/lodexgeo_fi.qm")));
  MDIMain shell(session, {});
  frmDataIN& sheet = shell.NewSheet();
  for (const Form* form : std::initializer_list<const Form*>{
           &shell, &sheet, &shell.sheets.result, &session.log, &shell.sourceForm,
           &shell.destinationForm, &shell.combineForm, &shell.thesaurus, &shell.singleSample()}) {
    for (const Control* control : form->controls()) {
      for (const std::string& text : textsOf(*control)) {
        if (!hasWords(text)) continue;
        // The panel of the data sheets is a window file of its own.
        EXPECT_FALSE(finnish.translate(form->name().c_str(), text.c_str()).isEmpty() &&
                     finnish.translate("DataSheetPanel", text.c_str()).isEmpty())
            << form->name() << "." << control->name() << ": " << text;
      }
    }
  }
}

// Letters that two entries of a menu share; the keyboard reaches neither at once.
QString sharedLetters(const QMenu& menu) {
  QString seen, shared;
  for (const QAction* action : menu.actions()) {
    const QString key = QKeySequence::mnemonic(action->text()).toString().right(1);
    if (key.isEmpty()) continue;
    if (seen.contains(key)) shared += key;
    seen += key;
  }
  return shared;
}

TEST_F(GuiTest, MenusHaveALetterForEachEntry) {
  QTranslator finnish;
  ASSERT_TRUE(finnish.load(QStringLiteral(":/translations/lodexgeo_fi.qm")));
  for (const bool translated : {false, true}) {
    if (translated) QApplication::installTranslator(&finnish);
    MainWindow window(session, QStringLiteral(LODEX_BIN_DIR));
    ASSERT_TRUE(window.start());
    window.shell().NewSheet();
    settle();
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
      EXPECT_EQ(sharedLetters(*menu).toStdString(), "") << menu->title().toStdString();
    }
  }
  QApplication::removeTranslator(&finnish);
}

QStringList marksOf(const QString& text) {
  static const QRegularExpression mark(QStringLiteral("%(\\d|n)"));
  QStringList marks;
  for (auto found = mark.globalMatch(text); found.hasNext();) marks << found.next().captured();
  marks.sort();
  return marks;
}

int mnemonicsIn(const QString& text) {
  static const QRegularExpression letter(QStringLiteral("&[^&\\s]"));
  int count = 0;
  for (auto found = letter.globalMatch(text); found.hasNext(); found.next()) ++count;
  return count;
}

TEST(Translations, KeepPlaceholdersMnemonicsAndEnds) {
  QFile file(QStringLiteral(LODEX_SOURCE_DIR "/src/gui/translations/lodexgeo_fi.ts"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QXmlStreamReader xml(&file);
  QString source, text;
  int compared = 0;
  for (; !xml.atEnd(); xml.readNext()) {
    if (xml.isCharacters()) text += xml.text();
    if (xml.isStartElement()) text.clear();
    if (!xml.isEndElement()) continue;
    if (xml.name() == QLatin1String("source")) source = text;
    const bool plural = xml.name() == QLatin1String("numerusform");
    if (!plural && (xml.name() != QLatin1String("translation") || text.trimmed().isEmpty()))
      continue;
    EXPECT_EQ(marksOf(text), marksOf(source)) << text.toStdString();
    EXPECT_EQ(mnemonicsIn(text), mnemonicsIn(source)) << text.toStdString();
    EXPECT_EQ(text.endsWith("..."), source.endsWith("...")) << text.toStdString();
    EXPECT_EQ(text.endsWith(':'), source.endsWith(':')) << text.toStdString();
    ++compared;
  }
  EXPECT_FALSE(xml.hasError());
  EXPECT_GT(compared, 500);
}

}  // namespace
}  // namespace lodex
