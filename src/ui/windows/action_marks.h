// What a profile does, as small marks in its row.
#pragma once

#include <QStyledItemDelegate>

#include "ui/windows/profile_model.h"

namespace quendle {

// Each action has a place of its own, so that marks stand in columns. They are pale when the profile takes
// its actions from the standard settings.
class ActionMarks : public QStyledItemDelegate {
 public:
  ActionMarks(const ProfileModel& model, QObject* parent) : QStyledItemDelegate(parent), model_(model) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  // The width of all marks, in logical pixels.
  static int Width(const QFont& font);

 private:
  const ProfileModel& model_;
};

}  // namespace quendle
