#include "import/recognise/HeadingReader.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "basic/Text.h"
#include "import/recognise/Vocabulary.h"

namespace lodex {
namespace {

// A word of the heading and where it stands.
struct Piece {
  std::string text;
  size_t begin = 0;
  size_t end = 0;  // exclusive
  bool used = false;
};

bool parts(char c) {
  return std::string_view(" _,;:|\t\r\n()[]{}").find(c) != std::string_view::npos;
}

std::vector<Piece> piecesOf(std::string_view heading) {
  std::vector<Piece> pieces;
  size_t start = 0;
  for (size_t i = 0; i <= heading.size(); ++i) {
    if (i < heading.size() && !parts(heading[i])) continue;
    if (i > start)
      pieces.push_back({std::string(heading.substr(start, i - start)), start, i, false});
    start = i + 1;
  }
  return pieces;
}

// Words that say nothing of element, unit or method.
bool isFiller(std::string_view word) {
  static const auto& fillers = *new std::unordered_set<std::string>{
      "concentration", "conc",     "content", "in",        "value",    "result",
      "dry",           "basis",    "wt",      "mass",      "assay",    "grade",
      "total",         "tot",      "t",       "pitoisuus", "halt",     "gehalt",
      "ley",           "rock",     "of",      "as",        "analysis", "calc",
      "calculated",    "measured", "-",       "."};
  return fillers.count(toLower(word)) > 0;
}

void findUnit(std::string_view heading, std::vector<Piece>& pieces, HeadingFacts& facts) {
  // The longest run of words that is a unit: "wt %", "Gew.-%". From the right, where units stand.
  constexpr size_t mostWords = 3;
  for (size_t words = std::min(mostWords, pieces.size()); words > 0; --words) {
    for (size_t last = pieces.size(); last >= words; --last) {
      const size_t first = last - words;
      const std::string_view text =
          heading.substr(pieces[first].begin, pieces[last - 1].end - pieces[first].begin);
      const UnitWord unit = unitWord(text);
      if (unit.kind == UnitKind::None) continue;
      // "m", "t" or "S" alone may be anything; as a unit only in brackets.
      const bool bracketed = pieces[first].begin > 0 && heading[pieces[first].begin - 1] == '(';
      if (unit.kind == UnitKind::Other && !bracketed && text.size() < 3 &&
          !equalsNoCase(text, "kg")) {
        continue;
      }
      facts.unit = unit.unit;
      facts.unitText = std::string(text);
      for (size_t i = first; i < last; ++i) pieces[i].used = true;
      return;
    }
  }
  // "Cu%" and "SiO2wt%": the unit at the end of a word.
  for (Piece& piece : pieces) {
    for (const char* ending : {"wt%", "wt.%", "%", "ppm", "ppb", "PPM", "PPB"}) {
      const std::string_view end(ending);
      if (piece.text.size() <= end.size() || !piece.text.ends_with(end)) continue;
      const std::string front = piece.text.substr(0, piece.text.size() - end.size());
      if (analyteOf(front).empty()) continue;
      facts.unit = unitWord(end).unit;
      facts.unitText = ending;
      piece.text = front;
      return;
    }
  }
}

// "BV", "XRFB": the initials of a method or laboratory, beside a unit.
bool isInitials(const std::string& word) {
  constexpr size_t longest = 5;
  return word.size() > 1 && word.size() <= longest &&
         std::all_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool isMassNumber(const std::string& word) {  // "m29" beside the isotope "Si29"
  return word.size() > 1 && word.size() < 5 && (word[0] == 'm' || word[0] == 'M') &&
         word.find_first_not_of("0123456789", 1) == std::string::npos;
}

// "Cu-4AB1", "Cu/XRF": an analyte and, after it, a method in one word. Only when the rest reads as
// a method; "As-received" does not.
bool splitJoined(Piece& piece, HeadingFacts& facts) {
  const size_t joint = piece.text.find_first_of("-/@");
  if (joint == std::string::npos || joint == 0 || joint + 1 >= piece.text.size()) return false;
  const std::string analyte = analyteOf(piece.text.substr(0, joint));
  const std::string rest = piece.text.substr(joint + 1);
  if (analyte.empty() || (!isMethodWord(rest) && unitWord(rest).kind == UnitKind::None))
    return false;
  facts.analyte = analyte;
  if (isMethodWord(rest)) {
    facts.method = rest;
  } else if (facts.unit.empty()) {
    facts.unit = unitWord(rest).unit;
    facts.unitText = rest;
  }
  piece.used = true;
  return true;
}

// The analyte of a run of words: "Total S", "Loss on ignition", "Fe2O3 T", "LOI 1000C".
bool takeRun(std::string_view heading, std::vector<Piece>& pieces, HeadingFacts& facts) {
  constexpr size_t mostWords = 4;
  for (size_t words = std::min(mostWords, pieces.size()); words > 0; --words) {
    for (size_t first = 0; first + words <= pieces.size(); ++first) {
      const auto begin = pieces.begin() + static_cast<std::ptrdiff_t>(first);
      const auto end = begin + static_cast<std::ptrdiff_t>(words);
      if (std::any_of(begin, end, [](const Piece& piece) { return piece.used; })) continue;
      std::string text = begin->text;
      if (words > 1) {
        size_t last = (end - 1)->end;
        // The closing bracket of "Fe2O3(T)" belongs to it.
        if (last < heading.size() && (heading[last] == ')' || heading[last] == ']')) ++last;
        text = replaceAll(heading.substr(begin->begin, last - begin->begin), "_", " ");
      }
      const std::string analyte = analyteOf(text);
      if (analyte.empty()) continue;
      facts.analyte = analyte;
      for (auto piece = begin; piece != end; ++piece) piece->used = true;
      return true;
    }
  }
  return false;
}

// Takes what is left as the method; false when a word is none.
bool takeMethod(std::string_view heading, std::vector<Piece>& pieces, HeadingFacts& facts) {
  std::string method = facts.method;
  for (Piece& piece : pieces) {
    if (piece.used || isMassNumber(piece.text)) continue;
    if (isFiller(piece.text)) continue;
    // "Cu-AA46 Cu %": the element named once more.
    if (analyteOf(piece.text) == facts.analyte) continue;
    if (!isMethodWord(piece.text)) {
      const bool joined = piece.text.find_first_of("-/") != std::string::npos;
      const bool initials = !facts.unit.empty() && isInitials(piece.text);
      if (!initials && (!joined || !isMethodText(piece.text))) return false;
    }
    if (!method.empty()) method += ' ';
    method += piece.text;
  }
  // Words that stood together stay as they were written: "ICP_MS".
  if (const size_t at = heading.find(replaceAll(method, " ", "_"));
      at != std::string_view::npos && method.find(' ') != std::string::npos) {
    method = std::string(heading.substr(at, method.size()));
  }
  facts.method = method;
  return true;
}

}  // namespace

HeadingFacts readHeading(std::string_view heading) {
  HeadingFacts facts;
  const std::string clean = replaceAll(heading, "\xC2\xA0", " ");
  heading = trimWhite(clean);
  constexpr size_t longest = 60;
  if (heading.empty() || heading.size() > longest) return facts;
  facts.isUncertainty = namesUncertainty(heading);
  if (std::string whole = analyteOf(heading); !whole.empty()) {
    facts.analyte = whole;
    return facts;
  }
  std::vector<Piece> pieces = piecesOf(heading);
  findUnit(heading, pieces, facts);
  bool found = takeRun(heading, pieces, facts);
  if (!found) {
    for (Piece& piece : pieces) {
      if (!piece.used && (found = splitJoined(piece, facts))) break;
    }
  }
  if (!found) return facts;
  if (!facts.isUncertainty && !takeMethod(heading, pieces, facts)) {
    facts.analyte.clear();
    facts.method.clear();
  }
  return facts;
}

}  // namespace lodex
