// The foot of the action window, where it says what OK will do.
#pragma once

#include <QGroupBox>
#include <array>
#include <string>
#include <vector>

#include "ui/windows/plan_text.h"

namespace quendle {

class ElidedLine;

// As high as the longest plan, so that the window keeps its height.
class PlanView : public QGroupBox {
 public:
  explicit PlanView(QWidget* owner);

  // Lines that do not fit are shortened in their path; the tooltip has them whole, with the files that they would replace.
  void Show(const std::vector<PlanLine>& lines);
  // Instead of a plan, why there is none, in the language of the windows.
  void ShowProblem(const std::string& reason);

 private:
  std::array<ElidedLine*, 3> lines_;
};

}  // namespace quendle
