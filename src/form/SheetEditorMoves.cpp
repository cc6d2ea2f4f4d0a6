#include "form/SheetEditorMoves.h"

namespace lodex {
namespace {

// One axis of the sheet as seen from a place on it.
struct Walk {
  const Worksheet& sheet;
  bool vertical;
  int step;

  Walk(const Worksheet& book, Direction direction)
      : sheet(book),
        vertical(direction == Direction::Up || direction == Direction::Down),
        step(direction == Direction::Down || direction == Direction::Right ? 1 : -1) {}

  int end() const { return step < 0 ? 1 : vertical ? sheet.MaxRow() : sheet.MaxCol(); }
  bool hidden(int at) const {
    return vertical ? sheet.rowHidden(sheet.Sheet(), at) : sheet.columnHidden(sheet.Sheet(), at);
  }
  int& of(CellPlace& place) const { return vertical ? place.row : place.column; }
  // Behind the last used cell there is nothing to find.
  bool mayHoldContent(const CellPlace& place) const {
    return place.row <= sheet.LastRow() && place.column <= sheet.LastCol();
  }
  bool used(const CellPlace& place) const {
    return mayHoldContent(place) && sheet.HasContent(place.row, place.column);
  }
};

}  // namespace

CellPlace neighbour(const Worksheet& sheet, CellPlace from, Direction direction) {
  const Walk walk(sheet, direction);
  CellPlace place = from;
  while (walk.of(place) != walk.end()) {
    walk.of(place) += walk.step;
    if (!walk.hidden(walk.of(place))) return place;
  }
  return from;
}

CellPlace jump(const Worksheet& sheet, CellPlace from, Direction direction) {
  const Walk walk(sheet, direction);
  CellPlace place = neighbour(sheet, from, direction);
  if (place == from) return from;
  if (walk.used(from) && walk.used(place)) {
    for (;;) {
      const CellPlace next = neighbour(sheet, place, direction);
      if (next == place || !walk.used(next)) return place;
      place = next;
    }
  }
  while (!walk.used(place)) {
    if (walk.step > 0 && !walk.mayHoldContent(place)) {
      // To the end, and from there back to what can be seen.
      walk.of(place) = walk.end();
      if (!walk.hidden(walk.of(place))) return place;
      return neighbour(sheet, place, walk.vertical ? Direction::Up : Direction::Left);
    }
    const CellPlace next = neighbour(sheet, place, direction);
    if (next == place) return place;
    place = next;
  }
  return place;
}

CellPlace lastUsedCell(const Worksheet& sheet) {
  return {std::clamp(sheet.LastRow(), 1, sheet.MaxRow()),
          std::clamp(sheet.LastCol(), 1, sheet.MaxCol())};
}

CellPlace nextInBlock(const Worksheet& sheet, const CellBlock& block, CellPlace from, bool byRows,
                      bool backwards) {
  const auto hidden = [&](const CellPlace& place) {
    return sheet.rowHidden(sheet.Sheet(), place.row) ||
           sheet.columnHidden(sheet.Sheet(), place.column);
  };
  const int step = backwards ? -1 : 1;
  const auto advance = [&](int& at, int first, int last) {
    at += step;
    if (at >= first && at <= last) return false;
    at = backwards ? last : first;
    return true;
  };
  CellPlace place = from;
  // Stops after one round, and where so much is hidden that a search would take long.
  constexpr long long mostTried = 1 << 21;
  for (long long tried = std::min(mostTried, 1LL * block.rows() * block.columns()); tried > 0;
       --tried) {
    if (byRows) {
      if (advance(place.column, block.column1, block.column2)) {
        advance(place.row, block.row1, block.row2);
      }
    } else if (advance(place.row, block.row1, block.row2)) {
      advance(place.column, block.column1, block.column2);
    }
    if (!hidden(place)) break;
  }
  return place;
}

}  // namespace lodex
