// Builds the mineral database of the installation from its texts.

#include <filesystem>
#include <iostream>

#include "basic/Files.h"
#include "chem/ReferenceTables.h"
#include "modal/MineralDatabase.h"

int main(int argc, char** argv) {
  using namespace lodex;
  if (argc != 4) {
    std::cerr << "usage: lodex-builddb MINERALS-FOLDER REFERENCE-FOLDER DATABASE\n";
    return 2;
  }
  try {
    const std::string minerals = argv[1];
    const std::filesystem::path target(argv[3]);
    taulukot tables;
    tables.load(argv[2]);
    if (target.has_parent_path()) std::filesystem::create_directories(target.parent_path());
    const auto report = buildMineralDatabase(
        {minerals + "/minerals.txt", minerals + "/phases.txt", minerals + "/dissolution.txt"},
        tables.F1ELoc, pathText(target));
    for (const auto& warning : report.warnings) std::cerr << "warning: " << warning << '\n';
    std::cout << report.species << " minerals in " << report.compositions << " compositions, "
              << report.phases << " phases, " << report.dissolutionRows << " dissolution rows\n";
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "lodex-builddb: " << failure.what() << '\n';
    return 1;
  }
}
