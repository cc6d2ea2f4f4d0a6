#pragma once

#include <functional>

#include "basic/Findings.h"

namespace lodex {

/// Thrown by Watch::poll to leave the steps of a calculation that the user aborts.
struct AbortRequested {};

/// Where the steps of a calculation report what they notice, and where they ask whether to go on.
struct Watch {
  Findings& found;
  /// Called by steps that may take long, every few thousand cells; throws AbortRequested when the
  /// user wants to stop.
  std::function<void()> poll = [] {};
};

}  // namespace lodex
