#pragma once

#include <set>
#include <string>
#include <utility>

namespace lodex {

class Session;

/// A form's name, which is the context of its translations, and a text in its original language.
using FormText = std::pair<std::string, std::string>;

/// The texts of all Designer files.
std::set<FormText> windowTexts();

/// The captions and tool tips that the forms themselves set, so that no Designer file has them.
std::set<FormText> modelTexts(Session& session);

}  // namespace lodex
