#pragma once

#include <string>
#include <string_view>

#include "modal/AssaySheet.h"
#include "modal/MineralData.h"
#include "worksheet/Worksheet.h"

namespace lodex {

struct MappedDatabase;
class frmResult;

/// A sample database as a source of assays.
struct StoredSource {
  MappedDatabase* database = nullptr;
  /// Name of a stored filter without its "f_"; "" for all samples; "-1" for `selection`.
  std::string filter;
  /// The table or view that holds the samples selected by hand.
  std::string selection;
};

/// The method in a text table + " | " + field: the field is split at " ", then "_", then "/", and
/// the first split into three pieces with something in the last one gives that piece; else "".
std::string MethodOfField(std::string_view text);

/// The same for fields as saving names them, "SiO2/XRF/%", with the unit last and the method in the
/// middle; `firstMethod` when there is none.
std::string methodOfStored(std::string_view text);

/// What the name of a field says: "Cu/ppm" and "SiO2/XRF/%" name element, method and unit, other
/// names are those of the element location table, such as "FeOtot %".
AssayColumn describeField(std::string_view table, std::string_view field, const Worksheet& F1ELoc);

/// The table with a record for every sample: the one below the view @Samples, else Sample,
/// else, of the tables with a key of one field, the one with the most records. Throws Error when
/// there is none.
std::string sampleMasterTable(MappedDatabase& database);

/// Fills the method map F1Ref: row = row of F1ELoc, then pairs of columns, the table's row and the
/// field's column in F1Key2, for every field that holds a value of that element. Reports
/// fields that look like assays and cannot be used.
void buildMethodMap(const StoredSource& source, const Worksheet& F1ELoc, Worksheet& F1Ref,
                    Findings& found);

/// Fills F1Ini, F1Kirja and SampleIDs from the tables of a method map. Null leaves a cell
/// empty, and so does text that is not a number, which is reported. Throws Error when the map names
/// no field or the filter cannot be used.
void retrieveStoredAssays(const StoredSource& source, const Worksheet& F1Ref,
                          const Worksheet& F1ELoc, ModalLists& lists, frmResult& result,
                          const Watch& watch);

}  // namespace lodex
