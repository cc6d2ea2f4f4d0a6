// Number bases, complex numbers, units.
#include <cmath>
#include <complex>
#include <map>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "worksheet/formula/FunctionHelp.h"

namespace lodex::formula {
namespace {

// --- Number bases ---

// Texts have up to ten digits; with the highest digit set they are negative (two's complement).
double capacityOf(int base) {
  return std::pow(base, 10);
}

bool parseBase(std::string_view text, int base, double& number) {
  if (text.size() > 10) return false;
  number = 0;
  for (const char c : text) {
    const int digit = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                             : 99;
    if (digit >= base) return false;
    number = number * base + digit;
  }
  if (number >= capacityOf(base) / 2) number -= capacityOf(base);
  return true;
}

Operand toBase(Evaluator& ev, double number, int base, Arguments a) {
  number = std::trunc(number);
  const double limit = capacityOf(base) / 2;
  if (number < -limit || number >= limit) return ErrorCode::Num;
  const bool negative = number < 0;
  if (negative) number += capacityOf(base);
  std::string digits;
  do {
    digits.insert(digits.begin(), "0123456789ABCDEF"[static_cast<size_t>(std::fmod(number, base))]);
    number = std::floor(number / base);
  } while (number > 0);
  if (given(a, 1) && !negative) {
    int places = 0;
    if (!wholeBetween(a[1].number, 1, 10, places)) return ErrorCode::Num;
    if (digits.size() > static_cast<size_t>(places)) return ErrorCode::Num;
    digits.insert(0, static_cast<size_t>(places) - digits.size(), '0');
  }
  return ev.text(std::move(digits));
}

template <int from>
Operand toDecimal(Evaluator&, Arguments a) {
  double number = 0;
  return parseBase(a[0].view(), from, number) ? Operand(number) : Operand(ErrorCode::Num);
}

template <int from, int to>
Operand betweenBases(Evaluator& ev, Arguments a) {
  double number = 0;
  return parseBase(a[0].view(), from, number) ? toBase(ev, number, to, a) : Operand(ErrorCode::Num);
}

template <int to>
Operand fromDecimal(Evaluator& ev, Arguments a) {
  return toBase(ev, a[0].number, to, a);
}

// --- Complex numbers, as text such as "3+4i" ---

struct ComplexText {
  std::complex<double> value;
  char unit = 'i';
};

bool parseComplex(std::string_view text, ComplexText& out) {
  text = trimBlanks(text);
  if (text.empty()) return false;
  if (const auto real = parseNumber(text)) {
    out.value = *real;
    return true;
  }
  out.unit = text.back();
  if (out.unit != 'i' && out.unit != 'j') return false;
  text.remove_suffix(1);
  // The last sign that belongs to no exponent begins the imaginary part.
  size_t cut = text.size();
  while (cut > 0) {
    --cut;
    const bool sign = text[cut] == '+' || text[cut] == '-';
    if (sign && (cut == 0 || (text[cut - 1] != 'e' && text[cut - 1] != 'E'))) break;
  }
  const bool hasSign = !text.empty() && (text[cut] == '+' || text[cut] == '-');
  const std::string_view real = hasSign ? text.substr(0, cut) : std::string_view();
  std::string_view imaginary = hasSign ? text.substr(cut) : text;
  double sign = 1;
  if (hasSign) {
    sign = imaginary[0] == '-' ? -1 : 1;
    imaginary.remove_prefix(1);
  }
  const auto x = real.empty() ? std::optional<double>(0) : parseNumber(real);
  const auto y = imaginary.empty() ? std::optional<double>(1) : parseNumber(imaginary);
  if (!x || !y || *y < 0) return false;
  out.value = {*x, sign * *y};
  return true;
}

Operand complexText(Evaluator& ev, std::complex<double> value, char unit) {
  if (!std::isfinite(value.real()) || !std::isfinite(value.imag())) return ErrorCode::Num;
  if (value.imag() == 0) return ev.text(numberText(value.real()));
  std::string out = value.real() == 0 ? "" : numberText(value.real());
  const std::string size = numberText(std::abs(value.imag()));
  out += value.imag() < 0 ? "-" : out.empty() ? "" : "+";
  if (size != "1") out += size;
  return ev.text(out + unit);
}

template <typename Compute>
Operand ofComplex(Arguments a, Compute compute) {
  ComplexText z;
  if (!parseComplex(a[0].view(), z)) return ErrorCode::Num;
  return compute(z);
}

Operand fnComplex(Evaluator& ev, Arguments a) {
  const std::string_view unit = given(a, 2) ? a[2].view() : "i";
  if (unit != "i" && unit != "j") return ErrorCode::Value;
  return complexText(ev, {a[0].number, a[1].number}, unit[0]);
}

Operand fnImLn(Evaluator& ev, Arguments a) {
  return ofComplex(a, [&](const ComplexText& z) {
    return z.value == 0.0 ? Operand(ErrorCode::Num) : complexText(ev, std::log(z.value), z.unit);
  });
}

// Folds all arguments, areas included.
template <typename Fold>
Operand foldComplex(Evaluator& ev, Arguments a, std::complex<double> start, Fold fold) {
  ComplexText z;
  Operand error;
  for (const Operand& argument : a) {
    const bool fine = ev.visitValues(argument, [&](const Operand& value, bool) {
      error = value.isError() ? value : Operand(ErrorCode::Num);
      if (value.isError() || !parseComplex(ev.toText(value), z)) return false;
      start = fold(start, z.value);
      return true;
    });
    if (!fine) return error;
  }
  return complexText(ev, start, z.unit);
}

// --- Units ---

struct Unit {
  char kind;      // units of one kind convert into each other
  double factor;  // to the kind's base unit
  bool prefixes;  // takes metric prefixes
};

// Factors: the International System of Units (BIPM, 9th edition) and NIST Special Publication 811.
const std::map<std::string_view, Unit>& units() {
  static const std::map<std::string_view, Unit> table{
      {"g", {'m', 1, true}},
      {"sg", {'m', 14593.902937206, false}},
      {"lbm", {'m', 453.59237, false}},
      {"u", {'m', 1.66053906660e-24, true}},
      {"ozm", {'m', 28.349523125, false}},
      {"grain", {'m', 0.06479891, false}},
      {"cwt", {'m', 45359.237, false}},
      {"stone", {'m', 6350.29318, false}},
      {"ton", {'m', 907184.74, false}},
      {"uk_ton", {'m', 1016046.9088, false}},
      {"m", {'l', 1, true}},
      {"mi", {'l', 1609.344, false}},
      {"Nmi", {'l', 1852, false}},
      {"in", {'l', 0.0254, false}},
      {"ft", {'l', 0.3048, false}},
      {"yd", {'l', 0.9144, false}},
      {"ang", {'l', 1e-10, true}},
      {"Pica", {'l', 0.0254 / 72, false}},
      {"ly", {'l', 9460730472580800.0, true}},
      {"yr", {'t', 31557600, false}},
      {"day", {'t', 86400, false}},
      {"d", {'t', 86400, false}},
      {"hr", {'t', 3600, false}},
      {"mn", {'t', 60, false}},
      {"min", {'t', 60, false}},
      {"sec", {'t', 1, true}},
      {"s", {'t', 1, true}},
      {"Pa", {'p', 1, true}},
      {"p", {'p', 1, true}},
      {"atm", {'p', 101325, true}},
      {"at", {'p', 101325, true}},
      {"mmHg", {'p', 133.322, true}},
      {"psi", {'p', 6894.757293168, false}},
      {"Torr", {'p', 101325.0 / 760, false}},
      {"N", {'f', 1, true}},
      {"dyn", {'f', 1e-5, true}},
      {"dy", {'f', 1e-5, true}},
      {"lbf", {'f', 4.4482216152605, false}},
      {"pond", {'f', 0.00980665, true}},
      {"J", {'e', 1, true}},
      {"e", {'e', 1e-7, true}},
      {"c", {'e', 4.184, true}},
      {"cal", {'e', 4.1868, true}},
      {"eV", {'e', 1.602176634e-19, true}},
      {"ev", {'e', 1.602176634e-19, true}},
      {"HPh", {'e', 2684519.5376962, false}},
      {"hh", {'e', 2684519.5376962, false}},
      {"Wh", {'e', 3600, true}},
      {"wh", {'e', 3600, true}},
      {"flb", {'e', 1.3558179483314, false}},
      {"BTU", {'e', 1055.05585262, false}},
      {"btu", {'e', 1055.05585262, false}},
      {"HP", {'w', 745.69987158227, false}},
      {"h", {'w', 745.69987158227, false}},
      {"W", {'w', 1, true}},
      {"w", {'w', 1, true}},
      {"T", {'b', 1, true}},
      {"ga", {'b', 1e-4, true}},
      {"l", {'v', 0.001, true}},
      {"L", {'v', 0.001, true}},
      {"lt", {'v', 0.001, true}},
      {"tsp", {'v', 4.92892159375e-6, false}},
      {"tbs", {'v', 1.478676478125e-5, false}},
      {"oz", {'v', 2.95735295625e-5, false}},
      {"cup", {'v', 2.365882365e-4, false}},
      {"pt", {'v', 4.73176473e-4, false}},
      {"us_pt", {'v', 4.73176473e-4, false}},
      {"uk_pt", {'v', 5.6826125e-4, false}},
      {"qt", {'v', 9.46352946e-4, false}},
      {"gal", {'v', 3.785411784e-3, false}},
      {"uk_gal", {'v', 4.54609e-3, false}},
      {"m3", {'v', 1, false}},
      {"ft3", {'v', 0.028316846592, false}},
      {"in3", {'v', 1.6387064e-5, false}},
      {"yd3", {'v', 0.764554857984, false}},
      {"barrel", {'v', 0.158987294928, false}},
      {"m2", {'a', 1, false}},
      {"ha", {'a', 10000, false}},
      {"ft2", {'a', 0.09290304, false}},
      {"in2", {'a', 6.4516e-4, false}},
      {"yd2", {'a', 0.83612736, false}},
      {"mi2", {'a', 2589988.110336, false}},
      {"us_acre", {'a', 4046.872609874252, false}},
      {"uk_acre", {'a', 4046.8564224, false}},
      {"m/s", {'s', 1, true}},
      {"m/h", {'s', 1.0 / 3600, true}},
      {"mph", {'s', 0.44704, false}},
      {"kn", {'s', 1852.0 / 3600, false}},
      {"bit", {'i', 1, true}},
      {"byte", {'i', 8, true}},
  };
  return table;
}

bool findUnit(std::string_view name, Unit& unit, double& factor) {
  const auto direct = units().find(name);
  if (direct != units().end()) {
    unit = direct->second;
    factor = unit.factor;
    return true;
  }
  static const std::map<std::string_view, double> prefixes{
      {"Y", 1e24},  {"Z", 1e21},  {"E", 1e18}, {"P", 1e15}, {"T", 1e12},  {"G", 1e9},
      {"M", 1e6},   {"k", 1e3},   {"h", 1e2},  {"da", 1e1}, {"e", 1e1},   {"d", 1e-1},
      {"c", 1e-2},  {"m", 1e-3},  {"u", 1e-6}, {"n", 1e-9}, {"p", 1e-12}, {"f", 1e-15},
      {"a", 1e-18}, {"z", 1e-21}, {"y", 1e-24}};
  for (const size_t length : {size_t(2), size_t(1)}) {
    if (name.size() <= length) continue;
    const auto prefix = prefixes.find(name.substr(0, length));
    const auto base = units().find(name.substr(length));
    if (prefix == prefixes.end() || base == units().end() || !base->second.prefixes) continue;
    unit = base->second;
    factor = unit.factor * prefix->second;
    return true;
  }
  return false;
}

// Temperatures have no common zero: offset and step against kelvin.
bool findTemperature(std::string_view name, double& offset, double& step) {
  if (name == "C" || name == "cel") return offset = 273.15, step = 1, true;
  if (name == "F" || name == "fah") return offset = 459.67 / 1.8, step = 1 / 1.8, true;
  if (name == "K" || name == "kel") return offset = 0, step = 1, true;
  if (name == "Rank") return offset = 0, step = 1 / 1.8, true;
  if (name == "Reau") return offset = 273.15, step = 1.25, true;
  return false;
}

Operand fnConvert(Evaluator&, Arguments a) {
  const std::string_view from = a[1].view();
  const std::string_view to = a[2].view();
  double offset1 = 0;
  double step1 = 1;
  double offset2 = 0;
  double step2 = 1;
  if (findTemperature(from, offset1, step1) && findTemperature(to, offset2, step2)) {
    if (from == to) return a[0];
    return (a[0].number * step1 + offset1 - offset2) / step2;
  }
  Unit unit1{};
  Unit unit2{};
  double factor1 = 1;
  double factor2 = 1;
  if (!findUnit(from, unit1, factor1) || !findUnit(to, unit2, factor2) ||
      unit1.kind != unit2.kind) {
    return ErrorCode::NotAvailable;
  }
  return a[0].number * factor1 / factor2;
}

constexpr FunctionInfo table[] = {
    {"BIN2DEC", 1, 1, addIn, "T", toDecimal<2>},
    {"OCT2DEC", 1, 1, addIn, "T", toDecimal<8>},
    {"HEX2DEC", 1, 1, addIn, "T", toDecimal<16>},
    {"DEC2BIN", 1, 2, addIn, "Nn", fromDecimal<2>},
    {"DEC2OCT", 1, 2, addIn, "Nn", fromDecimal<8>},
    {"DEC2HEX", 1, 2, addIn, "Nn", fromDecimal<16>},
    {"BIN2HEX", 1, 2, addIn, "Tn", betweenBases<2, 16>},
    {"BIN2OCT", 1, 2, addIn, "Tn", betweenBases<2, 8>},
    {"OCT2BIN", 1, 2, addIn, "Tn", betweenBases<8, 2>},
    {"OCT2HEX", 1, 2, addIn, "Tn", betweenBases<8, 16>},
    {"HEX2BIN", 1, 2, addIn, "Tn", betweenBases<16, 2>},
    {"HEX2OCT", 1, 2, addIn, "Tn", betweenBases<16, 8>},
    {"COMPLEX", 2, 3, addIn, "NNt", fnComplex},
    {"IMREAL", 1, 1, addIn, "T",
     [](Evaluator&, Arguments a) {
       return ofComplex(a, [](const ComplexText& z) { return Operand(z.value.real()); });
     }},
    {"IMAGINARY", 1, 1, addIn, "T",
     [](Evaluator&, Arguments a) {
       return ofComplex(a, [](const ComplexText& z) { return Operand(z.value.imag()); });
     }},
    {"IMABS", 1, 1, addIn, "T",
     [](Evaluator&, Arguments a) {
       return ofComplex(a, [](const ComplexText& z) { return Operand(std::abs(z.value)); });
     }},
    {"IMARGUMENT", 1, 1, addIn, "T",
     [](Evaluator&, Arguments a) {
       return ofComplex(a, [](const ComplexText& z) {
         return z.value == 0.0 ? Operand(ErrorCode::DivisionByZero) : Operand(std::arg(z.value));
       });
     }},
    {"IMCONJUGATE", 1, 1, addIn, "T",
     [](Evaluator& ev, Arguments a) {
       return ofComplex(
           a, [&](const ComplexText& z) { return complexText(ev, std::conj(z.value), z.unit); });
     }},
    {"IMEXP", 1, 1, addIn, "T",
     [](Evaluator& ev, Arguments a) {
       return ofComplex(
           a, [&](const ComplexText& z) { return complexText(ev, std::exp(z.value), z.unit); });
     }},
    {"IMLN", 1, 1, addIn, "T", fnImLn},
    {"IMSQRT", 1, 1, addIn, "T",
     [](Evaluator& ev, Arguments a) {
       return ofComplex(
           a, [&](const ComplexText& z) { return complexText(ev, std::sqrt(z.value), z.unit); });
     }},
    {"IMSUM", 1, anyNumber, addIn, "R",
     [](Evaluator& ev, Arguments a) {
       return foldComplex(ev, a, 0, std::plus<std::complex<double>>());
     }},
    {"IMPRODUCT", 1, anyNumber, addIn, "R",
     [](Evaluator& ev, Arguments a) {
       return foldComplex(ev, a, 1, std::multiplies<std::complex<double>>());
     }},
    {"DELTA", 1, 2, addIn, "NN",
     [](Evaluator&, Arguments a) {
       return Operand((a.size() > 1 ? a[1].number : 0) == a[0].number ? 1.0 : 0.0);
     }},
    {"GESTEP", 1, 2, addIn, "NN",
     [](Evaluator&, Arguments a) {
       return Operand(a[0].number >= (a.size() > 1 ? a[1].number : 0) ? 1.0 : 0.0);
     }},
    {"CONVERT", 3, 3, addIn, "NTT", fnConvert},
};

}  // namespace

FunctionList engineeringFunctions() {
  return table;
}

}  // namespace lodex::formula
