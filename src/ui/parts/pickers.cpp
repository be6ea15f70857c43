#include "ui/parts/pickers.h"

#include <QDir>
#include <QFileDialog>
#include <QStringList>

#include "base/modString.h"
#include "files/modBrowseDir.h"
#include "platform/entries/paths.h"
#include "platform/text/unicode.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

// The dialogs know names only as text: they begin above a folder whose name is none.
QString StartFolder(const std::string& proposed) {
  std::string folder = PickerStartFolder(proposed);
  while (!platform::IsUtf8(folder)) folder = PickerStartFolder(SplitPath(RemoveBackslashes(folder)).folder);
  return ToQt(folder);
}

// A name that is no text is shown with replacement characters, which lead to another file, if to any.
std::string PickedPath(const QString& picked) {
  std::string path = FromQt(QDir::toNativeSeparators(picked));
  if (picked.contains(QChar::ReplacementCharacter) && !platform::IsTaken(path)) return "";
  return path;
}

//   "プログラム", "*.exe;*.com" => "プログラム (*.exe *.com)"
QString NameFilters(const FileDialogRequest& request) {
  QStringList filters;
  for (const auto& [shown, patterns] : request.filter) {
    QStringList names = ToQt(patterns).split(u';', Qt::SkipEmptyParts);
    for (QString& name : names) {
      name = name.trimmed();
      if (name == QLatin1String("*.*")) name = QStringLiteral("*");  // names without a dot, too
    }
    filters.append(ToQt(shown) + QLatin1String(" (") + names.join(u' ') + u')');
  }
  return filters.join(QLatin1String(";;"));
}

}  // namespace

std::string PickFolder(QWidget* owner, const std::string& prompt, const std::string& proposed) {
  return PickedPath(QFileDialog::getExistingDirectory(owner, ToQt(prompt), StartFolder(proposed)));
}

std::string ShowFileDialog(QWidget* owner, const FileDialogRequest& request) {
  const QString name = platform::IsUtf8(request.name) ? ToQt(request.name) : QString();
  const QString start = StartFolder(request.folder) + name;
  // The texts name their patterns themselves when they want them shown.
  const QFileDialog::Options options = QFileDialog::HideNameFilterDetails;
  const auto show = request.open ? &QFileDialog::getOpenFileName : &QFileDialog::getSaveFileName;
  return PickedPath(show(owner, ToQt(request.title), start, NameFilters(request), nullptr, options));
}

}  // namespace quendle
