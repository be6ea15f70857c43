// The window that shows how far an operation is.
#pragma once

#include <QDialog>
#include <QString>
#include <cstdint>
#include <optional>

#include "platform/moving/file_operation.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace quendle {

class ElidedLabel;

//   1536 => "1.5 KiB"    12 => "12 B"
QString SizeText(std::uint64_t bytes);

class frmProgress : public QDialog {
 public:
  // Modal to the whole program once it is shown.
  explicit frmProgress(QWidget* owner);

  // `bytes_per_second` where it is known. `simple` hides the name.
  void Update(const platform::FileProgress& progress, std::optional<double> bytes_per_second, bool simple);

  bool is_cancelled() const { return cancelled_; }

  // The button, Esc and the close box; the window stays until the operation has come to its end.
  void reject() override;

 private:
  void UpdateBar(const platform::FileProgress& progress);

  ElidedLabel* name_;
  QLabel* amount_;
  QLabel* rate_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  bool cancelled_ = false;
};

}  // namespace quendle
