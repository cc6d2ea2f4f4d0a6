#include "form/Controls.h"

#include "basic/Error.h"
#include "basic/Numbers.h"
#include "form/Form.h"

namespace lodex {

Control::Control(Form& form, std::string_view name, std::string_view caption)
    : name_(name), caption_(caption) {
  form.controls_.push_back(this);
}

void TextBox::appendText(std::string_view text) {
  if (text.empty()) return;
  text_ += text;
  changed();
}

int TextBox::number() const {
  return parseInteger(text_).value_or(0);
}

OptionButtons::OptionButtons(Form& form, std::string_view name, std::vector<std::string> captions)
    : Control(form, name), captions_(std::move(captions)) {}

void OptionButtons::select(int index) {
  if (index >= 0 && index < static_cast<int>(captions_.size())) assign(selected_, index);
}

const ListBox::Item& ListBox::at(int index) const {
  if (index < 0 || index >= count()) {
    throw Error("List " + name() + " has no item number " + std::to_string(index));
  }
  return items_[static_cast<size_t>(index)];
}

ListBox::Item& ListBox::at(int index) {
  return const_cast<Item&>(std::as_const(*this).at(index));
}

std::vector<std::string> ListBox::items() const {
  std::vector<std::string> texts;
  for (const Item& item : items_) texts.push_back(item.text);
  return texts;
}

void ListBox::clear() {
  items_.clear();
  current_ = -1;
  changed();
}

void ListBox::add(std::string_view text, bool checked) {
  items_.push_back({std::string(text), false, checked});
  changed();
}

void ListBox::setItem(int index, std::string_view text) {
  assign(at(index).text, std::string(text));
}

void ListBox::insert(int index, std::string_view text) {
  if (index < 0 || index > count()) throw Error("List " + name() + " has no such place");
  items_.insert(items_.begin() + index, {std::string(text), false, false});
  if (current_ >= index) ++current_;
  changed();
}

void ListBox::remove(int index) {
  at(index);
  items_.erase(items_.begin() + index);
  if (current_ > index) --current_;
  if (current_ >= count()) current_ = count() - 1;
  changed();
}

void ListBox::setSelected(int index, bool selected) {
  assign(at(index).selected, selected);
}

void ListBox::selectAll(bool selected) {
  for (Item& item : items_) item.selected = selected;
  changed();
}

std::vector<int> ListBox::selectedItems() const {
  std::vector<int> indexes;
  for (int i = 0; i < count(); ++i) {
    if (selected(i)) indexes.push_back(i);
  }
  return indexes;
}

void ListBox::setChecked(int index, bool checked) {
  assign(at(index).checked, checked);
}

void ListBox::setCurrent(int index) {
  if (index != -1) at(index);
  assign(current_, index);
}

void ListBox::click(int index) {
  setCurrent(index);
  if (enabled()) click_(index);
}

void ListBox::activate(int index) {
  setCurrent(index);
  if (enabled()) activate_(index);
}

void Button::click() {
  if (enabled()) command_();
}

// Finishes also when the change throws.
void Grid::runAsChange(const std::function<void()>& change, const std::function<void()>& finish) {
  if (changing_) return change();
  const auto end = [&] {
    changing_ = false;
    finish();
    refresh();
  };
  changing_ = true;
  try {
    change();
  } catch (...) {
    end();
    throw;
  }
  end();
}

void Grid::edit(std::string_view name, const std::function<void()>& change) {
  const bool recorded = recorder_.record && !changing_;
  runAsChange([&] { recorded ? recorder_.record(name, change) : change(); }, [this] { edited(); });
}

void Grid::replace(const std::function<void()>& fill) {
  runAsChange(fill, [this] {
    if (recorder_.forget) recorder_.forget();
  });
}

}  // namespace lodex
