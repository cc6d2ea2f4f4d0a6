#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "session/Session.h"

namespace lodex {

/// The menus of the main window.
enum class Menu { File, Calculation, Database, Window, Help };

/// How the main window offers a command. An entry whose action the main window's Designer file
/// already has keeps its place, icon and short cut there; any other one is made from this row.
struct MenuEntry {
  std::string_view name;     // of its control; ":/icons/<name>.svg" is its icon, if there is one
  std::string_view caption;  // "&" marks the letter for Alt
  std::string_view hint;     // what the command does: tool tip and status line
  Menu menu;
  std::string_view keys{};   // the short cut, such as "Ctrl+L"
  std::string_view after{};  // name of the entry above it; "" puts it at the end of the menu
  bool tool = false;         // on the tool bar as well
};

/// The doors by which subsystems come into the main window: each command, window or dock is one
/// line in Windows.cpp, and the views build menus and tool bar from what is added here.
class Doors {
 public:
  /// The controls of the entries are made on `shell`. Both must outlive the doors.
  Doors(Form& shell, Session& session) : shell_(shell), session_(session) {}

  /// Adds an entry that runs a command. Without a command it is disabled.
  MenuItem& addCommand(const MenuEntry& entry, const std::function<void()>& command);
  /// Adds a window with the entry that shows it and brings it to the front. A window that others
  /// work with belongs to them and must outlive the main window's QueryUnload; any other one is
  /// given away here.
  void addWindow(const MenuEntry& entry, Form& form);
  void addWindow(const MenuEntry& entry, std::unique_ptr<Form> form);
  /// Adds a window that docks at an edge of the main window, with the entry that shows and hides it
  /// and is checked while it is visible.
  void addDock(const MenuEntry& entry, Form& form);

  struct Offer {
    Offer(Form& shell, const MenuEntry& described)
        : entry(described), control(shell, described.name, described.caption) {}
    MenuEntry entry;
    MenuItem control;
  };
  /// In the order in which they were added.
  const std::deque<Offer>& offers() const { return offers_; }
  /// All windows and docks, in the order in which they were added.
  const std::vector<Form*>& windows() const { return windows_; }
  bool isDock(const Form& form) const;

  /// Called after a window was shown by its entry.
  std::function<void(Form&)> bringToFront{};

 private:
  Form& shell_;
  Session& session_;
  std::deque<Offer> offers_;
  std::vector<Form*> windows_;
  std::vector<Form*> docks_;
  std::vector<std::unique_ptr<Form>> owned_;
  Subscriptions observed_;
};

class MDIMain;

/// Adds the windows and commands of all subsystems: one line each, in Windows.cpp.
void addWindows(Doors& doors, MDIMain& main);

}  // namespace lodex
