#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "import/frmDataIN.h"

namespace lodex {

/// A data sheet as it was at the last autosave.
struct SavedSheet {
  std::string caption;
  SheetStructure structure;
  bool identified = false;
  std::string table;       // snapshot of F1D
  std::string references;  // snapshot of its F1Ref

  /// Puts everything back into an empty sheet of the list. Throws Error for a damaged snapshot.
  void restore(frmDataIN& sheet) const;
};

/// Copies of edited data sheets that were not saved, for the case that the program does not end as
/// it should. Every process has a folder of its own below `folder`, locked as long as it lives: the
/// folder of a process that is gone is free to take. A failure to write is no error of the user's;
/// `problem` says why.
class Autosave {
 public:
  /// Nothing is written before the first copy.
  explicit Autosave(std::string folder) : folder_(std::move(folder)) {}
  ~Autosave();
  Autosave(const Autosave&) = delete;
  Autosave& operator=(const Autosave&) = delete;

  /// Writes a copy of each sheet that was edited since its last copy, and removes the copies of
  /// sheets that are closed or saved. Each file is replaced as a whole.
  void save(const std::vector<frmDataIN*>& sheets);
  /// The clean end: removes all copies of this process.
  void clear();
  /// Why the last copy could not be written; "" when it could.
  const std::string& problem() const { return problem_; }

  /// Copies that processes left which are gone, oldest process first. Files that are no copies are
  /// passed over.
  std::vector<SavedSheet> leftovers() const;
  /// Removes what `leftovers` reads.
  void removeLeftovers();

 private:
  struct Copy {
    std::string file;
    std::uint64_t revision = 0;
  };
  bool claimFolder();
  void saveOne(const frmDataIN& sheet);
  std::vector<std::string> abandonedFolders() const;

  std::string folder_;
  std::string own_;  // the folder of this process, "" before the first copy
  int lock_ = -1;
  int files_ = 0;
  std::map<const frmDataIN*, Copy> copies_;
  std::string problem_;
};

}  // namespace lodex
