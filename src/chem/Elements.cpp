#include "chem/Elements.h"

#include <array>
#include <unordered_map>

#include "basic/Text.h"
#include "chem/Letters.h"

namespace lodex {
namespace {

struct Element {
  const char* symbol;
  double weight;
};

// By atomic number from 1.
constexpr std::array<Element, 103> elements = {{
    {"H", 1.00794},     {"He", 4.002602},  {"Li", 6.941},       {"Be", 9.012182},
    {"B", 10.811},      {"C", 12.0107},    {"N", 14.0067},      {"O", 15.9994},
    {"F", 18.9984032},  {"Ne", 20.1797},   {"Na", 22.98976928}, {"Mg", 24.3050},
    {"Al", 26.9815386}, {"Si", 28.0855},   {"P", 30.973762},    {"S", 32.065},
    {"Cl", 35.453},     {"Ar", 39.948},    {"K", 39.0983},      {"Ca", 40.078},
    {"Sc", 44.955912},  {"Ti", 47.867},    {"V", 50.9415},      {"Cr", 51.9961},
    {"Mn", 54.938045},  {"Fe", 55.845},    {"Co", 58.933195},   {"Ni", 58.6934},
    {"Cu", 63.546},     {"Zn", 65.38},     {"Ga", 69.723},      {"Ge", 72.64},
    {"As", 74.92160},   {"Se", 78.96},     {"Br", 79.904},      {"Kr", 83.798},
    {"Rb", 85.4678},    {"Sr", 87.62},     {"Y", 88.90585},     {"Zr", 91.224},
    {"Nb", 92.90638},   {"Mo", 95.96},     {"Tc", 98},          {"Ru", 101.07},
    {"Rh", 102.90550},  {"Pd", 106.42},    {"Ag", 107.8682},    {"Cd", 112.411},
    {"In", 114.818},    {"Sn", 118.710},   {"Sb", 121.760},     {"Te", 127.60},
    {"I", 126.90447},   {"Xe", 131.293},   {"Cs", 132.9054519}, {"Ba", 137.327},
    {"La", 138.90547},  {"Ce", 140.116},   {"Pr", 140.90765},   {"Nd", 144.242},
    {"Pm", 145},        {"Sm", 150.36},    {"Eu", 151.964},     {"Gd", 157.25},
    {"Tb", 158.92535},  {"Dy", 162.500},   {"Ho", 164.93032},   {"Er", 167.259},
    {"Tm", 168.93421},  {"Yb", 173.054},   {"Lu", 174.9668},    {"Hf", 178.49},
    {"Ta", 180.94788},  {"W", 183.84},     {"Re", 186.207},     {"Os", 190.23},
    {"Ir", 192.217},    {"Pt", 195.084},   {"Au", 196.966569},  {"Hg", 200.59},
    {"Tl", 204.3833},   {"Pb", 207.2},     {"Bi", 208.98040},   {"Po", 209},
    {"At", 210},        {"Rn", 222},       {"Fr", 223},         {"Ra", 226},
    {"Ac", 227},        {"Th", 232.03806}, {"Pa", 231.03588},   {"U", 238.02891},
    {"Np", 237},        {"Pu", 244},       {"Am", 243},         {"Cm", 247},
    {"Bk", 247},        {"Cf", 251},       {"Es", 252},         {"Fm", 257},
    {"Md", 258},        {"No", 259},       {"Lr", 262},
}};

// Whether `c` after a symbol ends it: an oxide's "O", a number of atoms, a unit or a separator.
bool endsSymbol(char c, bool separators) {
  return c == 'O' || isDigit(c) || c == ' ' || c == '%' || (separators && (c == '_' || c == '/'));
}

// The candidate symbol at the head of a trimmed text, or the whole text where there is none.
std::string_view candidate(std::string_view text, bool separators) {
  if (text.size() < 2 || !isCapital(text[0])) return text;
  if (!isSmall(text[1])) return endsSymbol(text[1], separators) ? text.substr(0, 1) : text;
  if (text.size() == 2) return text;
  // A capital A or Z does not end a symbol; formulas that need them are left whole.
  const bool nextSymbol = text[2] > 'A' && text[2] < 'Z';
  return nextSymbol || endsSymbol(text[2], separators) ? text.substr(0, 2) : text;
}

int symbolNumber(const std::string& symbol) {
  static const std::unordered_map<std::string, int> numbers = [] {
    std::unordered_map<std::string, int> map;
    const auto& symbols = ElementSymbols();
    for (size_t n = 1; n < symbols.size(); ++n) map.emplace(symbols[n], static_cast<int>(n));
    return map;
  }();
  const auto found = numbers.find(symbol);
  return found == numbers.end() ? 0 : found->second;
}

int cutSymbol(std::string& text, bool separators) {
  text = std::string(trimBlanks(text));
  if (text.empty()) return 0;
  text = std::string(candidate(text, separators));
  return symbolNumber(text);
}

}  // namespace

const std::vector<std::string>& ElementSymbols() {
  static const std::vector<std::string> symbols = [] {
    std::vector<std::string> all{""};
    for (const Element& element : elements) all.emplace_back(element.symbol);
    for (const char* temporary : {"Unq", "Unp", "Unh"}) all.emplace_back(temporary);
    return all;
  }();
  return symbols;
}

int ElementNumber(std::string& text) {
  return cutSymbol(text, true);
}

int ElementNumberStrict(std::string& text) {
  return cutSymbol(text, false);
}

int AtomicNumberOfSymbol(std::string_view symbol) {
  const int number = symbolNumber(std::string(symbol));
  return number <= static_cast<int>(elements.size()) ? number : 0;
}

double AtomicWeight(int atomicNumber) {
  if (atomicNumber < 1 || atomicNumber > static_cast<int>(elements.size())) return 0;
  return elements[static_cast<size_t>(atomicNumber) - 1].weight;
}

double AtomicWeight(std::string_view symbol) {
  return AtomicWeight(AtomicNumberOfSymbol(symbol));
}

}  // namespace lodex
