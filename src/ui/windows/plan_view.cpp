#include "ui/windows/plan_view.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "resources/string_table.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"

namespace quendle {

class ElidedLine : public QLabel {
 public:
  explicit ElidedLine(QWidget* owner) : QLabel(owner) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  }

  void Show(PlanLine line) {
    line_ = std::move(line);
    setAccessibleName(ToQt(line_.Whole()));
    Paint();
    Fit();
  }

  // An empty line takes as much room as any.
  QSize sizeHint() const override { return {0, fontMetrics().lineSpacing()}; }
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QLabel::resizeEvent(event);
    Fit();
  }
  void changeEvent(QEvent* event) override {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) Fit();
    // The colour follows the theme; setting it comes here again.
    if (event->type() == QEvent::PaletteChange && !std::exchange(painting_, true)) {
      Paint();
      painting_ = false;
    }
  }

 private:
  void Paint() {
    QPalette colours;
    if (line_.fails) colours.setColor(QPalette::WindowText, WarningColour(colours));
    setPalette(colours);
  }

  void Fit() {
    const QFontMetrics metrics = fontMetrics();
    const QString lead = ToQt(line_.lead);
    const QString note = ToQt(line_.note);
    // The path gives way first, but a long reason must not hide it. Joined, the parts may be a little wider.
    const int left = width() - metrics.horizontalAdvance(lead + note) - metrics.averageCharWidth();
    const QString path = metrics.elidedText(ToQt(line_.path), Qt::ElideMiddle, std::max(left, width() / 3));
    setText(metrics.elidedText(lead + path + note, Qt::ElideRight, width()));
  }

  PlanLine line_;
  bool painting_ = false;
};

PlanView::PlanView(QWidget* owner) : QGroupBox(Text(TextId::kPlanCaption), owner) {
  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(2);
  for (ElidedLine*& line : lines_) {
    line = new ElidedLine(this);
    layout->addWidget(line);
  }
}

void PlanView::Show(const std::vector<PlanLine>& lines) {
  QStringList whole;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    lines_[i]->Show(i < lines.size() ? lines[i] : PlanLine());
    if (i >= lines.size()) continue;
    whole += ToQt(lines[i].Whole());
    for (const std::string& name : lines[i].replaced) whole += "    " + ToQt(name);
  }
  setToolTip(PlainToolTip(whole.join('\n')));
}

void PlanView::ShowProblem(const std::string& reason) {
  Show({{"", "", ReasonInOneLine(reason), true, {}}});
}

}  // namespace quendle
