#include "ui/windows/frmOverwrite.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>
#include <ctime>

#include "base/display.h"
#include "base/modString.h"
#include "platform/process/local_time.h"
#include "ui/parts/elided_label.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/pictures.h"
#include "ui/parts/text.h"
#include "ui/windows/frmProgress.h"

namespace quendle {
namespace {

using Answer = UserInterface::OverwriteAnswer;

constexpr int kWidth = 520;
constexpr int kIconPixels = 32;
constexpr int kButtonPadding = 20;

struct AnswerButton {
  TextId text;
  Answer answer;
};
constexpr AnswerButton kButtons[] = {
    {TextId::kOverwriteYes, Answer::kYes},
    {TextId::kOverwriteNo, Answer::kNo},
    {TextId::kOverwriteYesToAll, Answer::kYesToAll},
    {TextId::kOverwriteNoToAll, Answer::kNoToAll},
    {TextId::kCancel, Answer::kCancel},
};

QString BytesText(std::uint64_t bytes) {
  return Text(TextId::kOverwriteSizeInBytes)
      .arg(SizeText(bytes), QLocale(QLocale::Japanese).toString(static_cast<qulonglong>(bytes)));
}

//   => "2003-11-07 18:30:05"
QString TimeText(std::int64_t seconds) {
  std::tm local{};
  if (!platform::ToLocalTime(seconds, &local)) return Text(TextId::kOverwriteUnknownTime);
  return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                           local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

void AddLine(QGridLayout* grid, TextId caption, const std::string& path) {
  const int row = grid->rowCount();
  grid->addWidget(new QLabel(Text(caption)), row, 0);
  auto* label = new ElidedLabel;
  label->SetText(ToQt(ForDisplay(path)));
  grid->addWidget(label, row, 1, 1, 2);
}

// A figure, and in bold what makes it the more interesting of the two.
void AddLine(QGridLayout* grid, TextId caption, const QString& figure, TextId mark, bool is_marked) {
  const int row = grid->rowCount();
  grid->addWidget(new QLabel(Text(caption)), row, 0);
  grid->addWidget(new QLabel(figure), row, 1);
  if (!is_marked) return;
  auto* label = new QLabel(Text(mark));
  label->setObjectName(QStringLiteral("mark"));
  grid->addWidget(label, row, 2);
}

}  // namespace

frmOverwrite::frmOverwrite(QWidget* owner, const platform::FileSide& existing,
                           const platform::FileSide& incoming)
    : QDialog(owner) {
  setWindowTitle(Text(TextId::kOverwriteCaption));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  auto* row = new QHBoxLayout;
  row->addStretch();
  for (const AnswerButton& button : kButtons) AddButton(row, button.text, button.answer);
  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(10);
  auto* head = new QHBoxLayout;
  auto* icon = new QLabel;
  icon->setPixmap(Picture("question", kIconPixels, this));
  head->addWidget(icon);
  head->addSpacing(4);
  head->addWidget(new QLabel(Text(TextId::kOverwriteQuestion)), 1);
  layout->addLayout(head);
  layout->addWidget(MakeSide(TextId::kOverwriteExisting, existing, incoming));
  layout->addWidget(MakeSide(TextId::kOverwriteIncoming, incoming, existing));
  layout->addLayout(row);
  ApplyFormFont(this, true);
  for (QPushButton* button : findChildren<QPushButton*>()) {
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + kButtonPadding);
  }
  for (QLabel* mark : findChildren<QLabel*>(QStringLiteral("mark"))) {
    QFont bold = mark->font();
    bold.setBold(true);
    mark->setFont(bold);
  }
  const QSize needed = sizeHint();
  resize(qMax(kWidth, needed.width()), needed.height());
  CentreOnScreen(this);
}

QWidget* frmOverwrite::MakeSide(TextId title, const platform::FileSide& file,
                                const platform::FileSide& other) {
  auto* side = new QGroupBox(Text(title));
  auto* grid = new QGridLayout(side);
  grid->setColumnStretch(2, 1);
  grid->setHorizontalSpacing(12);
  const PathParts parts = SplitPath(file.path);
  AddLine(grid, TextId::kOverwriteName, parts.name);
  AddLine(grid, TextId::kOverwriteFolder, AddBackslash(parts.folder));
  AddLine(grid, TextId::kOverwriteSize, BytesText(file.size), TextId::kOverwriteLarger,
          file.size > other.size);
  AddLine(grid, TextId::kOverwriteTime, TimeText(file.write_time), TextId::kOverwriteNewer,
          file.write_time > other.write_time);
  return side;
}

void frmOverwrite::AddButton(QBoxLayout* row, TextId text, Answer answer) {
  auto* button = new QPushButton(Text(text));
  row->addWidget(button);
  connect(button, &QPushButton::clicked, this, [this, answer] {
    answer_ = answer;
    accept();
  });
  if (answer != Answer::kNo) return;
  button->setDefault(true);
  button->setFocus();
}

Answer frmOverwrite::Ask() {
  answer_ = Answer::kCancel;
  setWindowModality(Qt::ApplicationModal);
  return exec() == QDialog::Accepted ? answer_ : Answer::kCancel;
}

}  // namespace quendle
