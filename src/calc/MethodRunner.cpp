#include "calc/MethodRunner.h"

#include <algorithm>
#include <map>

#include "basic/Numbers.h"
#include "basic/Text.h"

namespace lodex {
namespace {

constexpr int valueColumn = 3;
constexpr int needsColumn = 5;

bool hasDecimalComma(std::string_view text) {
  return isNumericText(replaceAll(text, ",", "."));
}

bool isZero(const Value& value) {
  return value.isNumber() && value.asNumber() == 0;
}

}  // namespace

MethodRunner::MethodRunner(CalculationGroup& group, const SourceSheets& sheets,
                           const Worksheet& F1Ref, const CompoundConverter& converter)
    : group_(group),
      sheets_(sheets),
      F1Ref_(F1Ref),
      converter_(converter),
      feeds_(static_cast<size_t>(group.count())),
      rows_(sheets.size()),
      rowOfSample_(sheets.size(), -1) {}

void MethodRunner::startSample(const std::string& sampleId) {
  sampleId_ = sampleId;
  std::fill(rowOfSample_.begin(), rowOfSample_.end(), -1);
  for (Feed& feed : feeds_) feed.state = State::Waiting;
}

void MethodRunner::calculate(int method) {
  for (const int prerequisite : planned(method).queue) compute(prerequisite);
  compute(method);
}

MethodRunner::Feed& MethodRunner::planned(int number) {
  Feed& feed = feeds_[static_cast<size_t>(number) - 1];
  if (feed.planned) return feed;
  feed.planned = true;
  feed.inputs = planInputs(group_, number, sheets_, F1Ref_, converter_);
  feed.written.assign(feed.inputs.size(), Value());
  MethodBook& method = group_.method(number);
  for (const InputRow& input : feed.inputs) {
    method.book.ValueSRC(method.inputSheet, input.row, valueColumn, Value());
  }
  for (const std::string& name : group_.TeeLaskuJono(number)) {
    const int prerequisite = group_.MethodIndex(name);
    if (prerequisite > 0) feed.queue.push_back(prerequisite);
  }
  reportUnfed(method.name(), feed);
  return feed;
}

void MethodRunner::compute(int number) {
  Feed& feed = planned(number);
  if (feed.state != State::Waiting) return;
  feed.state = State::Busy;
  MethodBook& method = group_.method(number);
  FillInput(number, feed);
  findMissing(method.name(), feed);
  fillLinks(method);
  method.book.Recalc();
  feed.state = State::Done;
}

void MethodRunner::FillInput(int number, Feed& feed) {
  MethodBook& method = group_.method(number);
  for (size_t i = 0; i < feed.inputs.size(); ++i) {
    const InputRow& input = feed.inputs[i];
    Value value = accepted(inputValue(input), input, method.name());
    if (value == feed.written[i]) continue;
    method.book.ValueSRC(method.inputSheet, input.row, valueColumn, value);
    feed.written[i] = std::move(value);
  }
}

Value MethodRunner::inputValue(const InputRow& input) {
  if (input.referencedMethod > 0) {
    if (input.referencedRow == 0) return {};
    compute(input.referencedMethod);
    if (feeds_[static_cast<size_t>(input.referencedMethod) - 1].state != State::Done) return {};
    return output(input.referencedMethod, input.referencedRow);
  }
  for (const InputSource& source : input.sources) {
    Value value = ReadItem(source);
    if (!value.isEmpty()) return value;
  }
  return {};
}

Value MethodRunner::ReadItem(const InputSource& source) {
  const int row = sampleRow(source.sheet);
  if (row == 0) return {};
  const Worksheet& cells = *sheets_[source.sheet].cells;
  Value value = cells.ValueRC(row, source.column);
  if (value.kind() == ValueKind::Number || value.kind() == ValueKind::NumericText) {
    return value.asNumber() * source.factor;
  }
  if (value.isText()) return trimBlanks(value.textView()).empty() ? Value() : value;
  // Truth values and errors of a data sheet reach the method as what they read.
  return value.isEmpty() ? value : Value::text(value.asText());
}

// What of a value reaches the method.
Value MethodRunner::accepted(const Value& value, const InputRow& input, const std::string& method) {
  if (!value.isText() || isNumericText(value.textView())) return value;
  const bool isMarked = input.need.kind != InputNeed::Kind::Unsaid;
  const std::string_view text = trimBlanks(value.textView());
  const Place place{.sheet = method, .record = sampleId_};
  if (hasDecimalComma(text)) {
    found_.error(input.name + " has a decimal comma and is not used: write it with a point", place);
    return isMarked ? Value() : value;
  }
  if (!isMarked) return value;
  if (!text.starts_with('<')) return {};
  found_.note(input.name + " below the limit of detection counts as 0", place);
  return value;
}

// Optional inputs without a column are missing in every sample: one remark does for all.
void MethodRunner::reportUnfed(const std::string& method, const Feed& feed) {
  std::vector<std::string> unfed;
  for (const InputRow& input : feed.inputs) {
    const bool isFed = !input.sources.empty() || input.referencedMethod > 0;
    if (input.need.kind == InputNeed::Kind::Optional && !isFed) unfed.push_back(input.name);
  }
  if (unfed.empty()) return;
  found_.note("No column gives " + join(unfed, ", ") + ": counts as 0", {.sheet = method});
}

void MethodRunner::findMissing(const std::string& method, Feed& feed) {
  feed.missing.clear();
  const Place place{.sheet = method, .record = sampleId_};
  std::map<std::string, bool> sets;  // whether any of their inputs has a value
  for (size_t i = 0; i < feed.inputs.size(); ++i) {
    const InputRow& input = feed.inputs[i];
    const bool isMissing = feed.written[i].isEmpty();
    switch (input.need.kind) {
      case InputNeed::Kind::Required:
        if (isMissing) feed.missing.push_back(input.name);
        break;
      case InputNeed::Kind::OneOf:
        // Zeros often fill the columns of what was not analysed.
        sets[input.need.set] = sets[input.need.set] || (!isMissing && !isZero(feed.written[i]));
        break;
      case InputNeed::Kind::Optional:
        if (isMissing && !input.sources.empty()) {
          found_.note(input.name + " is missing and counts as 0", place);
        }
        break;
      case InputNeed::Kind::Unsaid:
        break;
    }
  }
  for (const auto& [set, hasValue] : sets) {
    if (!hasValue) feed.missing.push_back(set);
  }
  if (feed.missing.empty()) return;
  found_.warn("Missing " + join(feed.missing, ", ") + ": results that need it are left empty",
              place);
}

Value MethodRunner::output(int number, int row) const {
  const std::vector<std::string>& missing = feeds_[static_cast<size_t>(number) - 1].missing;
  const MethodBook& method = group_.method(number);
  if (!missing.empty()) {
    if (equalsNoCase(method.outputName(row), "Remark")) {
      return Value::text("missing: " + join(missing, ", "));
    }
    const std::string needs = method.book.TextSRC(method.outputSheet, row, needsColumn);
    if (needsMissing(needs, missing)) return {};
  }
  return method.book.ValueSRC(method.outputSheet, row, valueColumn);
}

int MethodRunner::sampleRow(size_t sheet) {
  int& row = rowOfSample_[sheet];
  if (row >= 0) return row;
  if (!rows_[sheet]) rows_[sheet] = std::make_unique<SampleRows>(sheets_[sheet]);
  row = rows_[sheet]->rowOf(sampleId_);
  return row;
}

// What the map sheet of another method offers; empty where that is missing.
Value MethodRunner::linkedValue(const MethodLink& link) const {
  const Feed& feed = feeds_[static_cast<size_t>(link.sourceMethod) - 1];
  if (feed.state != State::Done) return {};
  const MethodBook& source = group_.method(link.sourceMethod);
  if (!feed.missing.empty()) {
    const std::string name = source.book.TextSRC(source.mapSheet, link.sourceRow, 2);
    const int row = source.outputRow(name);
    return row > 0 ? output(link.sourceMethod, row) : Value();
  }
  return source.book.ValueSRC(source.mapSheet, link.sourceRow, valueColumn);
}

void MethodRunner::fillLinks(MethodBook& method) {
  for (const MethodLink& link : method.links) {
    compute(link.sourceMethod);
    const Value value = linkedValue(link);
    if (method.book.ValueSRC(method.linkSheet, link.row, valueColumn) == value) continue;
    method.book.ValueSRC(method.linkSheet, link.row, valueColumn, value);
  }
}

}  // namespace lodex
