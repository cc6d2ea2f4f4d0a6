#include "worksheet/CellStore.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace lodex {
namespace {

using Place = std::pair<int, int>;  // row, column

// The store against a plain map, through a long random walk of every operation that moves cells.
class Model {
 public:
  CellStore store;
  std::map<Place, double> cells;

  void set(int row, int column, double value) {
    store.setNumber(row, column, value);
    cells[{row, column}] = value;
  }
  void clearCell(int row, int column) {
    store.set(row, column, Value());
    cells.erase({row, column});
  }
  // Applies `place` to every cell; a row of 0 drops it.
  template <typename Where>
  void move(Where where) {
    std::map<Place, double> moved;
    for (const auto& [place, value] : cells) {
      const Place to = where(place);
      if (to.first > 0) moved[to] = value;
    }
    cells = std::move(moved);
  }

  void check() const {
    int lastRow = 0;
    int lastColumn = 0;
    for (const auto& [place, value] : cells) {
      lastRow = std::max(lastRow, place.first);
      lastColumn = std::max(lastColumn, place.second);
      ASSERT_EQ(store.value(place.first, place.second), Value(value))
          << place.first << "," << place.second;
    }
    ASSERT_EQ(store.lastRow(), lastRow);
    ASSERT_EQ(store.lastColumn(), lastColumn);
    size_t stored = 0;
    store.forEach([&](int, int, const Cell& cell) { stored += cell.kind != ValueKind::Empty; });
    ASSERT_EQ(stored, cells.size());
  }
};

TEST(CellStore, AgreesWithAPlainMapThroughARandomWalk) {
  std::mt19937 random(7);
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  Model model;
  for (int step = 0; step < 3000; ++step) {
    const int at = pick(1, 150);
    const int count = pick(1, 70);
    const int first = pick(1, 6);
    const int last = first + pick(0, 4);
    switch (pick(0, 7)) {
      case 0:
        model.clearCell(at, first);
        break;
      case 1:
        model.store.insertRows(at, count, first, last);
        model.move([&](Place p) {
          const bool moves = p.first >= at && p.second >= first && p.second <= last;
          return moves ? Place(p.first + count, p.second) : p;
        });
        break;
      case 2:
        model.store.deleteRows(at, count, first, last);
        model.move([&](Place p) {
          if (p.first < at || p.second < first || p.second > last) return p;
          return p.first < at + count ? Place(0, 0) : Place(p.first - count, p.second);
        });
        break;
      case 3:
        model.store.insertColumns(first, 2, at, at + count);
        model.move([&](Place p) {
          const bool moves = p.second >= first && p.first >= at && p.first <= at + count;
          return moves ? Place(p.first, p.second + 2) : p;
        });
        break;
      case 4:
        model.store.deleteColumns(first, 2, at, at + count);
        model.move([&](Place p) {
          if (p.second < first || p.first < at || p.first > at + count) return p;
          return p.second < first + 2 ? Place(0, 0) : Place(p.first, p.second - 2);
        });
        break;
      case 5:
        model.store.clear(at, first, at + count, last, true);
        model.move([&](Place p) {
          const bool inside =
              p.first >= at && p.first <= at + count && p.second >= first && p.second <= last;
          return inside ? Place(0, 0) : p;
        });
        break;
      default:
        model.set(at, pick(1, 10), step);
    }
    model.check();
    if (HasFatalFailure()) FAIL() << "at step " << step;
    // Keeps the walk from drifting away.
    if (model.store.lastRow() > 2000 || model.store.lastColumn() > 60) {
      model.store.clear(1, 1, 100000, 1000, true);
      model.cells.clear();
    }
  }
}

TEST(CellStore, RowsAtTheEdgesOfBlocksMoveAndClear) {
  constexpr int block = static_cast<int>(CellStore::blockRows);
  for (const int row : {block - 1, block, 2 * block - 1, 2 * block}) {
    SCOPED_TRACE(row);
    CellStore store;
    store.setNumber(row, 2, 7);
    store.deleteRows(1, 1, 1, 3);
    EXPECT_EQ(store.value(row - 1, 2), Value(7.0));
    EXPECT_EQ(store.lastRow(), row - 1);
    store.insertRows(row - 1, 1, 1, 3);
    EXPECT_EQ(store.value(row, 2), Value(7.0));
    EXPECT_EQ(store.usedInRow(row - 1), 0);
    int seen = 0;
    store.visit(row, 1, row, 3, [&](int, int, const Cell&) { return ++seen > 0; });
    store.visit(1, 1, row - 1, 3, [&](int, int, const Cell&) { return ++seen > 0; });
    EXPECT_EQ(seen, 1);
    store.clear(1, 1, row - 1, 3, true);
    EXPECT_EQ(store.lastRow(), row);
    store.clear(row, 2, row, 2, true);
    EXPECT_EQ(store.lastRow(), 0);
  }
}

TEST(CellStore, FormatsMoveWithTheirCellsAndDoNotCount) {
  CellStore store;
  store.setFormat(5, 2, 3);
  EXPECT_EQ(store.lastRow(), 0);
  store.insertRows(1, 100, 1, 10);
  EXPECT_EQ(store.format(105, 2), 3u);
  EXPECT_EQ(store.format(5, 2), 0u);
  store.set(105, 2, Value::text("x"));
  store.clear(1, 1, 200, 5, false);
  EXPECT_EQ(store.lastRow(), 0);
  EXPECT_EQ(store.format(105, 2), 3u) << "only the content was cleared";
}

TEST(CellStore, TextsAreSharedAndReleased) {
  CellStore a;
  const Value text = Value::text("a rather long text that many cells share");
  for (int row = 1; row <= 100; ++row) a.set(row, 1, text);
  CellStore b = std::move(a);
  EXPECT_EQ(b.value(100, 1), text);
  b.setNumber(100, 1, 1);
  b.set(99, 1, Value::text(""));
  EXPECT_EQ(b.lastRow(), 100);
  b.set(100, 1, Value());
  EXPECT_EQ(b.lastRow(), 98) << "an empty text does not count as content";
}

}  // namespace
}  // namespace lodex
