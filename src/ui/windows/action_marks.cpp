#include "ui/windows/action_marks.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>

#include "core/action_text.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

constexpr int kGap = 4;
constexpr int kPadding = 5;  // of a mark, on the left and on the right
constexpr int kMargin = 4;   // of the cell

QFont MarkFont(QFont font) {
  font.setPointSizeF(font.pointSizeF() * 0.88);
  return font;
}

int MarkWidth(const QFontMetrics& metrics, StepKind kind) {
  return metrics.horizontalAdvance(ToQt(StepName(kind))) + 2 * kPadding;
}

// Green, orange and blue, brighter where the text is bright.
QColor MarkColourOf(StepKind kind, const QColor& text) {
  const int hue = kind == StepKind::kExtract ? 145 : kind == StepKind::kMove ? 28 : 215;
  return text.lightness() > 127 ? QColor::fromHsl(hue, 150, 190) : QColor::fromHsl(hue, 190, 80);
}

// On a ground of its own: how styles paint what is selected differs.
void PaintMark(QPainter* painter, const QRect& place, StepKind kind, const QPalette& palette) {
  const QColor colour = MarkColourOf(kind, palette.color(QPalette::WindowText));
  painter->setPen(colour);
  painter->setBrush(MixedColour(palette.color(QPalette::Base), colour, 13));
  painter->drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
  painter->drawText(place, Qt::AlignCenter, ToQt(StepName(kind)));
}

}  // namespace

int ActionMarks::Width(const QFont& font) {
  const QFontMetrics metrics(MarkFont(font));
  int width = 2 * kMargin;
  for (const StepKind kind : kStepKinds) width += MarkWidth(metrics, kind) + kGap;
  return width - kGap;
}

QSize ActionMarks::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  return {Width(option.font), QStyledItemDelegate::sizeHint(option, index).height()};
}

void ActionMarks::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
  const ProfileRow& row = model_.RowAt(index.row());
  if (row.action == kNoSteps) {
    QStyledItemDelegate::paint(painter, option, index);
    return;
  }
  QStyleOptionViewItem cell = option;
  initStyleOption(&cell, index);
  cell.text.clear();
  const QStyle* style = cell.widget == nullptr ? QApplication::style() : cell.widget->style();
  style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

  painter->save();
  painter->setClipRect(cell.rect);
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setFont(MarkFont(cell.font));
  painter->setOpacity(row.inherits_action ? 0.55 : 1.0);
  const QFontMetrics metrics(painter->font());
  const int height = std::min(metrics.height() + 2, cell.rect.height() - 2);
  int x = cell.rect.left() + kMargin;
  for (const StepKind kind : kStepKinds) {
    const int width = MarkWidth(metrics, kind);
    const QRect place(x, cell.rect.center().y() - height / 2 + 1, width, height);
    if (Includes(row.action, kind)) PaintMark(painter, place, kind, cell.palette);
    x += width + kGap;
  }
  painter->restore();
}

}  // namespace quendle
