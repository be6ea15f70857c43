#include "ui/parts/program_style.h"

#include <QGroupBox>
#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>

#include "ui/parts/form_helpers.h"

namespace quendle {
namespace {

class ArrowDown : public QIconEngine {
 public:
  explicit ArrowDown(const QStyle& style) : style_(style) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
    QStyleOption option;
    option.rect = rect;
    option.state = QStyle::State_Enabled;
    style_.drawPrimitive(QStyle::PE_IndicatorArrowDown, &option, painter);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap drawn(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    paint(&painter, drawn.rect(), mode, state);
    return drawn;
  }

  QIconEngine* clone() const override { return new ArrowDown(*this); }

 private:
  const QStyle& style_;
};

// As Fusion has it.
constexpr int kFrameMargin = 3;
constexpr QColor kFrameLine(117, 117, 117);
constexpr int kFrameShare = 20;  // percent

}  // namespace

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                 const QWidget* widget) const {
  if (icon == SP_ToolBarHorizontalExtensionButton) return QIcon(new ArrowDown(*this));
  return QProxyStyle::standardIcon(icon, option, widget);
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
  const auto* group = qobject_cast<const QGroupBox*>(widget);
  if (element != PE_FrameGroupBox || group == nullptr || baseStyle()->name() != QLatin1String("fusion")) {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    return;
  }
  int top = kFrameMargin;
  if (!group->title().isEmpty() || group->isCheckable()) {
    top += std::max(proxy()->pixelMetric(PM_IndicatorHeight, option, widget), option->fontMetrics.height());
  }
  // In opaque pieces: smoothed or translucent drawing this large is shared out to threads, whose start takes longer.
  const QRect frame = option->rect.adjusted(1, top + 1, -1, -1);
  const QColor line = MixedColour(option->palette.color(QPalette::Window), kFrameLine, kFrameShare);
  const QPoint across(1, 0);  // the corners stay free, which looks round
  const QPoint down(0, 1);
  for (const QRect& piece : {QRect(frame.topLeft() + across, frame.topRight() - across),
                             QRect(frame.bottomLeft() + across, frame.bottomRight() - across),
                             QRect(frame.topLeft() + down, frame.bottomLeft() - down),
                             QRect(frame.topRight() + down, frame.bottomRight() - down)}) {
    painter->fillRect(piece, line);
  }
}

}  // namespace quendle
