#pragma once

#include <QTextBrowser>

#include "gui/help/HelpPages.h"

namespace lodex {

/// Shows Markdown pages of the guide, at headings by their anchors. A page that is missing is
/// replaced by a sentence that says so. Pictures shrink to the width of the window.
class HelpBrowser : public QTextBrowser {
  Q_OBJECT
 public:
  explicit HelpBrowser(const HelpPages& pages, QWidget* parent = nullptr);

  /// Goes to a page and heading, and remembers where it came from.
  void open(const QUrl& address);
  /// Marks all places of the text, in any case; an empty text takes the marks away. The number of
  /// places found.
  int mark(const QString& text);
  /// Selects the next or previous place of the text, going on from the other end of the page. False
  /// when there is none.
  bool findAround(const QString& text, bool backward);

  QVariant loadResource(int type, const QUrl& name) override;

 signals:
  /// A link to a page outside the guide was clicked.
  void outsideLink(const QUrl& address);

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void follow(const QUrl& link);
  void dress();
  void dressTables(QTextFrame* frame);
  void fitPictures();
  void goToHeading(const QString& anchor);

  const HelpPages& pages_;
  bool dressing_ = false;
};

}  // namespace lodex
