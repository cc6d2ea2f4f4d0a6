#include "form/WorksheetDialogs.h"

#include "basic/Files.h"

namespace lodex {
namespace {

constexpr std::string_view workbookFilter =
    "Workbooks (*.xls;*.xlsx;*.ods;*.vts)|*.xls;*.xlsx;*.ods;*.vts|Tab delimited text "
    "(*.txt)|*.txt|All files (*.*)|*.*";

FileType typeOfName(std::string_view path, FileType otherwise) {
  const std::string ending = extensionOf(path);
  if (ending == "txt" || ending == "tsv") return FileType::Text;
  if (ending == "xls") return FileType::Excel;
  if (ending == "xlsx") return FileType::Xlsx;
  if (ending == "vts") return FileType::Native;
  return otherwise;
}

}  // namespace

bool OpenFileDlg(Dialogs& dialogs, std::string_view title, std::string& path) {
  FileRequest request;
  request.title = title;
  request.filter = workbookFilter;
  request.fileName = path;
  const auto files = dialogs.openFiles(request);
  if (files.empty()) return false;
  path = files.front();
  return true;
}

bool SaveFileDlg(Dialogs& dialogs, std::string_view title, std::string& path, FileType& type) {
  FileRequest request;
  request.title = title;
  request.filter = workbookFilter;
  request.fileName = path;
  const auto chosen = dialogs.saveFile(request);
  if (!chosen) return false;
  path = *chosen;
  type = typeOfName(path, type);
  return true;
}

}  // namespace lodex
