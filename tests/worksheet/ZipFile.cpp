#include "worksheet/ZipFile.h"

#include <gsf/gsf.h>

namespace lodex {

std::string zipOf(const std::vector<std::pair<std::string, std::string>>& parts) {
  gsf_init();
  GsfOutput* memory = gsf_output_memory_new();
  GsfOutfile* zip = gsf_outfile_zip_new(memory, nullptr);
  for (const auto& [path, content] : parts) {
    GsfOutput* part = gsf_outfile_new_child(zip, path.c_str(), FALSE);
    gsf_output_write(part, content.size(), reinterpret_cast<const guint8*>(content.data()));
    gsf_output_close(part);
    g_object_unref(part);
  }
  gsf_output_close(GSF_OUTPUT(zip));
  const auto* bytes = gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(memory));
  std::string out(reinterpret_cast<const char*>(bytes),
                  static_cast<size_t>(gsf_output_size(memory)));
  g_object_unref(zip);
  g_object_unref(memory);
  return out;
}

}  // namespace lodex
