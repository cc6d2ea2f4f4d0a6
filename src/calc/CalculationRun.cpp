#include "calc/CalculationRun.h"

#include <algorithm>

#include "basic/Error.h"
#include "calc/MethodRunner.h"
#include "calc/SampleJoin.h"
#include "session/AbortReason.h"

namespace lodex {
namespace {

struct QueuedMethod {
  int number = 0;
  double priority = 0;
};

// The methods of the request by rising priority; equal ones keep the order of the list.
std::vector<QueuedMethod> queueOf(const CalculationRequest& request) {
  const std::vector<std::string> listed = request.group.MethodListOrder();
  std::vector<QueuedMethod> queue;
  for (const std::string& name : request.methods) {
    const int number = request.group.MethodIndex(name);
    const bool known = std::any_of(queue.begin(), queue.end(), [&](const QueuedMethod& method) {
      return method.number == number;
    });
    if (number == 0 || known) continue;
    const auto place = std::find(listed.begin(), listed.end(), name) - listed.begin() + 1;
    queue.push_back({number, request.group.MethodPriority(number, static_cast<int>(place))});
  }
  std::stable_sort(queue.begin(), queue.end(), [](const QueuedMethod& a, const QueuedMethod& b) {
    return a.priority < b.priority;
  });
  return queue;
}

std::vector<std::string> namesOf(const CalculationRequest& request) {
  std::vector<std::string> names;
  for (const std::string& name : request.methods) {
    const int number = request.group.MethodIndex(name);
    if (number > 0) names.push_back(request.group.method(number).name());
  }
  return names;
}

// The identifier as the sheet has it in which the sample was found first.
Value identifierOf(const SourceSheets& sheets, const SampleTable& A2, int sample) {
  const SourceSheet* sheet = findSheet(sheets, std::stoi(A2.Cell(2, sample)));
  const int row = std::stoi(A2.Cell(3, sample));
  const Value value = sheet->cells->ValueRC(row, sheet->structure.idColumn);
  // A number under a format that shows less than it holds is the text that was joined on.
  const std::string& id = A2.Cell(1, sample);
  return value.asText() == id ? value : Value::stored(id);
}

std::string progressText(int sample, int samples, const std::string& id, int errors) {
  return "Calculating sample " + std::to_string(sample) + "; " + id + "/" +
         std::to_string(samples) + "... [Errors=" + std::to_string(errors) + "]";
}

class Run {
 public:
  explicit Run(const CalculationRequest& request)
      : request_(request),
        queue_(queueOf(request)),
        runner_(request.group, request.sheets, request.F1Ref, request.converter),
        results_(request.results, keyFieldOf(request.sheets),
                 request.keptResults.value_or(resultStructure())) {}

  CalculationOutcome run() {
    Findings& found = outcome_.outcome.found;
    const SampleJoin join = joinSamples(
        request_.sheets, [&](std::string_view line) { log(line, LogKind::Both); }, found);
    const SampleTable& A2 = join.A2;
    outcome_.samples = A2.RowCount();
    outcome_.ErrorCount = join.duplicates;
    log(std::to_string(A2.RowCount()) + " rows found.", LogKind::Log);
    const std::vector<std::string> names = namesOf(request_);
    if (request_.keptResults) {
      results_.addSheets(names);
    } else {
      results_.reset(names);
    }
    for (int sample = 1; sample <= A2.RowCount(); ++sample) {
      const std::string& id = A2.Cell(1, sample);
      const std::string text = progressText(sample, A2.RowCount(), id, outcome_.ErrorCount);
      if (request_.nextSample && !request_.nextSample(text, sample, A2.RowCount())) {
        abort(A2, sample);
        break;
      }
      runner_.startSample(id);
      results_.startSample(identifierOf(request_.sheets, A2, sample));
      for (const QueuedMethod& method : queue_) calculate(method.number, id);
      ++outcome_.calculated;
    }
    results_.finish();
    logFindings(runner_.found());
    found.append(runner_.found());
    return outcome_;
  }

 private:
  void log(std::string_view line, LogKind kind) const {
    if (request_.log) request_.log(line, kind);
  }

  // Findings that the run has not logged yet in words of its own.
  void logFindings(const Findings& findings) const {
    for (const Finding& finding : findings.all()) {
      const bool isError = finding.severity == Severity::Error;
      log(describe(finding), isError ? LogKind::Both : LogKind::Log);
    }
  }

  void abort(const SampleTable& A2, int sample) {
    outcome_.outcome.ended = Ended::Aborted;
    const std::string last = sample > 1 ? A2.Cell(1, sample - 1) : std::string();
    outcome_.outcome.reason = abortReason(last, outcome_.calculated, A2.RowCount());
  }

  // A method that fails on a sample does not keep the others from it.
  void calculate(int number, const std::string& id) {
    const MethodBook& method = request_.group.method(number);
    try {
      runner_.calculate(number);
      results_.WriteResults(method, [&](int row) { return runner_.output(number, row); });
    } catch (const Error& error) {
      ++outcome_.ErrorCount;
      log(" Error: Sample " + id + ", " + method.name() + ": " + error.what(), LogKind::Both);
      outcome_.outcome.found.error("The method failed: " + std::string(error.what()),
                                   {.sheet = method.name(), .record = id});
    }
  }

  const CalculationRequest& request_;
  std::vector<QueuedMethod> queue_;
  MethodRunner runner_;
  ResultSheets results_;
  CalculationOutcome outcome_;
};

}  // namespace

KeyField keyFieldOf(const SourceSheets& sheets) {
  KeyField key;
  for (const SourceSheet& sheet : sheets) {
    if (!sheet.selected) continue;
    const int column = sheet.structure.idColumn;
    if (key.name.empty()) key.name = sheet.text(sysrow::Field, column);
    if (key.type.empty()) key.type = sheet.text(sysrow::Type, column);
  }
  return key;
}

CalculationOutcome runCalculation(const CalculationRequest& request) {
  return Run(request).run();
}

}  // namespace lodex
