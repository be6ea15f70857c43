// A label whose text can always be read to the end, however long its words are.
#pragma once

#include <QLabel>

namespace quendle {

// Shows plain text. Lines end at "\r\n" or "\n" and wrap between words, and within a word that is too long
// for a line.
class WrappedLabel : public QLabel {
 public:
  explicit WrappedLabel(QWidget* parent);

  // Of the lines of the text when nothing wraps, in logical pixels, rounded up.
  std::vector<int> LineWidths() const;

  int heightForWidth(int width) const override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace quendle
