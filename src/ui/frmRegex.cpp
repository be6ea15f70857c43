#include "ui/frmRegex.h"

namespace quendle {

void OpenRegexTester(QWidget*, const std::string&, const std::string&) {}

}  // namespace quendle
