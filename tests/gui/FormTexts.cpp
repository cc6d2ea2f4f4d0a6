#include "gui/FormTexts.h"

#include <QDir>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include "gui/EveryForm.h"
#include "gui/QtText.h"

namespace lodex {
namespace {

bool hasWords(const std::string& text) {
  static const QRegularExpression word(QStringLiteral("[A-Za-z]{2}"));
  return toQt(text).contains(word);
}

// What a control shows to the user in words.
std::vector<std::string> textsOf(const Control& control) {
  std::vector<std::string> texts{control.caption(), control.toolTip()};
  if (auto* options = dynamic_cast<const OptionButtons*>(&control)) {
    texts.insert(texts.end(), options->captions().begin(), options->captions().end());
  }
  return texts;
}

void collect(const Form& form, std::set<FormText>& texts) {
  for (const Control* control : form.controls()) {
    for (const std::string& text : textsOf(*control)) {
      if (hasWords(text)) texts.emplace(form.name(), text);
    }
  }
}

// Captions that change at run time show their other text.
void switchStates(EveryForm& every) {
  every.main.cmdBDL.click();
  Findings found;
  found.note("Something");
  every.main.session().notice(found);
  for (Form* form : every.forms) {
    if (auto* sheet = dynamic_cast<DataSheetForm*>(form)) {
      sheet->txtH(sysrow::Element).setText(sheet->statusGreen() ? "0" : "1");
    }
  }
}

}  // namespace

std::set<FormText> windowTexts() {
  std::set<FormText> texts;
  const QDir folder(QStringLiteral(":/forms"));
  for (const QString& name : folder.entryList()) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly)) continue;
    const std::string form = fromQt(QFileInfo(name).baseName());
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
      if (xml.readNext() != QXmlStreamReader::StartElement) continue;
      const bool asItIs = xml.attributes().value(QLatin1String("notr")) == QLatin1String("true");
      if (xml.name() != QLatin1String("string") || asItIs) continue;
      const std::string text = fromQt(xml.readElementText());
      if (hasWords(text)) texts.emplace(form, text);
    }
  }
  return texts;
}

std::set<FormText> modelTexts(Session& session) {
  EveryForm every(session);
  std::set<FormText> texts;
  const auto collectAll = [&] {
    collect(every.main, texts);
    for (const Form* form : every.forms) collect(*form, texts);
    collect(frmSplitDialog("SiO2 %", TitleParts{}), texts);
  };
  collectAll();
  for (int state = 0; state < 2; ++state) {  // the other one, and back
    switchStates(every);
    collectAll();
  }
  const std::set<FormText> inFiles = windowTexts();
  std::erase_if(texts, [&](const FormText& text) {
    // The panel of the data sheets has a file of its own.
    return inFiles.contains(text) || inFiles.contains({"DataSheetPanel", text.second});
  });
  return texts;
}

}  // namespace lodex
