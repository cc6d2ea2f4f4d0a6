#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "form/Observers.h"

namespace lodex {

/// One change that can be taken back and made again. Undo and redo alternate, undo first.
class EditStep {
 public:
  virtual ~EditStep() = default;
  virtual void undo() = 0;
  virtual void redo() = 0;
  /// Roughly the memory that the step holds.
  virtual size_t bytes() const = 0;
};

/// Undo and redo of the edits of one worksheet. Old steps are dropped when all together take more
/// memory than allowed; the newest always stays.
class EditHistory {
 public:
  explicit EditHistory(size_t maxBytes = size_t(256) << 20) : maxBytes_(maxBytes) {}
  EditHistory(const EditHistory&) = delete;
  EditHistory& operator=(const EditHistory&) = delete;

  /// What belongs to the cells but is kept beside them, such as the numbers that describe a data
  /// sheet's structure: `save` returns it as a text, `restore` puts it back after an undo or redo.
  void setExtraState(std::function<std::string()> save,
                     std::function<void(const std::string&)> restore);
  /// The present extra state. Take it before an edit and pass it to `push` after it.
  std::string extraState() const { return save_ ? save_() : std::string(); }

  /// Adds an edit that has just been made; nothing can be redone after it. `text` names it in
  /// menus.
  void push(std::string text, std::unique_ptr<EditStep> step, std::string extraBefore);

  bool canUndo() const { return !undo_.empty(); }
  bool canRedo() const { return !redo_.empty(); }
  /// What undo or redo would do; "" when there is nothing.
  std::string undoText() const { return canUndo() ? undo_.back().text : std::string(); }
  std::string redoText() const { return canRedo() ? redo_.back().text : std::string(); }
  /// Nothing happens when there is nothing to undo or redo. A step that throws ends the history.
  void undo();
  void redo();
  void clear();

  /// Called after an undo or redo, before the extra state comes back and `onChange` is called.
  Subscription onRestore(std::function<void()> act) { return restored_.add(std::move(act)); }
  /// Called after every change of what can be undone or redone.
  Subscription onChange(std::function<void()> observer) {
    return observers_.add(std::move(observer));
  }

 private:
  struct Entry {
    std::string text;
    std::unique_ptr<EditStep> step;
    std::string extraBefore;
    std::string extraAfter;
    size_t bytes() const { return step->bytes() + extraBefore.size() + extraAfter.size(); }
  };
  void travel(std::deque<Entry>& from, std::deque<Entry>& to, bool back);
  void dropOld();
  void changed() const { observers_.notify(); }

  size_t maxBytes_;
  std::deque<Entry> undo_;
  std::deque<Entry> redo_;
  std::function<std::string()> save_;
  std::function<void(const std::string&)> restore_;
  Observers<> restored_;
  Observers<> observers_;
};

}  // namespace lodex
