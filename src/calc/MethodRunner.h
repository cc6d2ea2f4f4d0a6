#pragma once

#include <memory>
#include <string>
#include <vector>

#include "basic/Findings.h"
#include "calc/CalculationGroup.h"
#include "calc/InputPlan.h"
#include "calc/SourceSheet.h"

namespace lodex {

/// Feeds samples through the methods of a group. The columns of every input are looked up once;
/// per sample only inputs that differ from those of the sample before are written.
///
/// Inputs that a method marks as required or optional take numbers and values below a limit of
/// detection ("<0.01"); any other text counts as missing there.
///
/// Each method is computed at most once per sample. What it takes from other methods, by reference
/// or by link, is computed first; methods that need each other in a circle get nothing from each
/// other.
class MethodRunner {
 public:
  /// All arguments are used until the runner goes; sheets and map must not change meanwhile.
  MethodRunner(CalculationGroup& group, const SourceSheets& sheets, const Worksheet& F1Ref,
               const CompoundConverter& converter);

  void startSample(const std::string& sampleId);

  /// Brings the outputs of a method up to date for the sample: its prerequisites, its inputs, its
  /// formulas. A prerequisite that nobody knows is passed over.
  void calculate(int method);

  /// The value in a row of the Output sheet of a calculated method. It is empty where an input that
  /// it needs is missing; the output "Remark" then lists what is missing.
  Value output(int method, int row) const;

  /// What the inputs of all samples so far gave cause to report.
  const Findings& found() const { return found_; }

 private:
  enum class State { Waiting, Busy, Done };
  struct Feed {
    bool planned = false;
    std::vector<InputRow> inputs;
    std::vector<Value> written;        // per input
    std::vector<std::string> missing;  // required inputs, and sets without any value
    std::vector<int> queue;
    State state = State::Waiting;
  };

  Feed& planned(int method);
  void compute(int method);
  void FillInput(int method, Feed& feed);
  void findMissing(const std::string& method, Feed& feed);
  void reportUnfed(const std::string& method, const Feed& feed);
  void fillLinks(MethodBook& method);
  Value linkedValue(const MethodLink& link) const;
  Value inputValue(const InputRow& input);
  Value accepted(const Value& value, const InputRow& input, const std::string& method);
  Value ReadItem(const InputSource& source);
  int sampleRow(size_t sheet);

  CalculationGroup& group_;
  const SourceSheets& sheets_;
  const Worksheet& F1Ref_;
  const CompoundConverter& converter_;
  std::vector<Feed> feeds_;                        // by method, from 0
  std::vector<std::unique_ptr<SampleRows>> rows_;  // by sheet, made when first needed
  std::vector<int> rowOfSample_;                   // by sheet; -1 while not looked up
  std::string sampleId_;
  Findings found_;
};

}  // namespace lodex
