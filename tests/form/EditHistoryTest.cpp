#include "form/EditHistory.h"

#include <gtest/gtest.h>

#include "basic/Error.h"

namespace lodex {
namespace {

// A number that steps add to.
class Addition : public EditStep {
 public:
  Addition(int& number, int by, size_t bytes = 10) : number_(number), by_(by), bytes_(bytes) {}
  void undo() override { number_ -= by_; }
  void redo() override { number_ += by_; }
  size_t bytes() const override { return bytes_; }

 private:
  int& number_;
  int by_;
  size_t bytes_;
};

class Failing : public EditStep {
 public:
  void undo() override { throw Error("cannot"); }
  void redo() override {}
  size_t bytes() const override { return 0; }
};

class EditHistoryTest : public testing::Test {
 protected:
  void add(EditHistory& history, int by, size_t bytes = 10) {
    const std::string before = history.extraState();
    number += by;
    history.push("Add " + std::to_string(by), std::make_unique<Addition>(number, by, bytes),
                 before);
  }
  int number = 0;
};

TEST_F(EditHistoryTest, GoesBackAndForth) {
  EditHistory history;
  int changes = 0;
  keep(history.onChange([&] { ++changes; }));
  history.undo();
  EXPECT_EQ(changes, 0) << "there is nothing to undo";
  add(history, 1);
  add(history, 10);
  EXPECT_EQ(history.undoText(), "Add 10");
  history.undo();
  EXPECT_EQ(number, 1);
  EXPECT_EQ(history.redoText(), "Add 10");
  history.redo();
  history.undo();
  history.undo();
  EXPECT_EQ(number, 0);
  EXPECT_FALSE(history.canUndo());
  history.redo();
  add(history, 5);
  EXPECT_FALSE(history.canRedo()) << "a new edit ends what could be redone";
  EXPECT_EQ(number, 6);
  EXPECT_EQ(changes, 8);
}

TEST_F(EditHistoryTest, ForgetsTheOldestWhenMemoryIsUp) {
  EditHistory history(100);
  for (int i = 0; i < 5; ++i) add(history, 1, 40);
  history.undo();
  history.undo();
  EXPECT_FALSE(history.canUndo()) << "only two of 40 bytes fit";
  EXPECT_EQ(number, 3);
  add(history, 1, 5000);
  EXPECT_TRUE(history.canUndo()) << "the newest stays, however large";
}

TEST_F(EditHistoryTest, BringsTheExtraStateBackWithTheStep) {
  EditHistory history;
  std::string state = "a";
  history.setExtraState([&] { return state; }, [&](const std::string& text) { state = text; });
  const std::string before = history.extraState();
  number = 7;
  state = "b";
  history.push("Change", std::make_unique<Addition>(number, 7), before);
  state = "changed since";
  history.undo();
  EXPECT_EQ(state, "a");
  history.redo();
  EXPECT_EQ(state, "b");
}

TEST_F(EditHistoryTest, AStepThatFailsEndsTheHistory) {
  EditHistory history;
  add(history, 1);
  history.push("Bad", std::make_unique<Failing>(), "");
  EXPECT_THROW(history.undo(), Error);
  EXPECT_FALSE(history.canUndo()) << "what the steps before would find is unknown";
}

}  // namespace
}  // namespace lodex
