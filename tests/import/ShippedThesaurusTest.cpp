#include <gtest/gtest.h>

#include <cctype>
#include <set>

#include "basic/Files.h"
#include "basic/Text.h"
#include "chem/CompoundConverter.h"
#include "chem/Elements.h"
#include "chem/Headings.h"
#include "import/Identification.h"
#include "import/SystemRows.h"
#include "import/ThesaurusStep.h"
#include "import/frmSynonLib.h"

namespace lodex {
namespace {

const std::string kIni = std::string(LODEX_SOURCE_DIR) + "/data/ini/";

std::vector<std::vector<std::string>> rowsOf(const std::string& file) {
  std::vector<std::vector<std::string>> rows;
  for (const auto& line : split(readFile(kIni + file), "\n")) {
    if (!line.empty()) rows.push_back(split(line, "\t"));
  }
  return rows;
}

const ThesaurusIndex& shipped() {
  static const ThesaurusIndex index = [] {
    Worksheet library;
    const auto rows = rowsOf("SynonLib.txt");
    for (size_t r = 1; r < rows.size(); ++r) {
      for (size_t c = 0; c < rows[r].size(); ++c) {
        library.TextRC(static_cast<int>(r), static_cast<int>(c) + 1, rows[r][c]);
      }
    }
    return ThesaurusIndex(library);
  }();
  return index;
}

TEST(ShippedThesaurus, RulesAreWellFormed) {
  const auto rows = rowsOf("SynonLib.txt");
  ASSERT_GT(rows.size(), 150U);
  ASSERT_EQ(rows[0], std::vector<std::string>(thesaurusHeadings.begin(), thesaurusHeadings.end()));
  const std::set<std::string> units = {"", "-", "%", "ppm", "ppb"};
  const std::set<std::string> items = {"", "LOI", "Total", "Moisture"};
  const CompoundConverter converter;
  std::set<std::pair<std::string, std::string>> seen;
  for (size_t r = 1; r < rows.size(); ++r) {
    SCOPED_TRACE(rows[r][0]);
    ASSERT_EQ(rows[r].size(), thesaurusHeadings.size());
    const std::string& where = rows[r][1];
    EXPECT_TRUE(where == "HEADER" || where == "ELEMENT" || where == "METHOD") << where;
    EXPECT_EQ(rows[r][0], trimBlanks(rows[r][0]));
    EXPECT_TRUE(seen.insert({rows[r][0], where}).second) << "a second rule for this text";
    std::string element = rows[r][3];
    if (!items.count(element)) {
      EXPECT_TRUE(converter.IsCompound(withoutTotal(element))) << element;
      EXPECT_GT(ElementNumber(element), 0);
    }
    EXPECT_TRUE(units.count(rows[r][5])) << rows[r][5];
    // A column without an element is only saved with a table, a field and a type.
    const bool placed = !rows[r][6].empty();
    EXPECT_EQ(placed, !rows[r][7].empty());
    EXPECT_EQ(placed, !rows[r][8].empty());
  }
}

struct Heading {
  const char *text, *element, *method, *unit;
};

class ShippedThesaurusHeadings : public testing::TestWithParam<Heading> {};

TEST_P(ShippedThesaurusHeadings, AreUnderstood) {
  Worksheet sheet;
  sheet.TextRC(1, 1, "Sample");
  sheet.TextRC(1, 2, GetParam().text);
  sheet.TextRC(2, 1, "A-1");
  sheet.NumberRC(2, 2, 1.5);
  SheetStructure structure;
  const DescribedSheet described{sheet, structure};
  LogLines log;
  autoIdentify(described, &shipped(), "", log);
  const int column = 3;  // the captions came in front
  EXPECT_EQ(described.text(sysrow::Header, column), GetParam().text);
  EXPECT_EQ(described.text(sysrow::Element, column), GetParam().element);
  EXPECT_EQ(described.text(sysrow::Method, column), GetParam().method);
  EXPECT_EQ(described.text(sysrow::Unit, column), GetParam().unit);
}

INSTANTIATE_TEST_SUITE_P(
    LaboratorySpellings, ShippedThesaurusHeadings,
    testing::Values(
        Heading{"SiO2", "SiO2", "", "%"}, Heading{"SiO2 %", "SiO2", "", "%"},
        Heading{"SiO2 (%)", "SiO2", "", "%"}, Heading{"SiO2_%", "SiO2", "", "%"},
        Heading{"SiO2 wt%", "SiO2", "", "%"}, Heading{"SiO2 (wt.%)", "SiO2", "", "%"},
        Heading{"SIO2_PCT", "SiO2", "", "%"}, Heading{"NA2O %", "Na2O", "", "%"},
        Heading{"K2O_XRF", "K2O", "XRF", "%"}, Heading{"MgO XRF (%)", "MgO", "XRF", "%"},
        Heading{"ME-XRF26 SiO2 %", "SiO2", "ME-XRF26", "%"}, Heading{"TiO2 m-%", "TiO2", "", "%"},
        // Total iron stays apart from the oxide that was analysed.
        Heading{"Fe2O3", "Fe2O3", "", "%"}, Heading{"FeO %", "FeO", "", "%"},
        Heading{"Fe2O3T", "Fe2O3tot", "", "%"}, Heading{"Fe2O3(T) %", "Fe2O3tot", "", "%"},
        Heading{"Fe2O3T XRF (%)", "Fe2O3tot", "XRF", "%"}, Heading{"FE2O3T_%", "Fe2O3tot", "", "%"},
        Heading{"TFe2O3 %", "Fe2O3tot", "", "%"}, Heading{"Fe2O3 total", "Fe2O3tot", "", "%"},
        Heading{"Fe2O3tot wt%", "Fe2O3tot", "", "%"}, Heading{"FeOtot %", "FeOtot", "", "%"},
        Heading{"FeOT", "FeOtot", "", "%"}, Heading{"FeO* %", "FeOtot", "", "%"},
        Heading{"FeO (total) wt%", "FeOtot", "", "%"},
        Heading{"FeO (tot) (wt.%)", "FeOtot", "", "%"}, Heading{"Fe2O3_TOT %", "Fe2O3tot", "", "%"},
        Heading{"FeO tot. %", "FeOtot", "", "%"}, Heading{"Fe2O3-T", "Fe2O3tot", "", "%"},
        Heading{"SiO2 (Gew.%)", "SiO2", "", "%"}, Heading{"MgO Gew.-%", "MgO", "", "%"},
        Heading{"LOI %", "LOI", "", "%"}, Heading{"L.O.I.", "LOI", "", "%"},
        Heading{"H2O+ %", "H2O", "", "%"}, Heading{"H2O- %", "Moisture", "", "%"},
        Heading{"S_LECO", "S", "LECO", "%"}, Heading{"Stot", "S", "TOT", "%"},
        Heading{"Stot %", "S", "TOT", "%"}, Heading{"C_leco_%", "C", "LECO", "%"},
        Heading{"Cu_ppm", "Cu", "", "ppm"}, Heading{"Cu (ppm)", "Cu", "", "ppm"},
        Heading{"Cu ppm ICP", "Cu", "ICP", "ppm"}, Heading{"Cu_XRF_%", "Cu", "XRF", "%"},
        Heading{"ME-ICP61 Cu ppm", "Cu", "ME-ICP61", "ppm"},
        Heading{"Ni_bm_ppm", "Ni", "BM", "ppm"}, Heading{"CO_PPM", "Co", "", "ppm"},
        Heading{"CO_BM_PPM", "Co", "BM", "ppm"}, Heading{"Au-AA23 Au ppm", "Au", "Au-AA23", "ppm"},
        Heading{"Au g/t", "Au", "", "ppm"}, Heading{"PT_PPB", "Pt", "", "ppb"},
        Heading{"Zr", "Zr", "", "ppm"}, Heading{"SiO2 ", "SiO2", "", "%"},
        Heading{"V mg/kg", "V", "", "ppm"}, Heading{"U \xC2\xB5g/g", "U", "", "ppm"},
        Heading{"TiO2 wt pct", "TiO2", "", "%"},
        // known from nothing: a bare ore element may be per cent or ppm, and Y may be a coordinate
        Heading{"Cu", "", "", ""}, Heading{"Y", "", "", ""}, Heading{"CO2", "CO2", "", "%"}),
    [](const auto& heading) {
      std::string name = std::to_string(heading.index) + "_";
      for (const char* c = heading.param.text; *c; ++c) {
        name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
      }
      return name;
    });

TEST(ShippedThesaurus, SampleColumnsBehindTheFirstAreNamed) {
  for (const char* text : {"SAMPLE_ID", "SampleID", "Sample No", "N\xC3\xA4yte", "SampleNo"}) {
    Worksheet sheet;
    sheet.TextRC(1, 1, "Hole");
    sheet.TextRC(1, 2, text);
    sheet.TextRC(2, 1, "R-1");
    sheet.TextRC(2, 2, "A-1");
    SheetStructure structure;
    const DescribedSheet described{sheet, structure};
    LogLines log;
    autoIdentify(described, &shipped(), "", log);
    EXPECT_EQ(described.text(sysrow::Field, 3), "SampleNo") << text;
  }
}

}  // namespace
}  // namespace lodex
