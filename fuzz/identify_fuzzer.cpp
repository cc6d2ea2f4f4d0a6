// Any bytes as an analysis file: read as text, identified, edited and identified again.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string_view>

#include "basic/Error.h"
#include "chem/Elements.h"
#include "import/DataSheets.h"

namespace {

using namespace lodex;

struct World {
  World() {
    for (int n = 1; n <= 106; ++n) {
      tables.F1Data.TextRC(n + 1, 2, ElementSymbols()[static_cast<size_t>(n)]);
    }
    tables.F1Data.TextRC(122, 2, "MF_CATIONS");
    thesaurus.F1Lib.TextRC(1, 1, "Fe");
    thesaurus.F1Lib.TextRC(1, 2, "HEADER");
    thesaurus.F1Lib.TextRC(1, 4, "Fe2O3");
    context.HaeMinTieto = [](const std::string& mineral) {
      return std::vector<std::pair<std::string, std::string>>{{"MF_CATIONS", mineral}};
    };
  }
  std::ostringstream messages;
  ConsoleDialogs dialogs{messages, std::vector<std::string>(1000000, "yes")};
  NoEvents events;
  MemoryClipboard clipboard;
  Session session{Services{dialogs, events, clipboard}};
  taulukot tables;
  frmSynonLib thesaurus{session};
  ImportContext context{session, tables, thesaurus};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static World world;
  world.session.log.clear();
  world.messages.str("");
  frmDataIN form(world.context, "fuzz");
  try {
    form.readText({reinterpret_cast<const char*>(data), size}, "");
    form.AjaTunnista({});
    form.F1D.SetSelection(1, 1, 2, 2);
    form.DeleteCol();
    form.DeleteRow();
    form.AjaTunnista({});
  } catch (const Error&) {
    // A clear refusal is fine; anything else is a fault.
  }
  return 0;
}
