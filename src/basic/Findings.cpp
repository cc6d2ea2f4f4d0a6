#include "basic/Findings.h"

#include "basic/A1.h"
#include "basic/Files.h"

namespace lodex {
namespace {

constexpr const char* beyondKept = "Further findings of other kinds are not listed";

std::string cellName(const Place& place) {
  if (place.row > 0 && place.column > 0) {
    return cellAddress(place.row, place.column);
  }
  if (place.row > 0) return "row " + std::to_string(place.row);
  if (place.column > 0) return "column " + columnLetters(place.column);
  return "";
}

std::string keyOf(Severity severity, std::string_view text, const Place& place) {
  std::string key = std::to_string(static_cast<int>(severity));
  for (const std::string_view part :
       {text, std::string_view(place.file), std::string_view(place.sheet)}) {
    key += '\0';
    key += part;
  }
  return key;
}

}  // namespace

std::string describe(const Place& place) {
  std::string words;
  const auto add = [&](const std::string& word) {
    if (word.empty()) return;
    if (!words.empty()) words += ", ";
    words += word;
  };
  add(fileNameOf(place.file));
  if (!place.sheet.empty()) add("sheet " + place.sheet);
  add(cellName(place));
  if (!place.record.empty()) add("record " + place.record);
  return words;
}

std::string describe(const Finding& finding) {
  const std::string place = finding.places.empty() ? "" : describe(finding.places.front());
  std::string line = place.empty() ? finding.text : place + ": " + finding.text;
  if (finding.count > 1) line += " (" + std::to_string(finding.count) + " times)";
  return line;
}

void Findings::add(Severity severity, std::string_view text, const Place& place, size_t count) {
  if (count == 0) return;
  counts_[static_cast<size_t>(severity)] += count;
  Finding* same = find(severity, text, place);
  if (same == nullptr && all_.size() >= findingsKept) {
    const Place nowhere;
    same = find(severity, beyondKept, nowhere);
    if (same == nullptr) {
      index_.emplace(keyOf(severity, beyondKept, nowhere), all_.size());
      same = &all_.emplace_back(Finding{severity, beyondKept, {nowhere}, 0});
    }
    same->count += count;
    return;
  }
  if (same == nullptr) {
    index_.emplace(keyOf(severity, text, place), all_.size());
    same = &all_.emplace_back(Finding{severity, std::string(text), {}, 0});
  }
  same->count += count;
  if (same->places.size() < placesKept) same->places.push_back(place);
}

void Findings::append(const Findings& other) {
  for (const Finding& finding : other.all_) {
    for (const Place& place : finding.places) add(finding.severity, finding.text, place);
    if (finding.count > finding.places.size()) {
      Finding* same = find(finding.severity, finding.text, finding.places.front());
      const size_t further = finding.count - finding.places.size();
      if (same != nullptr) same->count += further;
      counts_[static_cast<size_t>(finding.severity)] += further;
    }
  }
}

void Findings::nameFile(std::string_view file) {
  index_.clear();
  for (size_t i = 0; i < all_.size(); ++i) {
    for (Place& place : all_[i].places) {
      if (place.file.empty()) place.file = file;
    }
    index_.emplace(keyOf(all_[i].severity, all_[i].text, all_[i].places.front()), i);
  }
}

Finding* Findings::find(Severity severity, std::string_view text, const Place& place) {
  const auto found = index_.find(keyOf(severity, text, place));
  return found == index_.end() ? nullptr : &all_[found->second];
}

}  // namespace lodex
