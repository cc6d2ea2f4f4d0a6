#pragma once

namespace lodex {

/// Makes icons, Designer files and translations available; they are part of a static library.
void loadResources();

}  // namespace lodex
