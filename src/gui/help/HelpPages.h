#pragma once

#include <QHash>
#include <QString>
#include <QUrl>
#include <vector>

namespace lodex {

/// A heading of a page with the plain text below it, up to the next heading. The text before the
/// first heading has an empty heading.
struct HelpSection {
  QString heading;
  int level = 0;  // 1 to 6; 0 without heading
  QString text;
};

struct HelpPage {
  QString file;  // relative to the guide's folder
  QString title;
  std::vector<HelpSection> sections;
};

struct HelpHit {
  QString file;
  QString title;
  QString heading;
  QString excerpt;  // one line around the first of the words
};

/// The guide's Markdown pages: a folder with README.md as home page and topics.tsv, which names the
/// page and heading for each window.
class HelpPages {
 public:
  /// Reads the pages at once; a missing folder makes a guide without pages.
  explicit HelpPages(const QString& folder);

  const QString& folder() const { return folder_; }
  /// The home page, those that it links to in its order, and the others by name.
  const std::vector<HelpPage>& pages() const { return pages_; }

  QUrl home() const { return url(homeFile, {}); }
  /// Where a window is described, by the name of its form in any case; the home page when
  /// topics.tsv does not know it.
  QUrl topic(const QString& formName) const;
  /// The address of a page and, unless empty, of a heading in it.
  QUrl url(const QString& file, const QString& heading) const;
  /// The path below the guide's folder to which an address leads; empty for a path outside.
  QString fileOf(const QUrl& address) const;

  /// Sections that contain all words of the text, in any case and order; headings first.
  std::vector<HelpHit> search(const QString& words) const;

  /// "Text files & blanks" is reached by "#text-files--blanks".
  static QString anchor(const QString& heading);

 private:
  void readPages();
  void readTopics();

  static constexpr auto homeFile = "README.md";
  QString folder_;
  std::vector<HelpPage> pages_;
  QHash<QString, QUrl> topics_;
};

}  // namespace lodex
