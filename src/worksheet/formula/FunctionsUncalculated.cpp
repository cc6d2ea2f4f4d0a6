// Functions that files may hold and that are not calculated here. With their rows the cells keep
// their formulas when they are saved; recalculation reports them and keeps their last values.
#include <algorithm>

#include "worksheet/formula/Functions.h"

namespace lodex::formula {
namespace {

constexpr FunctionInfo numbered[] = {
    {"ABSREF", 2, 2, 79, "VR", notCalculated},
    {"RELREF", 2, 2, 80, "R", notCalculated},
    {"CALLER", 0, 0, 89, "", notCalculated},
    {"DEREF", 1, 1, 90, "R", notCalculated},
    {"WINDOWS", 0, 2, 91, "V", notCalculated},
    {"DOCUMENTS", 0, 2, 93, "V", notCalculated},
    {"ACTIVE.CELL", 0, 0, 94, "", notCalculated},
    {"SELECTION", 0, 0, 95, "", notCalculated},
    {"GET.FORMULA", 1, 1, 106, "R", notCalculated},
    {"GET.NAME", 1, 2, 107, "V", notCalculated},
    {"GET.DEF", 1, 3, 145, "V", notCalculated},
    {"REFTEXT", 1, 2, 146, "RV", notCalculated},
    {"TEXTREF", 1, 2, 147, "V", notCalculated},
    {"CALL", 1, anyNumber, 150, "VR", notCalculated},
    {"FILES", 0, 2, 166, "V", notCalculated},
    {"GET.CELL", 1, 2, 185, "VR", notCalculated},
    {"GET.WORKSPACE", 1, 1, 186, "V", notCalculated},
    {"GET.WINDOW", 1, 2, 187, "V", notCalculated},
    {"GET.DOCUMENT", 1, 2, 188, "V", notCalculated},
    {"GET.NOTE", 0, 3, 191, "RV", notCalculated},
    {"FINDB", 2, 3, 205, "V", notCalculated},
    {"SEARCHB", 2, 3, 206, "V", notCalculated},
    {"REPLACEB", 4, 4, 207, "V", notCalculated},
    {"LEFTB", 1, 2, 208, "V", notCalculated},
    {"RIGHTB", 1, 2, 209, "V", notCalculated},
    {"MIDB", 3, 3, 210, "V", notCalculated},
    {"LENB", 1, 1, 211, "V", notCalculated},
    {"ASC", 1, 1, 214, "V", notCalculated},
    {"DBCS", 1, 1, 215, "V", notCalculated},
    {"VDB", 5, 7, 222, "V", notCalculated},
    {"EVALUATE", 1, 1, 257, "V", notCalculated},
    {"REGISTER.ID", 2, 3, 267, "V", notCalculated},
    {"GET.WORKBOOK", 1, 2, 268, "V", notCalculated},
    {"PROB", 3, 4, 317, "AAV", notCalculated},
    {"DATESTRING", 1, 1, 352, "V", notCalculated},
    {"NUMBERSTRING", 2, 2, 353, "V", notCalculated},
    {"GETPIVOTDATA", 2, anyNumber, 358, "VAV", notCalculated},
    {"PHONETIC", 1, 1, 360, "R", notCalculated},
    {"BAHTTEXT", 1, 1, 368, "V", notCalculated},
    {"THAIDAYOFWEEK", 1, 1, 369, "V", notCalculated},
    {"THAIDIGIT", 1, 1, 370, "V", notCalculated},
    {"THAIMONTHOFYEAR", 1, 1, 371, "V", notCalculated},
    {"THAINUMSOUND", 1, 1, 372, "V", notCalculated},
    {"THAINUMSTRING", 1, 1, 373, "V", notCalculated},
    {"THAISTRINGLENGTH", 1, 1, 374, "V", notCalculated},
    {"ISTHAIDIGIT", 1, 1, 375, "V", notCalculated},
    {"ROUNDBAHTDOWN", 1, 1, 376, "V", notCalculated},
    {"ROUNDBAHTUP", 1, 1, 377, "V", notCalculated},
    {"THAIYEAR", 1, 1, 378, "V", notCalculated},
    {"RTD", 3, anyNumber, 379, "V", notCalculated},
};

constexpr std::string_view ofTheAddIn =
    "ACCRINT ACCRINTM AMORDEGRC AMORLINC BESSELI BESSELJ BESSELK BESSELY COUPDAYBS COUPDAYS "
    "COUPDAYSNC COUPNCD COUPNUM COUPPCD DISC DOLLARDE DOLLARFR DURATION FVSCHEDULE IMCOS IMDIV "
    "IMLOG10 IMLOG2 IMPOWER IMSIN IMSUB INTRATE MDURATION ODDFPRICE ODDFYIELD ODDLPRICE "
    "ODDLYIELD PRICE PRICEDISC PRICEMAT RECEIVED SERIESSUM TBILLEQ TBILLPRICE TBILLYIELD YIELD "
    "YIELDDISC YIELDMAT";

constexpr std::string_view namesSince2007 =
    "CUBEKPIMEMBER CUBEMEMBER CUBEMEMBERPROPERTY CUBERANKEDMEMBER CUBESET CUBESETCOUNT "
    "CUBEVALUE ISO.CEILING NETWORKDAYS.INTL WORKDAY.INTL";

constexpr std::string_view newerNames =
    "ACOT ACOTH ANCHORARRAY ARABIC ARRAYTOTEXT BASE BETA.DIST BINOM.DIST.RANGE BITAND BITLSHIFT "
    "BITOR BITRSHIFT BITXOR BYCOL BYROW CEILING.PRECISE CHISQ.DIST CHISQ.INV CHOOSECOLS "
    "CHOOSEROWS COMBINA CONFIDENCE.T COT COTH CSC CSCH DECIMAL DROP ENCODEURL ERF.PRECISE "
    "ERFC.PRECISE EXPAND F.DIST F.INV FILTERXML FLOOR.PRECISE FORECAST.ETS FORECAST.ETS.CONFINT "
    "FORECAST.ETS.SEASONALITY FORECAST.ETS.STAT FORMULATEXT GAMMA GAUSS HSTACK HYPGEOM.DIST "
    "IMAGE IMCOSH IMCOT IMCSC IMCSCH IMSEC IMSECH IMSINH IMTAN ISOMITTED LAMBDA LET "
    "LOGNORM.DIST MAKEARRAY MAP MODE.MULT MUNIT NEGBINOM.DIST PDURATION PERCENTRANK.EXC "
    "PERMUTATIONA PHI RANDARRAY REDUCE RRI SCAN SEC SECH SEQUENCE SINGLE SKEW.P SORTBY T.DIST "
    "T.DIST.2T T.DIST.RT T.INV TAKE TEXTAFTER TEXTBEFORE TEXTSPLIT TOCOL TOROW UNIQUE "
    "VALUETOTEXT VSTACK WEBSERVICE WRAPCOLS WRAPROWS";

constexpr std::string_view newerSheetNames = "FILTER SORT";

std::vector<FunctionInfo> makeTable() {
  std::vector<FunctionInfo> table(std::begin(numbered), std::end(numbered));
  const auto add = [&](std::string_view names, Stored stored) {
    while (!names.empty()) {
      const size_t end = std::min(names.find(' '), names.size());
      table.push_back({names.substr(0, end), 0, anyNumber, stored, "R", notCalculated});
      names.remove_prefix(std::min(end + 1, names.size()));
    }
  };
  add(ofTheAddIn, addIn);
  add(namesSince2007, since2007);
  add(newerNames, newer);
  add(newerSheetNames, newerSheet);
  return table;
}

}  // namespace

FunctionList uncalculatedFunctions() {
  static const std::vector<FunctionInfo> table = makeTable();
  return table;
}

}  // namespace lodex::formula
