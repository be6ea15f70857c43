// The style of all windows.
#pragma once

#include <QProxyStyle>

namespace quendle {

// The desktop's own, but that what few ever see does not delay every start.
class ProgramStyle : public QProxyStyle {
 public:
  // A menu bar asks at once for the picture of the button that it shows when it is too narrow; decoding the style's own one
  // takes longer than making all menus. Drawn only when shown.
  QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;

  // The frame of a group box in Fusion is a picture, for whose sake all readers of pictures would be looked for and one be
  // loaded before the first window is painted.
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

}  // namespace quendle
