#include "gui/help/HelpBrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QFileInfo>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextTable>
#include <algorithm>
#include <cmath>

namespace lodex {

namespace {

void forEachBlock(QTextDocument& document, const std::function<void(QTextBlock)>& visit) {
  for (auto block = document.begin(); block.isValid(); block = block.next()) visit(block);
}

bool holdsPicture(const QTextBlock& block) {
  return block.text().contains(QChar::ObjectReplacementCharacter);
}

}  // namespace

HelpBrowser::HelpBrowser(const HelpPages& pages, QWidget* parent)
    : QTextBrowser(parent), pages_(pages) {
  setOpenLinks(false);
  document()->setDocumentMargin(18);
  connect(this, &QTextBrowser::anchorClicked, this, &HelpBrowser::follow);
}

void HelpBrowser::open(const QUrl& address) {
  setSource(address, QTextDocument::MarkdownResource);
  goToHeading(address.fragment());
}

void HelpBrowser::follow(const QUrl& link) {
  const QUrl address = source().resolved(link);
  if (pages_.fileOf(address).endsWith(QStringLiteral(".md"))) {
    open(address);
  } else {
    emit outsideLink(address);
  }
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
  const QString file = pages_.fileOf(source().resolved(name));
  if (type != QTextDocument::MarkdownResource) {
    return file.isEmpty() ? QVariant() : QTextBrowser::loadResource(type, name);
  }
  if (!QFileInfo::exists(pages_.folder())) {
    return tr("# Help\n\nThe pages of the guide are not installed. They belong into the folder\n\n"
              "    %1\n")
        .arg(pages_.folder())
        .toUtf8();
  }
  const QVariant page = file.isEmpty() ? QVariant() : QTextBrowser::loadResource(type, name);
  if (!page.toByteArray().trimmed().isEmpty()) return page;
  return tr("# Page not found\n\nThe page \"%1\" is not in the folder of the guide:\n\n    %2\n")
      .arg(file.isEmpty() ? name.toDisplayString() : file, pages_.folder())
      .toUtf8();
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType) {
  QTextBrowser::doSetSource(name, QTextDocument::MarkdownResource);
  dress();
}

// Markdown has no margins, frames and colours.
void HelpBrowser::dress() {
  if (dressing_) return;
  dressing_ = true;
  const QColor shade = palette().color(QPalette::AlternateBase);
  forEachBlock(*document(), [&](QTextBlock block) {
    QTextBlockFormat format = block.blockFormat();
    const bool code = format.nonBreakableLines() || format.hasProperty(QTextFormat::BlockCodeFence);
    if (format.headingLevel() > 0) {
      format.setTopMargin(format.headingLevel() == 1 ? 4 : 18);
      format.setBottomMargin(6);
    } else if (code) {
      format.setBackground(shade);
      format.setLeftMargin(12);
    } else if (!block.textList() && !holdsPicture(block)) {
      format.setLineHeight(125, QTextBlockFormat::ProportionalHeight);
    }
    QTextCursor(block).setBlockFormat(format);
  });
  dressTables(document()->rootFrame());
  fitPictures();
  document()->setModified(false);
  dressing_ = false;
}

void HelpBrowser::dressTables(QTextFrame* frame) {
  for (QTextFrame* inner : frame->childFrames()) {
    if (auto* table = qobject_cast<QTextTable*>(inner)) {
      QTextTableFormat format = table->format();
      format.setBorderCollapse(true);
      format.setBorder(1);
      format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
      format.setBorderBrush(palette().color(QPalette::Mid));
      format.setCellPadding(5);
      format.setTopMargin(6);
      format.setBottomMargin(10);
      table->setFormat(format);
    }
    dressTables(inner);
  }
}

// Scaled here, since documents scale pictures roughly.
void HelpBrowser::fitPictures() {
  const double room = viewport()->width() - 2 * document()->documentMargin() - 4;
  if (room < 50) return;
  forEachBlock(*document(), [&](QTextBlock block) {
    for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
      const QTextFragment fragment = piece.fragment();
      if (!fragment.charFormat().isImageFormat()) continue;
      QTextImageFormat format = fragment.charFormat().toImageFormat();
      const QUrl address(format.name());
      const QImage picture(pages_.folder() + QLatin1Char('/') +
                           pages_.fileOf(source().resolved(address)));
      if (picture.isNull()) continue;
      const double width = std::min<double>(room, picture.width());
      if (std::abs(format.width() - width) < 1) continue;
      QImage scaled = picture.scaledToWidth(static_cast<int>(width * devicePixelRatioF()),
                                            Qt::SmoothTransformation);
      scaled.setDevicePixelRatio(devicePixelRatioF());
      document()->addResource(QTextDocument::ImageResource, document()->baseUrl().resolved(address),
                              scaled);
      format.setWidth(width);
      format.setHeight(picture.height() * width / picture.width());
      QTextCursor place(block);
      place.setPosition(fragment.position());
      place.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      place.setCharFormat(format);
      return;  // one picture in a line; the change ends this loop over its fragments
    }
  });
}

void HelpBrowser::goToHeading(const QString& anchor) {
  if (anchor.isEmpty()) return;
  for (auto block = document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0) continue;
    if (HelpPages::anchor(block.text()) != anchor) continue;
    document()->documentLayout()->documentSize();  // lays out all, not just what is visible
    QTextCursor place(block);
    setTextCursor(place);
    // The cursor's rectangle is relative to what is visible now.
    verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(place).top() - 8);
    return;
  }
}

int HelpBrowser::mark(const QString& text) {
  QList<ExtraSelection> marks;
  if (!text.isEmpty()) {
    ExtraSelection one;
    one.format.setBackground(QColor(0xd9, 0x8a, 0x1f, 110));
    for (auto place = document()->find(text); !place.isNull();
         place = document()->find(text, place)) {
      one.cursor = place;
      marks << one;
    }
  }
  setExtraSelections(marks);
  return static_cast<int>(marks.size());
}

bool HelpBrowser::findAround(const QString& text, bool backward) {
  if (text.isEmpty()) return false;
  const auto way = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (find(text, way)) return true;
  const QTextCursor before = textCursor();
  moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
  if (find(text, way)) return true;
  setTextCursor(before);
  return false;
}

void HelpBrowser::resizeEvent(QResizeEvent* event) {
  QTextBrowser::resizeEvent(event);
  if (!dressing_) fitPictures();
}

void HelpBrowser::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && !source().isEmpty()) dress();
}

}  // namespace lodex
