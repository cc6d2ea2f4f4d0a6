#include "form/Form.h"

#include "basic/Text.h"

namespace lodex {

Form::~Form() {
  endings_.notify();
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

}  // namespace lodex
