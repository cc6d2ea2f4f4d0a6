#pragma once

#include <functional>
#include <string>

namespace lodex {

class Form;

enum class Arrangement { Cascade, TileHorizontally, TileVertically };

/// What the main window needs of the platform. A function that is not given is a service that the
/// platform does not have: its commands are disabled or do nothing, as described here.
struct ShellServices {
  /// The folder of the program; the installation folder "Geo" is in it.
  std::string appFolder;
  /// Version text for the splash window and "About".
  std::string version;

  /// Another process of the program runs for this user. Not given: none does.
  std::function<bool()> anotherInstanceRuns{};
  /// Brings the window of that process to the front.
  std::function<void()> activateOther{};
  /// A form of the main window that may be shown now or later. It lives until its own end; data
  /// sheets come one by one, all other forms once.
  std::function<void(Form&)> watch{};
  /// Opens a text file in an editor. Throws Error when that fails. Without it the ini commands are
  /// disabled.
  std::function<void(const std::string& path)> startEditor{};
  /// Starts a program with one argument. Throws Error when that fails. Without it the viewer
  /// command is disabled.
  std::function<void(const std::string& program, const std::string& argument)> startViewer{};
  /// Shows the help on a window by the name of its form. Throws Error when that fails. Without it
  /// the help commands are disabled.
  std::function<void(const std::string& topic)> showHelp{};
  /// Arranges the windows of the data sheets.
  std::function<void(Arrangement)> arrange{};
  /// Brings a window to the front although it is shown already.
  std::function<void(Form&)> bringToFront{};
  /// Calls tmrReady once after so many milliseconds.
  std::function<void(int milliseconds)> startTmrReady{};
  /// Asked before the program ends, for windows that hold unsaved text; false when the user wants
  /// to stay.
  std::function<bool()> mayLeave{};
  /// Ends the process; all forms are closed by then.
  std::function<void()> quit{};
};

}  // namespace lodex
