#include "form/EditHistory.h"

namespace lodex {

void EditHistory::setExtraState(std::function<std::string()> save,
                                std::function<void(const std::string&)> restore) {
  save_ = std::move(save);
  restore_ = std::move(restore);
}

void EditHistory::push(std::string text, std::unique_ptr<EditStep> step, std::string extraBefore) {
  redo_.clear();
  undo_.push_back({std::move(text), std::move(step), std::move(extraBefore), extraState()});
  dropOld();
  changed();
}

void EditHistory::undo() {
  travel(undo_, redo_, true);
}

void EditHistory::redo() {
  travel(redo_, undo_, false);
}

void EditHistory::travel(std::deque<Entry>& from, std::deque<Entry>& to, bool back) {
  if (from.empty()) return;
  Entry entry = std::move(from.back());
  from.pop_back();
  try {
    if (back) {
      entry.step->undo();
    } else {
      entry.step->redo();
    }
  } catch (...) {
    clear();
    throw;
  }
  to.push_back(std::move(entry));
  restored_.notify();
  if (restore_) restore_(back ? to.back().extraBefore : to.back().extraAfter);
  dropOld();
  changed();
}

void EditHistory::clear() {
  if (undo_.empty() && redo_.empty()) return;
  undo_.clear();
  redo_.clear();
  changed();
}

void EditHistory::dropOld() {
  size_t bytes = 0;
  for (const Entry& entry : undo_) bytes += entry.bytes();
  while (undo_.size() > 1 && bytes > maxBytes_) {
    bytes -= undo_.front().bytes();
    undo_.pop_front();
  }
}

}  // namespace lodex
