#pragma once

#include <deque>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lodex {

class Form;

enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MessageIcon { None, Information, Question, Warning, Stop };
enum class Answer { Ok, Cancel, Yes, No };

/// A file dialog. `filter` has the form "Text files (*.txt)|*.txt|All files (*.*)|*.*".
struct FileRequest {
  std::string title;
  std::string filter;
  std::string folder;    // where the dialog starts; empty: the folder used last
  std::string fileName;  // proposed name
  bool multiple = false;
};

/// The one way in which logic asks its user.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  virtual Answer messageBox(std::string_view text, MessageButtons buttons = MessageButtons::Ok,
                            MessageIcon icon = MessageIcon::None, std::string_view title = {}) = 0;
  /// Empty when cancelled.
  virtual std::optional<std::string> inputBox(std::string_view prompt, std::string_view title,
                                              std::string_view proposal) = 0;
  /// The chosen files; none when cancelled.
  virtual std::vector<std::string> openFiles(const FileRequest& request) = 0;
  /// The chosen path; empty when cancelled.
  virtual std::optional<std::string> saveFile(const FileRequest& request) = 0;
  /// The index of the chosen item; empty when cancelled.
  virtual std::optional<int> selectFromList(std::string_view title,
                                            const std::vector<std::string>& items) = 0;
  /// Shows a form modally and returns when it closes.
  virtual void showModal(Form& form) = 0;
};

/// Dialogs of the command line: messages go to a stream, and a question takes the next of the
/// answers given in advance. Without one left, a message is answered by its safe button (OK, No,
/// Cancel), an input box by its proposal and everything else by cancelling; a form is closed
/// unchanged, which leaves its defaults in force.
class ConsoleDialogs : public Dialogs {
 public:
  ConsoleDialogs(std::ostream& messages, std::vector<std::string> answers);
  Answer messageBox(std::string_view text, MessageButtons buttons, MessageIcon icon,
                    std::string_view title) override;
  std::optional<std::string> inputBox(std::string_view prompt, std::string_view title,
                                      std::string_view proposal) override;
  std::vector<std::string> openFiles(const FileRequest& request) override;
  std::optional<std::string> saveFile(const FileRequest& request) override;
  std::optional<int> selectFromList(std::string_view title,
                                    const std::vector<std::string>& items) override;
  void showModal(Form& form) override;

 private:
  std::optional<std::string> nextAnswer();

  std::ostream& messages_;
  std::deque<std::string> answers_;
};

/// Dialogs of the tests: every question must be expected, in order; one that was not throws
/// std::logic_error. `asked` keeps the texts of all questions.
class ScriptedDialogs : public Dialogs {
 public:
  void expectMessage(std::string text, Answer answer = Answer::Ok);
  void expectInput(std::string prompt, std::optional<std::string> answer);
  void expectOpen(std::vector<std::string> files);
  void expectSave(std::optional<std::string> path);
  void expectSelection(std::optional<int> index);
  /// `act` plays the user: it sets controls and clicks buttons of the form shown.
  void expectForm(std::string formName, std::function<void(Form&)> act);

  Answer messageBox(std::string_view text, MessageButtons buttons, MessageIcon icon,
                    std::string_view title) override;
  std::optional<std::string> inputBox(std::string_view prompt, std::string_view title,
                                      std::string_view proposal) override;
  std::vector<std::string> openFiles(const FileRequest& request) override;
  std::optional<std::string> saveFile(const FileRequest& request) override;
  std::optional<int> selectFromList(std::string_view title,
                                    const std::vector<std::string>& items) override;
  void showModal(Form& form) override;

  const std::vector<std::string>& asked() const { return asked_; }
  bool allAsked() const { return expected_.empty(); }

 private:
  enum class Kind { Message, Input, Open, Save, Selection, Form };
  struct Expected {
    Kind kind = Kind::Message;
    std::string text;
    Answer answer = Answer::Ok;
    std::optional<std::string> reply;
    std::vector<std::string> files;
    std::optional<int> index;
    std::function<void(Form&)> act;
  };
  void expect(Expected expected) { expected_.push_back(std::move(expected)); }
  Expected take(Kind kind, std::string_view text);

  std::deque<Expected> expected_;
  std::vector<std::string> asked_;
};

}  // namespace lodex
