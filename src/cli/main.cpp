#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <new>

#include "cli/Commands.h"

namespace {

// Where the running program lies, whatever name it was called by.
std::string programFolder(const char* calledAs) {
  std::error_code failed;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", failed);
  return (failed ? std::filesystem::absolute(calledAs) : self).parent_path().string();
}

}  // namespace

int main(int argc, char** argv) {
  using namespace lodex;
  CommandContext context{std::cout, std::cerr, {}, programFolder(argv[0])};
  CLI::App app{"Lodex Geo: from chemical assays to mineralogy"};
  app.set_version_flag("--version", "lodex 0.1.0");
  app.add_option("--answer", context.answers, "answer to the next question, may be repeated");
  app.require_subcommand(1);
  addIdentifyCommand(app, context);
  addCalcCommand(app, context);
  addMethodsCommand(app, context);
  addModalCommand(app, context);
  addMineralsCommand(app, context);
  addSqlCommand(app, context);
  addMapCommand(app, context);
  addSaveCommand(app, context);
  addCombineCommand(app, context);
  addExportCommand(app, context);
  addCellsCommand(app, context);
  addConvertCommand(app, context);
  addRecalcCommand(app, context);
  try {
    app.parse(argc, argv);
    std::cout.flush();
    const int status = printFindings(context);
    return std::cout ? status : 1;
  } catch (const CLI::ParseError& wrong) {
    const int status = app.exit(wrong);
    return status == 0 ? 0 : 2;
  } catch (const std::bad_alloc&) {
    printFindings(context);
    std::cerr << "lodex: there is not enough memory for this\n";
    return 1;
  } catch (const std::exception& failure) {
    printFindings(context);
    std::cerr << "lodex: " << failure.what() << '\n';
    return 1;
  }
}
