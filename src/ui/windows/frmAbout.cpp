#include "ui/windows/frmAbout.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>

#include "archive/archiver_libraries.h"
#include "base/display.h"
#include "base/modString.h"
#include "core/modMain.h"
#include "files/clsFileVer.h"
#include "platform/services/library.h"
#include "resources/string_table.h"
#include "resources/version.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/pictures.h"
#include "ui/parts/text.h"
#include "ui/parts/wrapped_label.h"

namespace quendle {
namespace {

constexpr int kIconPixels = 64;
constexpr int kButtonPadding = 28;
constexpr std::size_t kNameColumns = 15;
constexpr std::size_t kVersionColumns = 12;

constexpr std::string_view kShownSuffix =
    kHostStyle == PathStyle::kWindows ? ".DLL" : platform::kLibrarySuffix;

// As they are listed. One of them is only known by its name.
constexpr const char* kLibraries[] = {"UnLHA32", "UnZIP32", "Cab32", "unrar32", "UNRAR", "7-zip32"};

std::string CopyrightText() {
  const std::string lines[] = {kProductName, GetVersionString(),        LoadText(TextId::kCompiled),
                               "",           LoadText(TextId::kRights), LoadText(TextId::kLicence)};
  std::string text;
  for (const std::string& line : lines) text += (&line == lines ? "" : "\r\n") + line;
  return text;
}

// Names and versions are ASCII: a byte takes a column. Longer texts push what is behind them.
std::string Padded(std::string text, std::size_t columns) {
  text.resize(std::max(text.size(), columns), ' ');
  return text;
}

// Null for a library that no archives are given to.
const ArchiverRow* RowOf(const std::string& name) {
  for (const ArchiverRow& row : ArchiverRows()) {
    if (row.library == name) return &row;
  }
  return nullptr;
}

// Empty for a library that does not say whose it is.
std::string Credit(const ArchiverLibrary* library) {
  const std::string credits = library == nullptr ? "" : library->Credits();
  return credits.empty() ? "" : LoadText(TextId::kCredit, {ForDisplay(credits)});
}

// One that cannot be used counts as missing.
std::string LibraryLine(const std::string& name, ArchiverLibraries* libraries) {
  const std::string head = Padded(name + std::string(kShownSuffix), kNameColumns);
  if (!libraries->IsInstalled(name)) return head + LoadText(TextId::kNotInstalled);
  const ArchiverRow* row = RowOf(name);
  const ArchiverLibrary* library = row == nullptr ? nullptr : libraries->Use(*row);
  if (row != nullptr && library == nullptr)
    return head + LoadText(TextId::kNotInstalled) + " " + ForDisplay(LoadText(libraries->Problem(*row)));
  clsFileVer file;
  file.pFileName(libraries->FileName(name));
  const std::string version = file.pVersionFull();
  return head + "\t" +
         Padded(version.empty() ? LoadText(TextId::kUnknownVersion) : version, kVersionColumns) +
         Credit(library);
}

// Qt's tabs are wider than a character of the list.
class ColumnDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QString displayText(const QVariant& value, const QLocale& locale) const override {
    return QStyledItemDelegate::displayText(value, locale).replace('\t', ' ');
  }
};

}  // namespace

frmAbout::frmAbout(QWidget* owner, const std::string& module_folder)
    : QDialog(owner),
      img(new QLabel(this)),
      lblCopyright(new WrappedLabel(this)),
      lst(new QListWidget(this)),
      cmd(new QPushButton(Text(TextId::kCloseButton), this)) {
  setWindowTitle(ToQt(LoadText(TextId::kAboutCaption, {kProductName})));
  img->setObjectName("img");
  lblCopyright->setObjectName("lblCopyright");
  lst->setObjectName("lst");
  cmd->setObjectName("cmd");

  img->setPixmap(Picture("quendle", kIconPixels, this));
  lblCopyright->setText(ToQt(CopyrightText()));
  lst->setAccessibleName(Text(TextId::kAboutLibraries));
  lst->setItemDelegate(new ColumnDelegate(lst));
  lst->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
  lst->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  ArchiverLibraries libraries(module_folder);
  for (const char* name : kLibraries) lst->addItem(ToQt(LibraryLine(name, &libraries)));
  cmd->setDefault(true);
  connect(cmd, &QPushButton::clicked, this, &QDialog::accept);
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this,
          &QDialog::accept);
  LayOut();
}

void frmAbout::LayOut() {
  auto* head = new QHBoxLayout;
  head->addWidget(img, 0, Qt::AlignTop);
  head->addSpacing(head->spacing());
  head->addWidget(lblCopyright, 1);
  auto* foot = new QHBoxLayout;
  foot->addStretch();
  foot->addWidget(cmd);
  auto* column = new QVBoxLayout(this);
  column->addLayout(head);
  column->addSpacing(column->spacing());
  column->addWidget(lst, 1);
  column->addLayout(foot);

  ApplyFormFont(this, true);
  lst->setFont(FixedPitchFont());
  cmd->setMinimumWidth(fontMetrics().horizontalAdvance(cmd->text()) + kButtonPadding);
  resize(sizeHint().boundedTo(screen()->availableSize()));
  cmd->setFocus();
}

void ShowAbout(QWidget* owner, const std::string& module_folder) {
  frmAbout(owner, module_folder).exec();
}

}  // namespace quendle
