#include "gui/help/HelpPages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

namespace lodex {

namespace {

// More than any page of text needs, so that a wrong file does not fill the memory.
constexpr qint64 largestPage = 4 << 20;

QString readText(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.read(largestPage));
}

HelpPage readPage(const QString& folder, const QString& file) {
  HelpPage page{file, {}, {{}}};
  QTextDocument document;
  document.setMarkdown(readText(folder + QLatin1Char('/') + file));
  for (auto block = document.begin(); block.isValid(); block = block.next()) {
    const int level = block.blockFormat().headingLevel();
    if (level > 0) {
      page.sections.push_back({block.text(), level, {}});
      if (page.title.isEmpty()) page.title = block.text();
    } else if (!block.text().isEmpty()) {
      page.sections.back().text += block.text() + QLatin1Char('\n');
    }
  }
  if (page.title.isEmpty()) page.title = QFileInfo(file).completeBaseName();
  return page;
}

// The pages that a text links to, in its order.
QStringList linkedPages(const QString& markdown) {
  static const QRegularExpression link(QStringLiteral("\\]\\(([^)#\\s]+\\.md)"));
  QStringList files;
  for (auto found = link.globalMatch(markdown); found.hasNext();) {
    files << QDir::cleanPath(found.next().captured(1));
  }
  return files;
}

bool containsAll(const QString& text, const QStringList& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

QString excerptAround(const QString& text, const QStringList& words) {
  constexpr qsizetype before = 40, length = 120;
  qsizetype place = 0;
  for (const QString& word : words) {
    place = text.indexOf(word, 0, Qt::CaseInsensitive);
    if (place >= 0) break;
  }
  qsizetype from = std::max<qsizetype>(0, place - before);
  while (from > 0 && from < place && !text.at(from - 1).isSpace()) ++from;  // a whole word
  QString excerpt = text.mid(from, length).simplified();
  if (from > 0) excerpt.prepend(QStringLiteral("… "));
  if (from + length < text.size()) excerpt.append(QStringLiteral(" …"));
  return excerpt;
}

}  // namespace

HelpPages::HelpPages(const QString& folder) : folder_(QDir(folder).absolutePath()) {
  readPages();
  readTopics();
}

void HelpPages::readPages() {
  QStringList present =
      QDir(folder_).entryList({QStringLiteral("*.md")}, QDir::Files | QDir::Readable, QDir::Name);
  const QString home = QString::fromLatin1(homeFile);
  QStringList order{home};
  order << linkedPages(readText(folder_ + QLatin1Char('/') + home)) << present;
  order.removeDuplicates();
  for (const QString& file : order) {
    if (present.contains(file)) pages_.push_back(readPage(folder_, file));
  }
}

void HelpPages::readTopics() {
  const QString table = readText(folder_ + QStringLiteral("/topics.tsv"));
  for (const QString& line : table.split(QLatin1Char('\n'))) {
    const QStringList cells = line.trimmed().split(QLatin1Char('\t'));
    if (cells.size() < 2) continue;
    topics_.insert(cells[0].toLower(), url(cells[1], cells.value(2)));
  }
}

QUrl HelpPages::topic(const QString& formName) const {
  return topics_.value(formName.toLower(), home());
}

QUrl HelpPages::url(const QString& file, const QString& heading) const {
  QUrl address = QUrl::fromLocalFile(folder_ + QLatin1Char('/') + file);
  if (!heading.isEmpty()) address.setFragment(anchor(heading));
  return address;
}

QString HelpPages::fileOf(const QUrl& address) const {
  if (!address.isLocalFile()) return {};
  const QString path = QDir::cleanPath(address.toLocalFile());
  const QString below = folder_ + QLatin1Char('/');
  return path.startsWith(below) ? path.mid(below.size()) : QString();
}

std::vector<HelpHit> HelpPages::search(const QString& words) const {
  const QStringList wanted = words.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
  std::vector<HelpHit> inHeadings, inTexts;
  if (wanted.isEmpty()) return {};
  for (const HelpPage& page : pages_) {
    for (const HelpSection& section : page.sections) {
      if (!containsAll(section.heading + QLatin1Char('\n') + section.text, wanted)) continue;
      auto& hits = containsAll(section.heading, wanted) ? inHeadings : inTexts;
      hits.push_back({page.file, page.title, section.heading, excerptAround(section.text, wanted)});
    }
  }
  inHeadings.insert(inHeadings.end(), inTexts.begin(), inTexts.end());
  return inHeadings;
}

QString HelpPages::anchor(const QString& heading) {
  QString name;
  for (const QChar letter : heading.trimmed().toLower()) {
    if (letter.isLetterOrNumber() || letter == QLatin1Char('_') || letter == QLatin1Char('-')) {
      name += letter;
    } else if (letter.isSpace()) {
      name += QLatin1Char('-');
    }
  }
  return name;
}

}  // namespace lodex
