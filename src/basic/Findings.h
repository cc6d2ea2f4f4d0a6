#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What an operation noticed, and how it ended. Readers, identification, saving, calculating and
/// solving all return these; windows show them as a report, `lodex` prints them and takes its exit
/// status from them.
namespace lodex {

enum class Severity {
  Note,     // how something was understood; nothing is missing
  Warning,  // looks wrong, or was guessed; nothing is missing
  Error,    // something was left out, lost or not done
};

/// Where something was noticed. What does not apply is empty or 0; rows and columns count from 1.
struct Place {
  std::string file{};   // or database
  std::string sheet{};  // or table
  int row = 0;
  int column = 0;
  std::string record{};  // sample identifier or key

  bool operator==(const Place&) const = default;
};

/// The place as words, such as "ores.xls, sheet Cu, B14, record LX-7"; "" for an empty place.
/// Of the file only its name is shown.
std::string describe(const Place& place);

/// One sentence with how often and where it applies.
struct Finding {
  Severity severity = Severity::Note;
  std::string text;           // a sentence without its place and without a full stop
  std::vector<Place> places;  // the first ones, at most Findings::placesKept; never empty
  size_t count = 0;           // of all places
};

/// The finding as one line: its first place, text and, from 2 on, how often:
/// "ores.xls, sheet Cu, B14: text counted as 0 (312 times)".
std::string describe(const Finding& finding);

/// Findings in the order in which they came up. Those that agree in severity, text, file and sheet
/// are one finding with a count, so a text should not contain what differs from cell to cell.
class Findings {
 public:
  static constexpr size_t placesKept = 100;
  /// Different findings beyond this number are only counted: a damaged file must not fill memory.
  static constexpr size_t findingsKept = 1000;

  void add(Severity severity, std::string_view text, const Place& place = {}, size_t count = 1);
  void note(std::string_view text, const Place& place = {}) { add(Severity::Note, text, place); }
  void warn(std::string_view text, const Place& place = {}) { add(Severity::Warning, text, place); }
  void error(std::string_view text, const Place& place = {}) { add(Severity::Error, text, place); }
  /// Adds all of another list.
  void append(const Findings& other);
  /// Names the file in all places that name none: readers of content do not know it.
  void nameFile(std::string_view file);
  void clear() { *this = {}; }

  bool empty() const { return all_.empty(); }
  const std::vector<Finding>& all() const { return all_; }
  bool hasErrors() const { return count(Severity::Error) > 0; }
  /// How many places of that severity there are.
  size_t count(Severity severity) const { return counts_[static_cast<size_t>(severity)]; }

 private:
  Finding* find(Severity severity, std::string_view text, const Place& place);

  std::vector<Finding> all_;
  std::unordered_map<std::string, size_t> index_;  // by severity, text, file and sheet
  size_t counts_[3] = {};
};

enum class Ended { Done, Aborted, Failed };

/// How a long operation ended, and what it noticed on the way.
struct Outcome {
  Ended ended = Ended::Done;
  /// Aborted: after what, such as "after sample LX-1041, 212 of 2,000"; failed: why.
  std::string reason{};
  Findings found{};

  bool done() const { return ended == Ended::Done; }
  bool aborted() const { return ended == Ended::Aborted; }
  bool failed() const { return ended == Ended::Failed; }
  /// 0 when done and nothing was left out, else 1.
  int exitStatus() const { return done() && !found.hasErrors() ? 0 : 1; }
};

}  // namespace lodex
