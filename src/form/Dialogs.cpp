#include "form/Dialogs.h"

#include <ostream>
#include <stdexcept>

#include "basic/Numbers.h"
#include "basic/Text.h"
#include "form/Form.h"

namespace lodex {

ConsoleDialogs::ConsoleDialogs(std::ostream& messages, std::vector<std::string> answers)
    : messages_(messages), answers_(answers.begin(), answers.end()) {}

std::optional<std::string> ConsoleDialogs::nextAnswer() {
  if (answers_.empty()) return std::nullopt;
  std::string answer = std::move(answers_.front());
  answers_.pop_front();
  return answer;
}

Answer ConsoleDialogs::messageBox(std::string_view text, MessageButtons buttons, MessageIcon,
                                  std::string_view) {
  messages_ << text << '\n';
  if (buttons == MessageButtons::Ok) return Answer::Ok;
  const std::string answer = nextAnswer().value_or("");
  if (equalsNoCase(answer, "yes") || equalsNoCase(answer, "y")) return Answer::Yes;
  if (equalsNoCase(answer, "ok")) return Answer::Ok;
  if (equalsNoCase(answer, "no") || equalsNoCase(answer, "n")) return Answer::No;
  return buttons == MessageButtons::YesNo ? Answer::No : Answer::Cancel;
}

std::optional<std::string> ConsoleDialogs::inputBox(std::string_view prompt, std::string_view,
                                                    std::string_view proposal) {
  const std::string answer = nextAnswer().value_or(std::string(proposal));
  messages_ << prompt << ' ' << answer << '\n';
  return answer;
}

std::vector<std::string> ConsoleDialogs::openFiles(const FileRequest&) {
  const auto answer = nextAnswer();
  return answer ? std::vector<std::string>{*answer} : std::vector<std::string>{};
}

std::optional<std::string> ConsoleDialogs::saveFile(const FileRequest&) {
  return nextAnswer();
}

std::optional<int> ConsoleDialogs::selectFromList(std::string_view,
                                                  const std::vector<std::string>& items) {
  const auto answer = nextAnswer();
  if (!answer) return std::nullopt;
  for (size_t i = 0; i < items.size(); ++i) {
    if (equalsNoCase(items[i], *answer)) return static_cast<int>(i);
  }
  return std::nullopt;
}

void ConsoleDialogs::showModal(Form& form) {
  form.close();
}

void ScriptedDialogs::expectMessage(std::string text, Answer answer) {
  Expected expected;
  expected.text = std::move(text);
  expected.answer = answer;
  expect(std::move(expected));
}

void ScriptedDialogs::expectInput(std::string prompt, std::optional<std::string> answer) {
  Expected expected;
  expected.kind = Kind::Input;
  expected.text = std::move(prompt);
  expected.reply = std::move(answer);
  expect(std::move(expected));
}

void ScriptedDialogs::expectOpen(std::vector<std::string> files) {
  Expected expected;
  expected.kind = Kind::Open;
  expected.files = std::move(files);
  expect(std::move(expected));
}

void ScriptedDialogs::expectSave(std::optional<std::string> path) {
  Expected expected;
  expected.kind = Kind::Save;
  expected.reply = std::move(path);
  expect(std::move(expected));
}

void ScriptedDialogs::expectSelection(std::optional<int> index) {
  Expected expected;
  expected.kind = Kind::Selection;
  expected.index = index;
  expect(std::move(expected));
}

void ScriptedDialogs::expectForm(std::string formName, std::function<void(Form&)> act) {
  Expected expected;
  expected.kind = Kind::Form;
  expected.text = std::move(formName);
  expected.act = std::move(act);
  expect(std::move(expected));
}

ScriptedDialogs::Expected ScriptedDialogs::take(Kind kind, std::string_view text) {
  asked_.emplace_back(text);
  if (expected_.empty()) throw std::logic_error("Unexpected question: " + std::string(text));
  Expected next = std::move(expected_.front());
  expected_.pop_front();
  const bool textMatters = kind == Kind::Message || kind == Kind::Input || kind == Kind::Form;
  if (next.kind != kind || (textMatters && next.text != text)) {
    throw std::logic_error("Expected question: " + next.text + "; asked: " + std::string(text));
  }
  return next;
}

Answer ScriptedDialogs::messageBox(std::string_view text, MessageButtons, MessageIcon,
                                   std::string_view) {
  return take(Kind::Message, text).answer;
}

std::optional<std::string> ScriptedDialogs::inputBox(std::string_view prompt, std::string_view,
                                                     std::string_view) {
  return take(Kind::Input, prompt).reply;
}

std::vector<std::string> ScriptedDialogs::openFiles(const FileRequest& request) {
  return take(Kind::Open, request.title).files;
}

std::optional<std::string> ScriptedDialogs::saveFile(const FileRequest& request) {
  return take(Kind::Save, request.title).reply;
}

std::optional<int> ScriptedDialogs::selectFromList(std::string_view title,
                                                   const std::vector<std::string>&) {
  return take(Kind::Selection, title).index;
}

void ScriptedDialogs::showModal(Form& form) {
  const Expected next = take(Kind::Form, form.name());
  if (next.act) next.act(form);
}

}  // namespace lodex
