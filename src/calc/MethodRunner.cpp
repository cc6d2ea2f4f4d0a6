#include "calc/MethodRunner.h"

#include <algorithm>

#include "basic/Text.h"

namespace lodex {
namespace {

constexpr int valueColumn = 3;

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
  return feed;
}

void MethodRunner::compute(int number) {
  Feed& feed = planned(number);
  if (feed.state != State::Waiting) return;
  feed.state = State::Busy;
  MethodBook& method = group_.method(number);
  FillInput(number, feed);
  fillLinks(method);
  method.book.Recalc();
  feed.state = State::Done;
}

void MethodRunner::FillInput(int number, Feed& feed) {
  MethodBook& method = group_.method(number);
  for (size_t i = 0; i < feed.inputs.size(); ++i) {
    const InputRow& input = feed.inputs[i];
    Value value = inputValue(input);
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
    const MethodBook& other = group_.method(input.referencedMethod);
    return other.book.ValueSRC(other.outputSheet, input.referencedRow, valueColumn);
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

int MethodRunner::sampleRow(size_t sheet) {
  int& row = rowOfSample_[sheet];
  if (row >= 0) return row;
  if (!rows_[sheet]) rows_[sheet] = std::make_unique<SampleRows>(sheets_[sheet]);
  row = rows_[sheet]->rowOf(sampleId_);
  return row;
}

void MethodRunner::fillLinks(MethodBook& method) {
  for (const MethodLink& link : method.links) {
    compute(link.sourceMethod);
    const MethodBook& source = group_.method(link.sourceMethod);
    const bool done = feeds_[static_cast<size_t>(link.sourceMethod) - 1].state == State::Done;
    const Value value =
        done ? source.book.ValueSRC(source.mapSheet, link.sourceRow, valueColumn) : Value();
    if (method.book.ValueSRC(method.linkSheet, link.row, valueColumn) == value) continue;
    method.book.ValueSRC(method.linkSheet, link.row, valueColumn, value);
  }
}

}  // namespace lodex
