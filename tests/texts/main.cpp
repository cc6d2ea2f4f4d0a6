// Lists the texts that the forms set by themselves as C++ for the translation tools;
// script/translations runs it.
#include <iostream>
#include <sstream>

#include "basic/Text.h"
#include "form/Dialogs.h"
#include "form/EventPump.h"
#include "gui/FormTexts.h"
#include "gui/Resources.h"
#include "session/Session.h"

int main() {
  using namespace lodex;
  loadResources();
  std::ostringstream messages;
  ConsoleDialogs dialogs(messages, {});
  NoEvents events;
  MemoryClipboard clipboard;
  Session session(Services{dialogs, events, clipboard});
  std::cout << "const char* const texts[] = {\n";
  for (const auto& [form, text] : modelTexts(session)) {
    const std::string quoted = replaceAll(replaceAll(text, "\\", "\\\\"), "\"", "\\\"");
    std::cout << "    QT_TRANSLATE_NOOP(\"" << form << "\", \"" << quoted << "\"),\n";
  }
  std::cout << "};\n";
  return 0;
}
