// lodex methods: the calculation groups, their methods, and what these take and give.
#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>
#include <set>

#include "basic/Error.h"
#include "basic/Text.h"
#include "cli/CalculationGroups.h"
#include "cli/CliSession.h"

namespace lodex {
namespace {

// The inputs by the names that they go by.
std::vector<std::string> inputNames(const MethodBook& method) {
  std::vector<std::string> names;
  for (int row = 2; row <= method.book.LastRow(method.inputSheet); ++row) {
    std::string name = method.book.TextSRC(method.inputSheet, row, 2);
    if (name.empty()) name = method.book.TextSRC(method.inputSheet, row, 1);
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::vector<std::string> outputNames(const MethodBook& method) {
  std::vector<std::string> names;
  for (int row = 1; row <= method.book.LastRow(method.outputSheet); ++row) {
    std::string name = method.outputName(row);
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

void printMethod(std::ostream& out, const CalculationGroup& group, const std::string& name) {
  const int number = group.MethodIndex(name);
  const MethodBook& method = group.method(number);
  out << "  " << method.name() << '\n';
  out << "    Inputs: " << join(inputNames(method), ", ") << '\n';
  out << "    Outputs: " << join(outputNames(method), ", ") << '\n';
  std::vector<std::string> needed = group.TeeLaskuJono(number);
  std::erase_if(needed, [&](const std::string& other) { return group.MethodIndex(other) == 0; });
  if (!needed.empty()) out << "    Needs: " << join(needed, ", ") << '\n';
}

void printGroup(CommandContext& context, const std::string& name, const SessionRecord& record) {
  CalculationGroup group;
  loadGroup(group, name, record);
  context.out << name << '\n';
  std::set<std::string> printed;
  for (const std::string& method : group.MethodListOrder()) {
    if (printed.insert(toUpper(method)).second) printMethod(context.out, group, method);
  }
  context.found.append(group.found());
}

void runMethods(const std::string& group, CommandContext& context) {
  CliSession console(context);
  const SessionRecord& record = console.session().record;
  if (!group.empty()) return printGroup(context, group, record);
  for (const std::string& name : groupNames(record.CGroupsFolder)) {
    printGroup(context, name, record);
  }
}

}  // namespace

void addMethodsCommand(CLI::App& app, CommandContext& context) {
  auto group = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("methods", "list calculation groups and their methods");
  command->add_option("--group", *group, "only this group, or a folder of workbooks");
  command->callback([group, &context] { runMethods(*group, context); });
}

}  // namespace lodex
