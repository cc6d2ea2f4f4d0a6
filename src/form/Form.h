#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Controls.h"

namespace lodex {

/// A window without a toolkit: a name, a caption and controls that are found by name. Subclasses
/// hold the controls as members and their event procedures as member functions.
class Form {
 public:
  explicit Form(std::string_view name, std::string_view caption = {})
      : name_(name), caption_(caption) {}
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  void setCaption(std::string_view caption);

  bool visible() const { return visible_; }
  virtual void show();
  virtual void hide();
  /// Unloads the window; observers are called once. Showing the form again reloads it.
  virtual void close();
  bool closed() const { return closed_; }
  /// The user gave the window the focus.
  virtual void activate() {}

  /// The control of that name without regard to case, or null.
  Control* control(std::string_view name) const;
  const std::vector<Control*>& controls() const { return controls_; }

  /// Called after show, hide, close and a new caption.
  Subscription onChange(std::function<void()> observer) {
    return observers_.add(std::move(observer));
  }
  /// Called when the form comes to its end, its controls already gone.
  Subscription onDestroy(std::function<void()> observer) {
    return endings_.add(std::move(observer));
  }

 private:
  friend class Control;
  void changed() { observers_.notify(); }

  std::string name_;
  std::string caption_;
  bool visible_ = false;
  bool closed_ = false;
  std::vector<Control*> controls_;
  Observers<> observers_;
  Observers<> endings_;
};

}  // namespace lodex
