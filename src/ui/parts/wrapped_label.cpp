#include "ui/parts/wrapped_label.h"

#include <QPainter>
#include <QTextLayout>
#include <cmath>

namespace quendle {
namespace {

constexpr int kUnlimited = 1 << 20;

// A layout of `text` for that font, its lines one below the other.
class Lines {
 public:
  Lines(QString text, const QFont& font, int width)
      : layout_(
            text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace('\n', QChar::LineSeparator),
            font) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout_.setTextOption(option);
    layout_.beginLayout();
    for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
      line.setLineWidth(width);
      line.setPosition(QPointF(0, height_));
      height_ += line.height();
    }
    layout_.endLayout();
  }

  int Height() const { return static_cast<int>(std::ceil(height_)); }

  std::vector<int> Widths() const {
    std::vector<int> widths;
    widths.reserve(static_cast<std::size_t>(layout_.lineCount()));
    for (int i = 0; i < layout_.lineCount(); ++i) {
      widths.push_back(static_cast<int>(std::ceil(layout_.lineAt(i).naturalTextWidth())));
    }
    return widths;
  }

  void Draw(QPainter* painter) const { layout_.draw(painter, QPointF(0, 0)); }

 private:
  QTextLayout layout_;
  qreal height_ = 0;
};

}  // namespace

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);  // the height depends on the width
}

std::vector<int> WrappedLabel::LineWidths() const {
  return Lines(text(), font(), kUnlimited).Widths();
}

int WrappedLabel::heightForWidth(int width) const {
  return Lines(text(), font(), width).Height();
}

QSize WrappedLabel::sizeHint() const {
  const std::vector<int> widths = LineWidths();
  const int width = widths.empty() ? 0 : *std::max_element(widths.begin(), widths.end());
  return {width, heightForWidth(width)};
}

QSize WrappedLabel::minimumSizeHint() const {
  return {fontMetrics().maxWidth(), fontMetrics().height()};
}

void WrappedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  Lines(text(), font(), width()).Draw(&painter);
}

}  // namespace quendle
