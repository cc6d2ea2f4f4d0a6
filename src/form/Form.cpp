#include "form/Form.h"

#include "basic/Text.h"

namespace lodex {

Form::~Form() {
  for (const auto& ending : endings_) ending();
}

void Form::setCaption(std::string_view caption) {
  caption_ = caption;
  changed();
}

void Form::show() {
  visible_ = true;
  closed_ = false;
  changed();
}

void Form::hide() {
  visible_ = false;
  changed();
}

void Form::close() {
  closed_ = true;
  hide();
}

Control* Form::control(std::string_view name) const {
  for (Control* control : controls_) {
    if (equalsNoCase(control->name(), name)) return control;
  }
  return nullptr;
}

void Form::changed() {
  for (size_t i = 0; i < observers_.size(); ++i) observers_[i]();
}

}  // namespace lodex
