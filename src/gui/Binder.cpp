#include "gui/Binder.h"

#include <QAction>
#include <QCoreApplication>
#include <QHash>
#include <QLabel>
#include <QPointer>

#include "gui/BinderLinks.h"
#include "gui/FormLoader.h"
#include "gui/QtText.h"
#include "gui/widgets/AccessibleNames.h"

namespace lodex {

struct Binding::Link {
  Control* control = nullptr;
  QPointer<QObject> object;
  std::function<void()> show;
  bool stale = true;
  bool visible = true;
  bool enabled = true;
  std::string toolTip{};
};

namespace {

using NamedObjects = QHash<QString, QList<QObject*>>;

NamedObjects objectsByName(QWidget& root) {
  NamedObjects found;
  const auto add = [&found](QObject* object) {
    if (!object->objectName().isEmpty()) found[object->objectName().toLower()].append(object);
  };
  for (QObject* object : root.findChildren<QObject*>()) {
    if (qobject_cast<QWidget*>(object) || qobject_cast<QAction*>(object)) add(object);
  }
  return found;
}

void setShown(QObject& object, bool shown) {
  if (auto* widget = qobject_cast<QWidget*>(&object)) widget->setVisible(shown);
  if (auto* action = qobject_cast<QAction*>(&object)) action->setVisible(shown);
}

void setUsable(QObject& object, bool usable) {
  if (auto* widget = qobject_cast<QWidget*>(&object)) widget->setEnabled(usable);
  if (auto* action = qobject_cast<QAction*>(&object)) action->setEnabled(usable);
}

void setHint(QObject& object, const QString& hint) {
  if (auto* widget = qobject_cast<QWidget*>(&object)) {
    widget->setToolTip(hint);
    widget->setStatusTip(hint);
  }
  if (auto* action = qobject_cast<QAction*>(&object)) {
    action->setToolTip(hint);
    action->setStatusTip(hint);
  }
}

}  // namespace

Binding::Binding(Form& form, QWidget& root) : QObject(&root), form_(form) {
  const NamedObjects objects = objectsByName(root);
  for (Control* control : form.controls()) {
    const QString name = toQt(control->name()).toLower();
    bindControl(*control, objects.value(name));
    bindCaption(*control, objects.value(name + QStringLiteral("caption")));
  }
  observed_.add(form.onDestroy([this] { delete this; }));
  flush();
  addAccessibleNames(root);
}

Binding::~Binding() = default;

void Binding::bindControl(Control& control, const QList<QObject*>& objects) {
  for (QObject* object : objects) add(control, *object);
  if (objects.isEmpty()) missing_ << toQt(control.name());
}

void Binding::bindCaption(Control& control, const QList<QObject*>& objects) {
  for (QObject* object : objects) {
    auto* label = qobject_cast<QLabel*>(object);
    if (!label || control.caption().empty()) continue;
    label->setText(captionFor(*label, control.caption()));
  }
}

void Binding::add(Control& control, QObject& object) {
  auto link = std::make_unique<Link>();
  link->control = &control;
  link->object = &object;
  Link& added = *link;
  links_.push_back(std::move(link));
  added.show = connectWidget({control, object, *this, [this, &object](const std::string& text) {
                                return captionFor(object, text);
                              }});
  if (!added.show) missing_ << toQt(control.name());
  observed_.add(control.onChange([this, &added] { changed(added); }));
}

// Widgets that were made without a Designer file are translated with their form.
QString Binding::captionFor(const QObject& object, const std::string& text) const {
  const QString caption = translated(object, text);
  if (caption != toQt(text)) return caption;
  return QCoreApplication::translate(form_.name().c_str(), text.c_str());
}

void Binding::changed(Link& link) {
  link.stale = true;
  if (flushQueued_) return;
  flushQueued_ = true;
  QMetaObject::invokeMethod(
      this, [this] { flush(); }, Qt::QueuedConnection);
}

void Binding::flush() {
  flushQueued_ = false;
  // Hidden widgets go first: with old and new ones visible, a window would grow and stay so.
  for (const auto& link : links_) {
    if (!link->stale || !link->object || !link->visible || link->control->visible()) continue;
    setShown(*link->object, false);
    link->visible = false;
  }
  for (const auto& link : links_) {
    if (!link->stale || !link->object) continue;
    link->stale = false;
    const Control& control = *link->control;
    if (link->visible != control.visible()) setShown(*link->object, control.visible());
    if (link->enabled != control.enabled()) setUsable(*link->object, control.enabled());
    if (link->toolTip != control.toolTip()) {
      const std::string& hint = control.toolTip();
      setHint(*link->object, captionFor(*link->object, hint));
    }
    link->visible = control.visible();
    link->enabled = control.enabled();
    link->toolTip = control.toolTip();
    if (link->show) link->show();
  }
}

Binding* bindForm(Form& form, QWidget& root) {
  return new Binding(form, root);
}

Subscriptions followForm(Form& form, QWidget& window, std::function<void()> changed,
                         std::function<void()> ended) {
  Subscriptions following;
  following.add(form.onChange(std::move(changed)));
  following.add(form.onDestroy([&window, ended = std::move(ended)] {
    ended();
    window.hide();
    window.deleteLater();
  }));
  return following;
}

}  // namespace lodex
