#include "ui/parts/dropped_files.h"

#include <QDir>
#include <QMimeData>
#include <QSysInfo>
#include <QUrl>

#include "ui/parts/text.h"

namespace quendle {
namespace {

bool IsHere(const QUrl& url) {
  const QString host = url.host();
  const bool is_own_host = host.isEmpty() || host == QLatin1String("localhost") ||
                           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
  // What is relative to some other program's folder is nowhere here.
  return url.isLocalFile() && is_own_host && QDir::isAbsolutePath(url.toLocalFile());
}

// A name that is no text keeps its bytes, which stand in the address as they are.
std::string PathOf(QUrl url) {
  url.setHost(QString());
  const QString path = QDir::toNativeSeparators(url.toLocalFile());
  if (!path.contains(QChar::ReplacementCharacter)) return FromQt(path);
  return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

}  // namespace

std::vector<std::string> DroppedPaths(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    const std::string path = IsHere(url) ? PathOf(url) : "";
    if (path.empty()) return {};
    paths.push_back(path);
  }
  return paths;
}

}  // namespace quendle
