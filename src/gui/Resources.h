#pragma once

namespace lodex {

/// Makes icons, Designer files and translations available; they lie in a static library.
void loadResources();

}  // namespace lodex
