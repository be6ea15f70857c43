#include "ui/program_style.h"

#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>

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

}  // namespace

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                 const QWidget* widget) const {
  if (icon == SP_ToolBarHorizontalExtensionButton) return QIcon(new ArrowDown(*this));
  return QProxyStyle::standardIcon(icon, option, widget);
}

}  // namespace quendle
