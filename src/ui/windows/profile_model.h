// The rows of the list of profiles as Qt's views ask for them.
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <cstddef>
#include <vector>

#include "core/profile_list.h"

namespace quendle {

class ProfileModel : public QAbstractTableModel {
 public:
  enum Column { kTitle, kMatch, kPattern, kAction, kExtractFolder, kMoveFolder, kCopyFolder, kColumns };

  explicit ProfileModel(ProfileList& list, QObject* parent = nullptr);

  // Reads the store anew; the filter, the order and the name on trial stay. The answer is ProfileList's.
  platform::Result Refresh();
  void SetFilter(const QString& text);
  void TestName(const std::string& name);

  const QString& Filter() const { return filter_; }
  const ProfileRow& RowAt(int row) const { return list_.Rows()[shown_[static_cast<std::size_t>(row)]]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  void Arrange();
  std::string SortKey(std::size_t row) const;
  bool IsInherited(const ProfileRow& row, int column) const;
  QString CellText(std::size_t row, int column) const;
  QString MatchText(std::size_t row) const;
  QVariant Colour(std::size_t row, int column) const;

  ProfileList& list_;
  std::vector<std::size_t> shown_;  // rows of the list
  QString filter_;
  int sorted_ = kTitle;
  bool is_descending_ = false;
};

}  // namespace quendle
