#include "worksheet/formula/References.h"

#include <algorithm>

#include "basic/Limits.h"

namespace lodex::formula {
namespace {

// Moves the ends of a span of rows or columns; false when nothing of it is left.
bool moveSpan(int& first, int& last, int at, int count, int size) {
  if (count >= 0) {
    if (first >= at) first += count;
    if (last >= at) last += count;
    last = std::min(last, size);
    return first <= size;
  }
  const int end = at - count;  // the first place after what is removed
  if (first >= at && last < end) return false;
  if (first >= at) first = first >= end ? first + count : at;
  if (last >= at) last = last >= end ? last + count : at - 1;
  return true;
}

void collect(Node& node, const std::function<bool(Node&)>& change,
             std::vector<const Node*>& changed) {
  const bool candidate = node.kind == NodeKind::Reference || node.kind == NodeKind::Name;
  if (candidate && change(node)) changed.push_back(&node);
  for (Node& child : node.children) collect(child, change, changed);
}

}  // namespace

bool move(Reference& reference, const Movement& movement) {
  if (reference.kind == ReferenceKind::Dead) return false;
  const bool endless =
      reference.kind == (movement.ofRows ? ReferenceKind::Columns : ReferenceKind::Rows);
  if (endless) return false;
  CellRef& a = reference.first;
  CellRef& b = reference.last;
  const int crossFirst = movement.ofRows ? a.column : a.row;
  const int crossLast = movement.ofRows ? b.column : b.row;
  if (crossFirst < movement.first || crossLast > movement.last) return false;
  int first = movement.ofRows ? a.row : a.column;
  int last = movement.ofRows ? b.row : b.column;
  const int size = movement.ofRows ? maxRows : maxColumns;
  const int firstBefore = first;
  const int lastBefore = last;
  if (!moveSpan(first, last, movement.at, movement.count, size)) {
    reference.kind = ReferenceKind::Dead;
    return true;
  }
  (movement.ofRows ? a.row : a.column) = first;
  (movement.ofRows ? b.row : b.column) = last;
  return first != firstBefore || last != lastBefore;
}

std::string rewriteFormula(std::string_view formula, const std::function<bool(Node&)>& change) {
  std::string problem;
  auto root = parseFormula(formula, problem);
  std::string out;
  if (!root) return std::string(formula);
  std::vector<const Node*> changed;
  collect(*root, change, changed);
  std::sort(changed.begin(), changed.end(),
            [](const Node* a, const Node* b) { return a->begin < b->begin; });
  size_t done = 0;
  for (const Node* node : changed) {
    out += formula.substr(done, node->begin - done);
    out += formulaText(*node);
    done = node->end;
  }
  out += formula.substr(done);
  return out;
}

}  // namespace lodex::formula
