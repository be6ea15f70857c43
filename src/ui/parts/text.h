// Texts of the program as Qt has them.
#pragma once

#include <QString>
#include <string>

#include "base/text.h"

namespace quendle {

inline QString ToQt(const std::string& utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

inline QString Text(TextId id) {
  return ToQt(LoadText(id));
}

}  // namespace quendle
