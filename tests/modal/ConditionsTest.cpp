#include "modal/Conditions.h"

#include <gtest/gtest.h>

#include "ModalFixture.h"

namespace lodex {
namespace {

TEST(Testaa, MineralsAndElements) {
  ModalFixture f;
  f.round({{"M/Py/1"}}, {assayLine("S", 3)});
  f.mineral(1, {{3, 50}});
  f.assays({"1"}, {3, 1}, {{5, 0.25}});
  f.run();
  struct Row {
    const char* condition;
    bool expected;
  } rows[] = {
      {"M:Py=10", true},       {"M:Py <> 10", false},
      {"M:Py>=10.0", true},    {"M:Py<10", false},
      {"M:Py='10.000'", true}, {"M:Py>9.999", true},
      {"M:Py='x'", false},     {"M:Po=0", false},
      {"E:Cu/XRF=0.25", true}, {"E:CuO/XRF<=0.2", false},
      {"E:S/XRF<1E-9", true},  {"E:S/BM<1", false},
      {"E:S<1", false},        {"Py=10", false},
      {"M:Py", false},         {"", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Testaa(row.condition, f.result, f.F1ELoc, 1), row.expected) << row.condition;
  }
  EXPECT_FALSE(Testaa("M:Py=10", f.result, f.F1ELoc, 2));
}

}  // namespace
}  // namespace lodex
