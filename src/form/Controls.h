#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "form/Observers.h"
#include "worksheet/Worksheet.h"

/// Control models: what a window shows and what its user set, without any toolkit. Observers are
/// called after every change, so that a view stays in step and a form can react to its own
/// controls. A command is set once, by the form that the control belongs to.
namespace lodex {

class Form;

/// What every control has. A control belongs to the form it was made with and carries the name
/// under which a view binds to it.
class Control {
 public:
  Control(Form& form, std::string_view name, std::string_view caption = {});
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  void setCaption(std::string_view caption) { assign(caption_, std::string(caption)); }
  const std::string& toolTip() const { return toolTip_; }
  void setToolTip(std::string_view toolTip) { assign(toolTip_, std::string(toolTip)); }
  bool visible() const { return visible_; }
  void setVisible(bool visible) { assign(visible_, visible); }
  bool enabled() const { return enabled_; }
  void setEnabled(bool enabled) { assign(enabled_, enabled); }

  /// Called after every change, until the subscription or the control ends.
  Subscription onChange(std::function<void()> observer) {
    return observers_.add(std::move(observer));
  }

 protected:
  void changed() { observers_.notify(); }
  template <typename T>
  void assign(T& member, T value) {
    if (member == value) return;
    member = std::move(value);
    changed();
  }

 private:
  std::string name_;
  std::string caption_;
  std::string toolTip_;
  bool visible_ = true;
  bool enabled_ = true;
  Observers<> observers_;
};

class Label : public Control {
 public:
  using Control::Control;
};

class TextBox : public Control {
 public:
  using Control::Control;
  const std::string& text() const { return text_; }
  void setText(std::string_view text) { assign(text_, std::string(text)); }
  /// Adds at the end without copying what is there: logs grow long.
  void appendText(std::string_view text);
  /// The text as a whole number; 0 when it is none.
  int number() const;
  void setNumber(int number) { setText(std::to_string(number)); }

 private:
  std::string text_;
};

class CheckBox : public Control {
 public:
  using Control::Control;
  bool checked() const { return checked_; }
  void setChecked(bool checked) { assign(checked_, checked); }

 private:
  bool checked_ = false;
};

/// A group of options of which one is selected, counted from 0.
class OptionButtons : public Control {
 public:
  OptionButtons(Form& form, std::string_view name, std::vector<std::string> captions);
  const std::vector<std::string>& captions() const { return captions_; }
  int selected() const { return selected_; }
  /// Ignores an index that is none of the options.
  void select(int index);

 private:
  std::vector<std::string> captions_;
  int selected_ = 0;
};

/// A list of texts, counted from 0, with a current item (-1 for none), a selection mark and, for
/// lists with boxes, a check per item.
class ListBox : public Control {
 public:
  using Control::Control;
  int count() const { return static_cast<int>(items_.size()); }
  const std::string& item(int index) const { return at(index).text; }
  std::vector<std::string> items() const;
  void clear();
  void add(std::string_view text, bool checked = false);
  void setItem(int index, std::string_view text);
  void insert(int index, std::string_view text);
  void remove(int index);
  /// Whether several items may be selected at once, where the view does not say so itself.
  bool multiple() const { return multiple_; }
  void setMultiple(bool multiple) { assign(multiple_, multiple); }
  bool selected(int index) const { return at(index).selected; }
  void setSelected(int index, bool selected);
  void selectAll(bool selected);
  std::vector<int> selectedItems() const;
  bool checked(int index) const { return at(index).checked; }
  void setChecked(int index, bool checked);
  int current() const { return current_; }
  void setCurrent(int index);

  /// What a click on an item does, also on the one that is current already.
  void setCommand(std::function<void(int index)> command) { click_.set(std::move(command)); }
  void click(int index);
  /// What a double click or Enter on an item does.
  void setActivateCommand(std::function<void(int index)> command) {
    activate_.set(std::move(command));
  }
  void activate(int index);

 private:
  struct Item {
    std::string text;
    bool selected = false;
    bool checked = false;
  };
  const Item& at(int index) const;
  Item& at(int index);
  std::vector<Item> items_;
  int current_ = -1;
  bool multiple_ = false;
  ControlCommand<int> click_;
  ControlCommand<int> activate_;
};

/// A list with an edit field: the text may be none of the items.
class ComboBox : public ListBox {
 public:
  using ListBox::ListBox;
  const std::string& text() const { return text_; }
  void setText(std::string_view text) { assign(text_, std::string(text)); }

 private:
  std::string text_;
};

/// A button or menu item; `click` runs its command if it is enabled.
class Button : public Control {
 public:
  using Control::Control;
  void setCommand(std::function<void()> command) { command_.set(std::move(command)); }
  void click();

 private:
  ControlCommand<> command_;
};

class MenuItem : public Button {
 public:
  using Button::Button;
  bool checked() const { return checked_; }
  void setChecked(bool checked) { assign(checked_, checked); }

 private:
  bool checked_ = false;
};

class ProgressBar : public Control {
 public:
  using Control::Control;
  int value() const { return value_; }
  int maximum() const { return maximum_; }
  void setValue(int value) { assign(value_, value); }
  void setMaximum(int maximum) { assign(maximum_, maximum); }

 private:
  int value_ = 0;
  int maximum_ = 100;
};

/// Commands that insert or delete the rows or columns of a selection.
enum class StructureCommand { InsertRows, DeleteRows, InsertColumns, DeleteColumns };

/// A worksheet on show. The form owns the worksheet and changes its cells by `edit` and `replace`
/// alone, so that undo, the mark for changes and the copies for recovery learn of it. After
/// changing how the sheet looks it calls `refresh`.
class Grid : public Control {
 public:
  Grid(Form& form, std::string_view name, Worksheet& sheet) : Control(form, name), sheet_(&sheet) {}
  Worksheet& sheet() { return *sheet_; }
  const Worksheet& sheet() const { return *sheet_; }
  void refresh() {
    revision_ = ++lastRevision_;
    changed();
  }

  /// What a click into a cell does; row or column is 0 for a click on a heading.
  void setCommand(std::function<void(int row, int column)> command) {
    click_.set(std::move(command));
  }
  void click(int row, int column) {
    if (enabled()) click_(row, column);
  }
  /// While picking the view shows that the next click chooses a row or column.
  bool picking() const { return picking_; }
  void setPicking(bool picking) { assign(picking_, picking); }
  /// Called after the user changed cells.
  Subscription onEdit(std::function<void()> observer) { return edits_.add(std::move(observer)); }
  void edited() {
    revision_ = ++lastRevision_;
    edits_.notify();
  }
  /// Changes cells. A view makes one step of undo of it, called `name`; observers of edits are
  /// called and the sheet is repainted, also when the change throws: what it did stays. A change
  /// within another one is part of that one.
  void edit(std::string_view name, const std::function<void()>& change);
  /// Fills the sheet with other cells, such as those of a file. No undo leads back to the former
  /// ones, and it is not an edit.
  void replace(const std::function<void()>& fill);
  /// What keeps the history of the sheet, which is for a view to do.
  struct Recorder {
    std::function<void(std::string_view name, const std::function<void()>& change)> record{};
    std::function<void()> forget{};
  };
  void setRecorder(Recorder recorder) { recorder_ = std::move(recorder); }
  /// What belongs to the cells but is kept beside them, for undo: as a text, and back.
  struct SideState {
    std::function<std::string()> save{};
    std::function<void(const std::string&)> restore{};
  };
  void setSideState(SideState state) { sideState_ = std::move(state); }
  const SideState& sideState() const { return sideState_; }
  /// The form's own way to insert and delete the rows or columns of the selection.
  void setStructureCommand(std::function<void(StructureCommand)> command) {
    structure_.set(std::move(command));
  }
  const ControlCommand<StructureCommand>& structureCommand() const { return structure_; }

  /// Another number after every change of the cells; no two grids ever have the same but 0.
  std::uint64_t revision() const { return revision_; }

 private:
  void runAsChange(const std::function<void()>& change, const std::function<void()>& finish);

  Worksheet* sheet_;
  bool picking_ = false;
  bool changing_ = false;
  std::uint64_t revision_ = 0;
  inline static std::uint64_t lastRevision_ = 0;
  ControlCommand<int, int> click_;
  Observers<> edits_;
  Recorder recorder_;
  SideState sideState_;
  ControlCommand<StructureCommand> structure_;
};

}  // namespace lodex
