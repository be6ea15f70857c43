#include "ui/windows/profile_model.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>
#include <numeric>

#include "base/display.h"
#include "core/action_text.h"
#include "platform/text/unicode.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/hints.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

constexpr TextId kHeaders[ProfileModel::kColumns] = {
    TextId::kColumnTitle,         TextId::kColumnMatch,      TextId::kColumnPattern,   TextId::kColumnAction,
    TextId::kColumnExtractFolder, TextId::kColumnMoveFolder, TextId::kColumnCopyFolder};

const ProfileRow::Folder& FolderAt(const ProfileRow& row, int column) {
  return row.folders[static_cast<std::size_t>(column - ProfileModel::kExtractFolder)];
}

// Paler than text, but not too pale to be read.
QColor DimColour() {
  const QPalette theme = QGuiApplication::palette();
  return MixedColour(theme.color(QPalette::Text), theme.color(QPalette::Base), 45);
}

}  // namespace

ProfileModel::ProfileModel(ProfileList& list, QObject* parent) : QAbstractTableModel(parent), list_(list) {}

platform::Result ProfileModel::Refresh() {
  beginResetModel();
  platform::Result result = list_.Read();
  Arrange();
  endResetModel();
  return result;
}

void ProfileModel::SetFilter(const QString& text) {
  beginResetModel();
  filter_ = text;
  Arrange();
  endResetModel();
}

void ProfileModel::TestName(const std::string& name) {
  list_.TestName(name);
  if (sorted_ == kMatch) sort(sorted_, is_descending_ ? Qt::DescendingOrder : Qt::AscendingOrder);
  if (!shown_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
}

int ProfileModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int ProfileModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

// The list's own order is that of the titles.
void ProfileModel::Arrange() {
  shown_ = list_.Filtered(FromQt(filter_));
  if (sorted_ != kTitle) {
    std::vector<std::string> keys(list_.Rows().size());
    for (const std::size_t row : shown_) keys[row] = SortKey(row);
    std::stable_sort(shown_.begin(), shown_.end(),
                     [&keys](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  }
  if (is_descending_) std::reverse(shown_.begin(), shown_.end());
}

std::string ProfileModel::SortKey(std::size_t row) const {
  if (sorted_ != kMatch) return platform::UpperCase(FromQt(CellText(row, sorted_)));
  // Those that match come first, in their order.
  const NameMatch match = list_.MatchOf(row);
  const bool matches = match.kind == NameMatch::Kind::kMatches;
  return matches ? std::string() : std::string(1, static_cast<char>('0' + static_cast<int>(match.kind)));
}

void ProfileModel::sort(int column, Qt::SortOrder order) {
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList old_indexes = persistentIndexList();
  std::vector<std::size_t> old_rows;
  for (const QModelIndex& old : old_indexes) old_rows.push_back(shown_[static_cast<std::size_t>(old.row())]);
  sorted_ = column < 0 || column >= kColumns ? kTitle : column;
  is_descending_ = order == Qt::DescendingOrder;
  Arrange();
  std::vector<int> places(list_.Rows().size());
  for (std::size_t i = 0; i < shown_.size(); ++i) places[shown_[i]] = static_cast<int>(i);
  QModelIndexList new_indexes;
  for (int i = 0; i < old_indexes.size(); ++i) {
    new_indexes += index(places[old_rows[static_cast<std::size_t>(i)]], old_indexes[i].column());
  }
  changePersistentIndexList(old_indexes, new_indexes);
  emit layoutChanged({}, VerticalSortHint);
}

QVariant ProfileModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return Text(kHeaders[section]);
}

QVariant ProfileModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const std::size_t row = shown_[static_cast<std::size_t>(index.row())];
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return CellText(row, column);
    case Qt::ToolTipRole: {
      QString text = CellText(row, column);
      if (IsInherited(list_.Rows()[row], column)) text += Text(TextId::kByStandardSettings);
      return PlainToolTip(text);
    }
    case Qt::ForegroundRole:
      return Colour(row, column);
    case Qt::FontRole:
      if (column <= kMatch && list_.MatchOf(row).kind == NameMatch::Kind::kMatches) {
        QFont font;
        font.setBold(true);
        return font;
      }
      return {};
    default:
      return {};
  }
}

bool ProfileModel::IsInherited(const ProfileRow& row, int column) const {
  if (column == kAction) return row.inherits_action;
  return column >= kExtractFolder && FolderAt(row, column).is_used && FolderAt(row, column).is_inherited;
}

QString ProfileModel::CellText(std::size_t row, int column) const {
  const ProfileRow& profile = list_.Rows()[row];
  switch (column) {
    case kTitle:
      return ToQt(ForDisplay(profile.title));
    case kMatch:
      return MatchText(row);
    case kPattern:
      return ToQt(profile.pattern);
    case kAction:
      return profile.action == kNoSteps ? Text(TextId::kDoesNothing) : ToQt(ActionText(profile.action, "・"));
    default:
      return FolderAt(profile, column).is_used ? ToQt(ForDisplay(FolderAt(profile, column).path)) : QString();
  }
}

QString ProfileModel::MatchText(std::size_t row) const {
  const NameMatch match = list_.MatchOf(row);
  switch (match.kind) {
    case NameMatch::Kind::kNotTested:
      return "";
    case NameMatch::Kind::kMatches:
      return ToQt(
          LoadText(TextId::kMatchRank, {std::to_string(match.rank), std::to_string(list_.MatchCount())}));
    case NameMatch::Kind::kPartOnly:
      return Text(TextId::kMatchPart);
    case NameMatch::Kind::kNoMatch:
      return Text(TextId::kMatchNone);
    case NameMatch::Kind::kError:
      return ToQt(LoadText(TextId::kMatchError, {match.reason}));
  }
  return "";
}

QVariant ProfileModel::Colour(std::size_t row, int column) const {
  if (IsInherited(list_.Rows()[row], column)) return DimColour();
  if (column > kMatch || list_.TestedName().empty()) return {};
  switch (list_.MatchOf(row).kind) {
    case NameMatch::Kind::kMatches:
      return column == kMatch ? QVariant(MarkColour(QGuiApplication::palette())) : QVariant();
    case NameMatch::Kind::kError:
      return column == kMatch ? QVariant(WarningColour(QGuiApplication::palette())) : QVariant();
    default:
      return DimColour();
  }
}

}  // namespace quendle
