// What the editor is opened for.
#pragma once

namespace quendle {

enum class EditMode {
  kProfile,   // one that is there
  kNew,       // one that is to be
  kStandard,  // what profiles inherit
  kTest,      // archives that match no profile
  kGeneral,   // the program as a whole
};

}  // namespace quendle
