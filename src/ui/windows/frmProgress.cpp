#include "ui/windows/frmProgress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "base/display.h"
#include "base/modString.h"
#include "ui/parts/elided_label.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

constexpr int kWidth = 440;
constexpr int kBarSteps = 1000;

QString AmountText(const platform::FileProgress& progress) {
  if (progress.bytes_done == 0 && progress.bytes_total == 0) return Text(TextId::kProgressPreparing);
  if (progress.bytes_total == 0) return SizeText(progress.bytes_done);
  return Text(TextId::kProgressDoneOfTotal)
      .arg(SizeText(progress.bytes_done), SizeText(progress.bytes_total));
}

QString TimeLeftText(double seconds) {
  constexpr double kLongest = 99 * 3600;  // beyond that nobody believes it
  if (seconds > kLongest) return {};
  const int whole = static_cast<int>(seconds) + 1;
  if (whole < 60) return Text(TextId::kProgressSecondsLeft).arg(whole);
  if (whole < 3600) return Text(TextId::kProgressMinutesLeft).arg(whole / 60).arg(whole % 60);
  return Text(TextId::kProgressHoursLeft).arg(whole / 3600).arg(whole / 60 % 60);
}

QString RateText(const platform::FileProgress& progress, double bytes_per_second) {
  QString text = Text(TextId::kProgressPerSecond).arg(SizeText(static_cast<std::uint64_t>(bytes_per_second)));
  if (progress.bytes_total <= progress.bytes_done || bytes_per_second < 1) return text;
  const QString left =
      TimeLeftText(static_cast<double>(progress.bytes_total - progress.bytes_done) / bytes_per_second);
  return left.isEmpty() ? text : text + QStringLiteral("\u3000") + left;
}

}  // namespace

QString SizeText(std::uint64_t bytes) {
  constexpr std::uint64_t kKibi = 1024;
  if (bytes < kKibi) return QString::number(bytes) + QLatin1String(" B");
  return QLocale::c().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeIecFormat);
}

frmProgress::frmProgress(QWidget* owner)
    : QDialog(owner),
      name_(new ElidedLabel(this)),
      amount_(new QLabel(this)),
      rate_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(Text(TextId::kCancel), this)) {
  setWindowTitle(Text(TextId::kProgressCaption));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setWindowModality(Qt::ApplicationModal);
  bar_->setRange(0, kBarSteps);
  auto* figures = new QHBoxLayout;
  figures->addWidget(amount_);
  figures->addStretch();
  figures->addWidget(rate_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(name_);
  layout->addWidget(bar_);
  layout->addLayout(figures);
  layout->addSpacing(6);
  layout->addLayout(buttons);
  ApplyFormFont(this, true);

  // Whoever types into another window while this one appears must not cancel by a blank: the window itself
  // has the focus.
  cancel_->setAutoDefault(false);
  setFocusPolicy(Qt::StrongFocus);
  setFocus();
  const QFontMetrics metrics = cancel_->fontMetrics();
  const int growth = metrics.horizontalAdvance(Text(TextId::kProgressCancelling)) -
                     metrics.horizontalAdvance(Text(TextId::kCancel));
  cancel_->setMinimumWidth(cancel_->sizeHint().width() + std::max(growth, 0));
  connect(cancel_, &QPushButton::clicked, this, &frmProgress::reject);
  resize(kWidth, sizeHint().height());
  CentreOnScreen(this);
}

void frmProgress::Update(const platform::FileProgress& progress, std::optional<double> bytes_per_second,
                         bool simple) {
  name_->setHidden(simple);
  if (!simple) {
    const std::string name = SplitPath(progress.path).name;
    name_->SetText(ToQt(ForDisplay(name.empty() ? progress.path : name)), ToQt(ForDisplay(progress.path)));
  }
  amount_->setText(AmountText(progress));
  rate_->setText(bytes_per_second ? RateText(progress, *bytes_per_second) : QString());
  UpdateBar(progress);
}

void frmProgress::UpdateBar(const platform::FileProgress& progress) {
  bar_->setMaximum(progress.bytes_total == 0 ? 0 : kBarSteps);
  if (progress.bytes_total == 0) return;
  const double part = static_cast<double>(progress.bytes_done) / static_cast<double>(progress.bytes_total);
  bar_->setValue(static_cast<int>(std::min(part, 1.0) * kBarSteps));
}

void frmProgress::reject() {
  cancelled_ = true;
  cancel_->setEnabled(false);
  cancel_->setText(Text(TextId::kProgressCancelling));
}

}  // namespace quendle
