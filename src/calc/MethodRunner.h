#pragma once

#include <memory>
#include <string>
#include <vector>

#include "calc/CalculationGroup.h"
#include "calc/InputPlan.h"
#include "calc/SourceSheet.h"

namespace lodex {

/// Feeds samples through the methods of a group. The columns of every input are looked up once;
/// per sample only inputs that differ from those of the sample before are written.
///
/// Each method is computed at most once per sample. What it takes from other methods, by reference
/// or by link, is computed first; methods that need each other in a circle get nothing from there.
class MethodRunner {
 public:
  /// All arguments are used until the runner goes; sheets and map must not change meanwhile.
  MethodRunner(CalculationGroup& group, const SourceSheets& sheets, const Worksheet& F1Ref,
               const CompoundConverter& converter);

  void startSample(const std::string& sampleId);

  /// Brings the outputs of a method up to date for the sample: its prerequisites, its inputs, its
  /// formulas. A prerequisite that nobody knows is passed over.
  void calculate(int method);

 private:
  enum class State { Waiting, Busy, Done };
  struct Feed {
    bool planned = false;
    std::vector<InputRow> inputs;
    std::vector<Value> written;  // per input
    std::vector<int> queue;
    State state = State::Waiting;
  };

  Feed& planned(int method);
  void compute(int method);
  void FillInput(int method, Feed& feed);
  void fillLinks(MethodBook& method);
  Value inputValue(const InputRow& input);
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
};

}  // namespace lodex
