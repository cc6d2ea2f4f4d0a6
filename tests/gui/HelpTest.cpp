#include <QAction>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTemporaryDir>

#include "GuiFixture.h"
#include "gui/help/HelpWindow.h"

namespace lodex {
namespace {

void write(const QString& path, const char* text) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text);
}

class HelpTest : public GuiTest {
 protected:
  void SetUp() override {
    write(dir.filePath("README.md"),
          "# Guide\n\n1. [Zinc](zinc.md)\n2. [Away](https://example.org)\n");
    write(dir.filePath("alpha.md"), "# Alpha\n\nCopper and nickel.\n");
    QByteArray zinc = "# Zinc\n\nFirst words.\n\n## Blende & ore\n\nSphalerite holds zinc.\n\n";
    for (int i = 0; i < 200; ++i) zinc += "Filling line with zinc.\n\n";
    zinc += "## The end\n\n| A | B |\n|---|---|\n| 1 | galena |\n";
    write(dir.filePath("zinc.md"), zinc.constData());
    write(dir.filePath("topics.tsv"),
          "frmBlende\tzinc.md\tBlende & ore\nfrmEnd\tzinc.md\tThe end\n");
  }
  static void trigger(QWidget& window, const char* action) {
    window.findChild<QAction*>(QString::fromLatin1(action))->trigger();
    settle();
  }

  QTemporaryDir dir;
};

TEST_F(HelpTest, ContentsFollowTheHomePageAndThenTheNames) {
  const HelpPages pages(dir.path());
  QStringList titles;
  for (const HelpPage& page : pages.pages()) titles << page.title;
  EXPECT_EQ(titles.join(',').toStdString(), "Guide,Zinc,Alpha");
}

TEST_F(HelpTest, TopicsLeadToHeadingsAndUnknownOnesHome) {
  HelpWindow window(dir.path());
  auto* page = child<HelpBrowser>(window, "page");
  window.showTopic("FRMEND");
  settle();
  EXPECT_EQ(page->source().fileName(), "zinc.md");
  EXPECT_GT(page->verticalScrollBar()->value(), 500) << "the heading is far below the top";
  window.showTopic("frmBlende");
  settle();
  EXPECT_LT(page->verticalScrollBar()->value(), 200);
  window.showTopic("frmNobody");
  EXPECT_EQ(page->source().fileName(), "README.md");
  trigger(window, "back");
  EXPECT_EQ(page->source().fragment(), "blende--ore");
  trigger(window, "next");
  EXPECT_EQ(page->source().fileName(), "README.md");
}

TEST_F(HelpTest, SearchFindsSectionsWithAllWordsHeadingsFirst) {
  const HelpPages pages(dir.path());
  struct Case {
    const char* words;
    const char* headings;
  };
  for (const Case& c :
       {Case{"zinc", "Zinc;Guide;Blende & ore"}, Case{"HOLDS sphalerite", "Blende & ore"},
        Case{"galena", "The end"}, Case{"copper zinc", ""}, Case{"  ", ""}}) {
    QStringList found;
    for (const HelpHit& hit : pages.search(c.words)) found << hit.heading;
    EXPECT_EQ(found.join(';').toStdString(), c.headings) << c.words;
  }
}

TEST_F(HelpTest, AHitOpensItsSection) {
  HelpWindow window(dir.path());
  window.showTopic("");
  child<QLineEdit>(window, "search")->setText("galena");
  auto* hits = child<QListWidget>(window, "hits");
  ASSERT_EQ(hits->count(), 1);
  EXPECT_TRUE(hits->isVisible());
  QTest::keyClick(child<QLineEdit>(window, "search"), Qt::Key_Return);
  EXPECT_EQ(child<HelpBrowser>(window, "page")->source().fragment(), "the-end");
  child<QLineEdit>(window, "search")->setText("nothing like it");
  EXPECT_EQ(hits->count(), 1);
  QTest::keyClick(child<QLineEdit>(window, "search"), Qt::Key_Return);
  EXPECT_EQ(child<HelpBrowser>(window, "page")->source().fragment(), "the-end");
}

TEST_F(HelpTest, FindGoesRoundThePage) {
  HelpWindow window(dir.path());
  window.showTopic("frmBlende");
  child<QLineEdit>(window, "findText")->setText("galena");
  EXPECT_EQ(child<QLabel>(window, "findCount")->text(), "1 found");
  auto* page = child<HelpBrowser>(window, "page");
  EXPECT_TRUE(page->findAround("galena", false));
  EXPECT_TRUE(page->findAround("First words", false)) << "round the end";
  EXPECT_TRUE(page->findAround("galena", true)) << "round the start";
  EXPECT_FALSE(page->findAround("bauxite", false));
}

TEST_F(HelpTest, OutsideLinksAskFirst) {
  HelpWindow window(dir.path());
  window.showTopic("");
  QStringList asked, opened;
  bool agree = false;
  window.askOutside = [&](const QUrl& address) {
    asked << address.toString();
    return agree;
  };
  window.openOutside = [&](const QUrl& address) { opened << address.toString(); };
  auto* page = child<HelpBrowser>(window, "page");
  emit page->anchorClicked(QUrl("https://example.org"));
  EXPECT_EQ(asked.size(), 1);
  EXPECT_TRUE(opened.isEmpty());
  agree = true;
  emit page->anchorClicked(QUrl("https://example.org"));
  EXPECT_EQ(opened.size(), 1);
  emit page->anchorClicked(QUrl("../secret.txt"));
  emit page->anchorClicked(QUrl("file:///etc/hostname"));
  EXPECT_EQ(asked.size(), 2) << "files outside of the guide are not offered";
  EXPECT_EQ(page->source().fileName(), "README.md");
  emit page->anchorClicked(QUrl("zinc.md#the-end"));
  EXPECT_EQ(page->source().fileName(), "zinc.md");
}

TEST_F(HelpTest, MissingPagesAreToldInASentence) {
  HelpWindow window(dir.path());
  window.showTopic("");
  auto* page = child<HelpBrowser>(window, "page");
  emit page->anchorClicked(QUrl("tin.md"));
  EXPECT_TRUE(page->toPlainText().contains("\"tin.md\" is not in the folder"));
  HelpWindow nowhere(dir.filePath("none"));
  nowhere.showTopic("frmEnd");
  EXPECT_TRUE(
      child<HelpBrowser>(nowhere, "page")->toPlainText().contains("guide are not installed"));
}

TEST(GuideTest, EveryTopicAndLinkOfTheGuideExists) {
  const QDir folder(QStringLiteral(LODEX_SOURCE_DIR "/docs/guide"));
  const HelpPages pages(folder.path());
  ASSERT_FALSE(pages.pages().empty());
  const auto exists = [&](const QString& file, const QString& anchor) {
    for (const HelpPage& page : pages.pages()) {
      if (page.file != file) continue;
      if (anchor.isEmpty()) return true;
      for (const HelpSection& section : page.sections) {
        if (HelpPages::anchor(section.heading) == anchor) return true;
      }
    }
    return false;
  };
  QFile topics(folder.filePath("topics.tsv"));
  ASSERT_TRUE(topics.open(QIODevice::ReadOnly));
  for (const QByteArray& line : topics.readAll().split('\n')) {
    const QList<QByteArray> cells = line.split('\t');
    if (cells.size() < 2) continue;
    EXPECT_TRUE(exists(cells[1], HelpPages::anchor(cells.value(2)))) << line.constData();
  }
  static const QRegularExpression link(QStringLiteral("\\]\\(([^)\\s]+)\\)"));
  for (const HelpPage& page : pages.pages()) {
    QFile file(folder.filePath(page.file));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    for (auto found = link.globalMatch(text); found.hasNext();) {
      const QUrl target(found.next().captured(1));
      if (!target.isRelative()) continue;
      const QString path = target.path().isEmpty() ? page.file : target.path();
      const bool isThere = path.endsWith(".md") ? exists(path, target.fragment())
                                                : QFile::exists(folder.filePath(path));
      EXPECT_TRUE(isThere) << page.file.toStdString() << ": " << target.toString().toStdString();
    }
  }
}

}  // namespace
}  // namespace lodex
