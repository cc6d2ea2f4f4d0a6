#include "import/recognise/Vocabulary.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "chem/Elements.h"

namespace lodex {
namespace {

using Words = std::unordered_set<std::string_view>;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view withoutBrackets(std::string_view text) {
  text = trimWhite(text);
  while (text.size() > 2 && ((text.front() == '(' && text.back() == ')') ||
                             (text.front() == '[' && text.back() == ']') ||
                             (text.front() == '{' && text.back() == '}'))) {
    text = trimWhite(text.substr(1, text.size() - 2));
  }
  return text;
}

// Lower case, without the characters that only set words apart.
std::string squeezed(std::string_view text, std::string_view without) {
  std::string result;
  for (const char c : toLower(text)) {
    if (without.find(c) == std::string_view::npos) result += c;
  }
  return result;
}

// --- Units ---

// Lower case, without blanks, points, hyphens and underscores.
struct UnitWords {
  std::string_view unit;
  std::string_view words;
};

constexpr UnitWords unitWords[] = {
    {"%",
     "% wt% wtpct pct weight% weightpct weightpercent wtpercent percent mass% masspct mas% "
     "m/m% %m/m %w/w w/w% m% w% %wt p% paino% massa% vikt% gew% ma% peso% %peso prozent "
     "prosentti procent porciento porcentaje мас% масс% вес% %мас %масс g/100g pctwt wpct"},
    {"ppm",
     "ppm ppmw g/t gpt g/tonne g/ton gm/t gms/t gr/t gr/ton g/tn g/mt mg/kg mgkg mg/kgts "
     "mg/kgdw ug/g µg/g μg/g mcg/g г/т мг/кг мкг/г mg/l partspermillion mgl g_t"},
    {"ppb",
     "ppb ppbw mg/t mgt ug/kg µg/kg μg/kg mcg/kg ng/g мг/т мкг/кг нг/г partsperbillion "
     "mg/tonne"},
};

const std::unordered_map<std::string, std::string_view>& unitTable() {
  static const auto& table = *[] {
    auto* made = new std::unordered_map<std::string, std::string_view>;
    for (const UnitWords& row : unitWords) {
      for (const std::string& word : split(row.words, " ")) made->emplace(word, row.unit);
    }
    return made;
  }();
  return table;
}

const Words& otherUnits() {
  static const auto& words =
      *new Words{"kg",    "g",    "gm",   "lb",    "lbs",      "t",     "m",    "ft",     "cm",
                 "mm",    "km",   "um",   "µm",    "°c",       "degc",  "deg",  "°",      "ms",
                 "s",     "sec",  "cps",  "ph",    "oz/t",     "oz/st", "opt",  "oz/ton", "ppt",
                 "ng/kg", "pg/g", "‰",    "kg/t",  "promille", "g/cm3", "g/cc", "kg/m3",  "sg",
                 "unity", "mv",   "ms/m", "wt",    "кг",       "м",     "kgs",  "g/l",    "ml",
                 "l",     "m3",   "cc",   "µs/cm", "si",       "10-3si"};
  return words;
}

// --- Analytes ---

// Symbols that no laboratory reports and that are words or abbreviations of something else.
bool isReported(std::string_view symbol) {
  static const auto& never = *new Words{"He", "Ne", "Ar", "Kr", "Xe", "Rn", "Tc", "Pm",
                                        "Po", "At", "Fr", "Ac", "Pa", "Ra", "O"};
  const int number = AtomicNumberOfSymbol(symbol);
  constexpr int uranium = 92;
  return number > 0 && number <= uranium && never.count(symbol) == 0;
}

// Oxides and other compounds by their upper case spelling.
const std::unordered_map<std::string, std::string>& compounds() {
  static const auto& table = *[] {
    auto* made = new std::unordered_map<std::string, std::string>;
    for (const char* name :
         {"SiO2",  "TiO2",  "Al2O3", "Fe2O3", "FeO",   "Fe3O4", "MnO",   "MnO2",   "Mn3O4",
          "MgO",   "CaO",   "Na2O",  "K2O",   "P2O5",  "Cr2O3", "V2O5",  "V2O3",   "NiO",
          "CoO",   "CuO",   "Cu2O",  "ZnO",   "PbO",   "BaO",   "SrO",   "ZrO2",   "SO3",
          "SO2",   "SO4",   "CO2",   "CO3",   "H2O",   "U3O8",  "UO2",   "ThO2",   "WO3",
          "MoO3",  "Nb2O5", "Ta2O5", "SnO2",  "SnO",   "Li2O",  "Rb2O",  "Cs2O",   "BeO",
          "B2O3",  "HfO2",  "Y2O3",  "La2O3", "CeO2",  "Ce2O3", "Pr2O3", "Pr6O11", "Nd2O3",
          "Sm2O3", "Eu2O3", "Gd2O3", "Tb2O3", "Tb4O7", "Dy2O3", "Ho2O3", "Er2O3",  "Tm2O3",
          "Yb2O3", "Lu2O3", "Sc2O3", "Ga2O3", "GeO2",  "As2O3", "As2O5", "Sb2O3",  "Bi2O3",
          "CdO",   "CaCO3", "MgCO3", "CaF2",  "BaSO4", "NO3",   "PO4",   "Mn2O3"}) {
      (*made)[toUpper(name)] = name;
    }
    return made;
  }();
  return table;
}

// Names in English, Finnish, Swedish, German, Spanish and Russian.
struct ElementNames {
  std::string_view element;
  std::string_view names;
};

constexpr ElementNames elementNameWords[] = {
    {"Au", "gold kulta guld oro золото"},
    {"Ag", "silver hopea silber plata серебро"},
    {"Cu", "copper kupari koppar kupfer cobre медь"},
    {"Pb", "lead lyijy bly blei plomo свинец"},
    {"Zn", "zinc sinkki zink cinc цинк"},
    {"Ni", "nickel nikkeli níquel niquel никель"},
    {"Co", "cobalt koboltti kobolt kobalt cobalto кобальт"},
    {"Fe", "iron rauta järn eisen hierro железо"},
    {"S", "sulphur sulfur rikki svavel schwefel azufre сера"},
    {"As", "arsenic arseeni arsenik arsen arsénico arsenico мышьяк"},
    {"Pt", "platinum platina platin platino"},
    {"Pd", "palladium paladio"},
    {"Rh", "rhodium"},
    {"Mo", "molybdenum molybdeeni molybden molibdeno"},
    {"W", "tungsten volframi wolfram wolframio tungsteno"},
    {"Sn", "tin tina tenn zinn estaño"},
    {"U", "uranium uraani uran uranio"},
    {"Th", "thorium torium torio"},
    {"Cr", "chromium kromi krom chrom cromo"},
    {"V", "vanadium vanadiini vanadin vanadio"},
    {"Ti", "titanium titaani titan titanio"},
    {"Mn", "manganese mangaani mangan manganeso"},
    {"Mg", "magnesium magnesio"},
    {"Ca", "calcium kalsium calcio"},
    {"Na", "sodium natrium sodio"},
    {"K", "potassium kalium potasio"},
    {"Al", "aluminium aluminum alumiini aluminio"},
    {"Si", "silicon pii kisel silizium silicium silicio"},
    {"P", "phosphorus fosfori fosfor phosphor fósforo fosforo"},
    {"C", "carbon hiili kol kohlenstoff carbono"},
    {"Li", "lithium litium litio"},
    {"Ba", "barium bario"},
    {"Sr", "strontium estroncio"},
    {"Rb", "rubidium"},
    {"Zr", "zirconium"},
    {"Y", "yttrium"},
    {"Nb", "niobium"},
    {"Ta", "tantalum"},
    {"Hf", "hafnium"},
    {"Cs", "caesium cesium"},
    {"Sb", "antimony antimoni antimon antimonio"},
    {"Bi", "bismuth vismutti vismut bismut wismut bismuto"},
    {"Cd", "cadmium kadmium cadmio"},
    {"Hg", "mercury elohopea kvicksilver quecksilber mercurio"},
    {"Se", "selenium seleeni selen"},
    {"Te", "tellurium telluuri tellur"},
    {"Ga", "gallium"},
    {"In", "indium"},
    {"Ge", "germanium"},
    {"Be", "beryllium"},
    {"Sc", "scandium"},
    {"B", "boron boori bor"},
    {"F", "fluorine fluori fluor"},
    {"Cl", "chlorine kloori chlor"},
    {"La", "lanthanum lanthan"},
    {"Ce", "cerium cer"},
    {"Nd", "neodymium"},
    {"Tl", "thallium"},
    {"SiO2", "silica"},
    {"Al2O3", "alumina"},
    {"MgO", "magnesia"},
    {"CaO", "lime"},
    {"TiO2", "titania"},
};

const std::unordered_map<std::string, std::string_view>& elementNames() {
  static const auto& table = *[] {
    auto* made = new std::unordered_map<std::string, std::string_view>;
    for (const ElementNames& row : elementNameWords) {
      for (const std::string& name : split(row.names, " ")) made->emplace(name, row.element);
    }
    return made;
  }();
  return table;
}

const Words& ignitionNames() {
  static const auto& words = *new Words{"loi",
                                        "lossonignition",
                                        "ignitionloss",
                                        "glv",
                                        "glühverlust",
                                        "gluehverlust",
                                        "hehkutushäviö",
                                        "glödförlust",
                                        "glödgningsförlust",
                                        "perteaufeu",
                                        "paf",
                                        "ppc",
                                        "pérdidaporcalcinación",
                                        "perdidaporcalcinacion",
                                        "ppi",
                                        "ппп"};
  return words;
}

bool isIgnitionLoss(std::string_view text) {
  std::string word = squeezed(replaceAll(text, "°", ""), " ._-@()[],");
  // "LOI@1000", "LOI 1000C", "LOI-1050": the temperature of the furnace.
  while (!word.empty() && (isDigit(word.back()) || (word.size() > 1 && word.back() == 'c' &&
                                                    isDigit(word[word.size() - 2])))) {
    word.pop_back();
  }
  if (word.ends_with("at")) word.resize(word.size() - 2);
  return ignitionNames().count(word) > 0;
}

// A symbol or oxide in whatever case.
std::string plainAnalyte(std::string_view text) {
  if (isReported(text)) return std::string(text);
  constexpr size_t longest = 7;
  if (text.empty() || text.size() > longest) return {};
  const std::string upper = toUpper(text);
  const auto compound = compounds().find(upper);
  if (compound != compounds().end()) return compound->second;
  if (text.size() > 2 || upper == "NO") return {};
  std::string symbol = upper;
  if (symbol.size() == 2) symbol[1] = toLower(symbol.substr(1))[0];
  return isReported(symbol) ? symbol : std::string();
}

// "Na-23", "Na23", "23Na": the element of an isotope whose mass number its element can have.
std::string isotopeElement(std::string_view text) {
  std::string letters;
  std::string digits;
  bool lettersFirst = !text.empty() && isLetter(text.front());
  for (const char c : text) {
    if (isDigit(c)) {
      if (!lettersFirst && !letters.empty()) return {};
      digits += c;
    } else if (isLetter(c)) {
      if (lettersFirst && !digits.empty()) return {};
      letters += c;
    } else if (c != '-') {
      return {};
    }
  }
  if (digits.empty() || digits.size() > 3 || letters.empty() || letters.size() > 2) return {};
  if (!isReported(letters)) return {};
  const double mass = numberOf(digits);
  const double weight = AtomicWeight(letters);
  return mass > 0.85 * weight && mass < 1.15 * weight + 2 ? letters : std::string();
}

// What stays of a text when marks of a total go; `isTotal` tells whether there were any.
std::string withoutTotalMarks(std::string_view text, bool& isTotal) {
  std::string rest(trimWhite(text));
  isTotal = false;
  const auto cutEnd = [&](std::string_view mark) {
    if (rest.size() <= mark.size() ||
        !equalsNoCase(std::string_view(rest).substr(rest.size() - mark.size()), mark)) {
      return false;
    }
    rest = std::string(trimWhite(std::string_view(rest).substr(0, rest.size() - mark.size())));
    while (!rest.empty() && (rest.back() == '_' || rest.back() == '-' || rest.back() == ',')) {
      rest.pop_back();
    }
    return isTotal = true;
  };
  const auto cutStart = [&](std::string_view mark) {
    if (rest.size() <= mark.size() || !startsWithNoCase(rest, mark)) return false;
    rest = std::string(trimWhite(std::string_view(rest).substr(mark.size())));
    while (!rest.empty() && (rest.front() == '_' || rest.front() == '-' || rest.front() == '/')) {
      rest.erase(0, 1);
    }
    return isTotal = true;
  };
  for (const char* mark : {"(total)", "(tot)", "(tot.)", "(t)", "[t]", "total", "tot.", "tot", "*",
                           "(*)", "(as total Fe)"}) {
    if (cutEnd(mark)) return rest;
  }
  for (const char* mark : {"total ", "tot ", "tot. ", "total_", "tot_", "tot/", "Σ", "∑"}) {
    if (cutStart(mark)) return rest;
  }
  // "Fe2O3T", "FeOt" and "TFe2O3", but neither "Pt" nor "TiO2".
  if (rest.size() > 2 && (rest.back() == 'T' || rest.back() == 't') && plainAnalyte(rest).empty()) {
    const std::string shorter(trimWhite(std::string_view(rest).substr(0, rest.size() - 1)));
    const std::string bare =
        shorter.ends_with('_') ? shorter.substr(0, shorter.size() - 1) : shorter;
    if (plainAnalyte(bare).starts_with("Fe")) {
      isTotal = true;
      return bare;
    }
  }
  if (rest.size() > 2 && (rest.front() == 'T' || rest.front() == 't') &&
      plainAnalyte(rest).empty() && plainAnalyte(rest.substr(1)).starts_with("Fe")) {
    isTotal = true;
    return rest.substr(1);
  }
  return rest;
}

// --- Methods ---

const Words& methodWords() {
  static const auto& words = *new Words{"xrf",     "pxrf",       "edxrf",        "wdxrf",
                                        "wd-xrf",  "ed-xrf",     "xrf-f",        "icp",
                                        "icpms",   "icpoes",     "icpaes",       "icp-ms",
                                        "icp-oes", "icp-aes",    "aas",          "aa",
                                        "faas",    "gfaas",      "gf-aas",       "fa",
                                        "fire",    "ar",         "inaa",         "naa",
                                        "tga",     "grav",       "gravimetric",  "gra",
                                        "leco",    "ise",        "ms",           "oes",
                                        "aes",     "td",         "fus",          "epma",
                                        "empa",    "la-icp-ms",  "laicpms",      "la",
                                        "titr",    "titration",  "titrimetric",  "cal",
                                        "ir",      "combustion", "eltra",        "csa",
                                        "cva",     "cv-aas",     "hg-cv",        "total digestion",
                                        "aqua",    "regia",      "sem",          "eds",
                                        "sem-eds", "wds",        "ft",           "ftir",
                                        "uv",      "col",        "colorimetric", "volumetric",
                                        "wet",     "bm",         "ba",           "4a",
                                        "3a",      "mp",         "mp-aes",       "lf",
                                        "4-acid",  "4acid",      "fusion",       "assay",
                                        "oe",      "og",         "ic",           "pf",
                                        "nd",      "bleg",       "mmi",          "libs",
                                        "os",      "furnace",    "digest",       "digestion",
                                        "probe",   "sims"};
  return words;
}

const Words& qualifierWords() {
  static const auto& words =
      *new Words{"check", "repeat", "rep",      "dup",  "duplicate", "avg",    "mean",  "best",
                 "final", "rpt",    "original", "orig", "first",     "second", "split", "recalc"};
  return words;
}

// "ICP61", "AA23", "4AB1", "ME-MS61L", "511P": letters and digits, hyphens or slashes between.
bool isMethodCode(std::string_view word) {
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  constexpr size_t longest = 20;
  if (word.size() < 2 || word.size() > longest) return false;
  bool digits = false;
  bool letters = false;
  bool joined = false;
  bool lower = false;
  for (size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if (isDigit(c)) {
      digits = true;
    } else if (c >= 'A' && c <= 'Z') {
      letters = true;
    } else if (c >= 'a' && c <= 'z') {
      letters = lower = true;
    } else if ((c == '-' || c == '/' || c == '.' || c == '+') && i > 0) {
      joined = true;
    } else {
      return false;
    }
  }
  return letters && (digits || (joined && !lower));
}

bool isMethodPart(const std::string& lower) {
  return methodWords().count(lower) > 0;
}

// --- Captions ---

// Words without blanks, hyphens and the like, in lower case; parted by blanks here.
struct CaptionWords {
  Caption caption;
  std::string_view words;
};

constexpr CaptionWords captionWords[] = {
    {Caption::Description,
     "note notes remark remarks rock rocktype rockname lithology lith mineral type sampletype "
     "material date time project client mode category class group unitname formation depth from to "
     "length x y z easting northing latitude longitude elevation datum reference citation"},
    {Caption::Analyte,
     "analyte analytes element elements analytesymbol parameter determinand component "
     "compound oxide alkuaine analyytti grundämne ämne parametri elemento analito "
     "parámetro elementname analytename constituent analytecode parametername элемент"},
    {Caption::Method,
     "method methods methodcode analysismethod analyticalmethod scheme schemecode "
     "technique analysistype menetelmä analyysimenetelmä metod analysmetod methode "
     "verfahren método metodo métododeanálisis méthode метод labmethod package procedure"},
    {Caption::Unit,
     "unit units unitsymbol uom unitofmeasure yksikkö yksiköt enhet einheit unidad "
     "unidades unité unités ед едизм unitcode reportingunit reportingunits"},
    {Caption::LowerLimit,
     "detection detectionlimit detlimit lowerlimit lowerdetectionlimit dl ldl lld lod loq "
     "lor mdl reportinglimit limitofdetection limitofreporting detlim määritysraja "
     "toteamisraja detektionsgräns rapporteringsgräns nachweisgrenze bestimmungsgrenze "
     "límitededetección limitededeteccion límiteinferior limiteinferior límitedetección "
     "mindetection lowlimit lowerlimitofdetection lowerlim"},
    {Caption::UpperLimit,
     "upperlimit upperdetectionlimit udl maxdetection upperlim yläraja límitesuperior "
     "limitesuperior maximumlimit overlimit highlimit"},
    {Caption::Sample,
     "sample samples sampleid sampleno samplenr samplenum samplenumber samplename "
     "sampleident sampleidentification sampledescription samplelabel samplecode sampleref "
     "samplereference sampletag labid labno labnumber labsampleid clientid clientsampleid "
     "clientsample customerid description näyte näytetunnus näyteid näytenumero näytenro "
     "näytenimi tunnus prov provid provnr provnummer provmärkning probe probenr "
     "probennummer probenname probeid muestra muestraid idmuestra códigomuestra nmuestra "
     "nodemuestra échantillon echantillon проба образец номерпробы specimen specimenid "
     "sampid samp sampno smpl smplid sampleidno sid"},
    {Caption::WeakSample,
     "igsn spot spotid comment comments analysis analysisid point label name id number "
     "fieldno fieldid station hole holeid site siteid filename identifier code"},
    {Caption::Value,
     "value result results concentration amount reportedvalue resultvalue numericvalue "
     "arvo tulos värde resultat wert ergebnis valor resultado значение analysisvalue "
     "content conc"},
    {Caption::Qualifier, "qualifier flag qual sign operator prefix valuequalifier resultqualifier"},
    {Caption::QualityControl,
     "qualitycontrol qc qaqc qualityassurance qualitycontroldata qcdata pulpduplicates "
     "pulpduplicate referencematerials referencematerial standards duplicates blanks "
     "repeats certifiedreferencematerials controlsamples laboratoryduplicates "
     "labduplicates prepwash coarserejectduplicates checks laadunvarmistus laadunvalvonta "
     "kvalitetskontroll qualitätskontrolle controldecalidad duplicados estándares "
     "standardreferencematerials"},
    {Caption::Statistic,
     "average avg mean median minimum maximum min max stddev stdev standarddeviation "
     "stdeviation sd rsd rsd% sigma count n total sum 1sd 2sd %rsd keskiarvo keskihajonta "
     "mediaani medel medelvärde mittelwert promedio media среднее range variance geomean"},
    {Caption::RunningNumber,
     "no nr # n° reading# reading readingno row objectid fid seq sequence index lfdnr oid "
     "rowid item order"},
};

const std::unordered_map<std::string, Caption>& captions() {
  static const auto& table = *[] {
    auto* made = new std::unordered_map<std::string, Caption>;
    for (const CaptionWords& group : captionWords) {
      for (const std::string& word : split(group.words, " ")) made->emplace(word, group.caption);
    }
    return made;
  }();
  return table;
}

}  // namespace

UnitWord unitWord(std::string_view text) {
  constexpr size_t longest = 24;
  text = withoutBrackets(text);
  if (text.empty() || text.size() > longest) return {};
  // "P%" and "W%" are phosphorus and tungsten; "p-%" and "w-%" are units.
  if (text.size() == 2 && text.back() == '%') return {};
  std::string word = squeezed(replaceAll(text, "\xC2\xA0", ""), " .-_");
  if (word.size() == 2 && word.back() == '%' && text.front() >= 'A' && text.front() <= 'Z')
    return {};
  if (word.starts_with("in") && word.size() > 3) {
    const UnitWord inner = unitWord(word.substr(2));
    if (inner.kind == UnitKind::Concentration) return inner;
  }
  const auto found = unitTable().find(word);
  if (found != unitTable().end()) return {UnitKind::Concentration, std::string(found->second)};
  if (otherUnits().count(word) > 0) return {UnitKind::Other, {}};
  return {};
}

std::string analyteOf(std::string_view text) {
  constexpr size_t longest = 40;
  text = withoutBrackets(text);
  if (text.empty() || text.size() > longest) return {};
  if (std::string plain = plainAnalyte(text); !plain.empty()) return plain;
  if (isIgnitionLoss(text)) return "LOI";
  const auto name = elementNames().find(toLower(text));
  if (name != elementNames().end()) return std::string(name->second);
  if (std::string isotope = isotopeElement(text); !isotope.empty()) return isotope;
  const std::string upper = toUpper(text);
  if (upper == "H2O+" || upper == "H2O-") return upper;
  bool isTotal = false;
  const std::string rest = withoutTotalMarks(text, isTotal);
  if (!isTotal) return {};
  std::string inner = plainAnalyte(rest);
  if (inner.empty()) {
    const auto known = elementNames().find(toLower(rest));
    if (known != elementNames().end()) inner = std::string(known->second);
  }
  if (inner == "Fe2O3" || inner == "FeO") return inner + "tot";
  return inner;
}

bool isMethodWord(std::string_view word) {
  const std::string lower = toLower(withoutBrackets(word));
  return isMethodPart(lower) || qualifierWords().count(lower) > 0 ||
         isMethodCode(withoutBrackets(word));
}

bool isMethodText(std::string_view text) {
  constexpr size_t longest = 40;
  text = trimWhite(text);
  if (text.empty() || text.size() > longest || isNumericText(text)) return false;
  if (unitWord(text).kind == UnitKind::Concentration || !analyteOf(text).empty()) return false;
  bool any = false;
  for (const std::string& word : split(replaceAll(replaceAll(text, "_", " "), ",", " "), " ")) {
    if (word.empty()) continue;
    if (isMethodWord(word)) {
      any = true;
    } else if (analyteOf(word).empty()) {
      return false;
    }
  }
  return any;
}

Caption captionOf(std::string_view text) {
  constexpr size_t longest = 40;
  text = trimWhite(text);
  if (text.empty() || text.size() > longest) return Caption::None;
  // Most texts asked about are sample names, and captions have no digits but in "2SD".
  if (text.size() > 3 && std::any_of(text.begin(), text.end(), isDigit)) return Caption::None;
  while (!text.empty() && (text.back() == ':' || text.back() == '.')) text.remove_suffix(1);
  const std::string word =
      squeezed(replaceAll(replaceAll(text, "°", ""), "º", ""), " _-.:'/()[]\"");
  const auto found = captions().find(word);
  return found == captions().end() ? Caption::None : found->second;
}

bool isControlName(std::string_view name) {
  const std::string upper = toUpper(trimWhite(name));
  std::vector<std::string> words;
  std::string word;
  for (const char c : upper) {
    const bool inside = isLetter(c) || isDigit(c);
    if (inside) {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::move(word));
      word.clear();
    }
  }
  if (!word.empty()) words.push_back(std::move(word));
  static const auto& marks =
      *new Words{"STD",    "STANDARD",    "CRM",       "SRM",       "BLANK", "BLK",   "BLANCO",
                 "DUP",    "DUPLICATE",   "REP",       "REPEAT",    "RPT",   "CERT",  "MEAS",
                 "OREAS",  "METHODBLANK", "PREPBLANK", "DUPLICADO", "ORIG",  "CHECK", "NIST",
                 "CANMET", "PULPDUP",     "LABDUP",    "QC",        "G1"};
  for (size_t i = 0; i < words.size(); ++i) {
    std::string bare = words[i];
    while (!bare.empty() && isDigit(bare.back())) bare.pop_back();
    // A mark stands first or last, so that a prospect called "Check Creek" is none.
    const bool atEnd = i == 0 || i + 1 == words.size();
    if (atEnd && marks.count(bare) > 0) return true;
    if (bare == "OREAS" || bare == "NIST" || bare == "CANMET") return true;
  }
  return false;
}

bool namesUncertainty(std::string_view heading) {
  const std::string lower = toLower(heading);
  for (const char* mark : {"+/-",     "±",     "error",  "int2se", "2se",     "1se",       "2sd",
                           "1sd",     "sigma", "2σ",     "1σ",     "std dev", "stdev",     "stddev",
                           "std_dev", "rsd",   "uncert", "virhe",  "fehler",  "epävarmuus"}) {
    if (lower.find(mark) != std::string::npos) return true;
  }
  for (const char* end :
       {" err", "_err", " 1s", "_1s", " 2s", "_2s", "(1s)", "(2s)", " sd", "_sd", " se", "_se"}) {
    if (lower.ends_with(end)) return true;
  }
  return false;
}

}  // namespace lodex
