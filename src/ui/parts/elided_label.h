// Names and paths of any length in one line of a window.
#pragma once

#include <QLabel>
#include <QString>

namespace quendle {

// A label of one line that takes the width it is given: what does not fit is left out of the middle, and the
// whole text is in the tooltip. Nothing in the text is markup.
class ElidedLabel : public QLabel {
 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  void SetText(const QString& text) { SetText(text, text); }
  void SetText(const QString& text, const QString& whole);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace quendle
