#include <QDir>
#include <QFile>
#include <QKeySequence>
#include <QMenu>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

#include "gui/FormTexts.h"
#include "gui/GuiFixture.h"
#include "gui/shell/MainWindow.h"
#include "shell/MDIMain.h"

namespace lodex {
namespace {

// The originals that a file for translators lists, translated or not, by context.
std::set<FormText> listedTexts(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  std::set<FormText> texts;
  std::string context;
  QXmlStreamReader xml(&file);
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    if (xml.name() == QLatin1String("name")) context = fromQt(xml.readElementText());
    if (xml.name() == QLatin1String("source")) {
      texts.emplace(context, fromQt(xml.readElementText()));
    }
  }
  return texts;
}

TEST_F(GuiTest, EveryTextOfAFormReachesTheTranslators) {
  std::set<FormText> texts = windowTexts();
  texts.merge(modelTexts(session));
  const QDir folder(QStringLiteral(LODEX_SOURCE_DIR "/src/gui/translations"));
  const QStringList languages = folder.entryList({QStringLiteral("*.ts")});
  EXPECT_FALSE(languages.isEmpty());
  for (const QString& language : languages) {
    const std::set<FormText> listed = listedTexts(folder.filePath(language));
    for (const auto& [form, text] : texts) {
      EXPECT_TRUE(listed.contains({form, text}))
          << fromQt(language) << ", " << form << ": " << text << " (run script/translations)";
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
