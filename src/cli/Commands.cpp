#include "cli/Commands.h"

#include <ostream>

namespace lodex {
namespace {

const char* prefixOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "lodex: error: ";
    case Severity::Warning:
      return "lodex: warning: ";
    default:
      return "lodex: ";
  }
}

}  // namespace

int printFindings(const CommandContext& context) {
  for (const Finding& finding : context.found.all()) {
    context.err << prefixOf(finding.severity) << describe(finding) << '\n';
  }
  return context.found.hasErrors() ? 1 : 0;
}

}  // namespace lodex
