// The text that an archiver library puts out during one extraction run, call by call, and showing it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/user_interface.h"

namespace quendle {

class clsOutput {
 public:
  explicit clsOutput(UserInterface& user) : user_(user) {}

  // Forgets the run before. SHOWRESULT stays.
  void BeginRun();

  // Takes the output of the next call: up to the first NUL or, when there is none, all of it as the part that
  // the buffer could hold. Where a run has several calls, the head of each output is left out and "Phase 1:"
  // and so on stands before it.
  void SetOutputText(const std::string& text);

  // Shows what was taken; several texts with "Extracted from FILENAME:" above them.
  void ShowOutputWindow();

  bool SHOWRESULT = false;  // is the log to be shown?

  // The index of the last call of the run. Setting it empties the texts.
  std::int32_t RESFILECOUNT() const { return static_cast<std::int32_t>(texts_.size()) - 1; }
  void RESFILECOUNT(std::int32_t index) { texts_.assign(static_cast<std::size_t>(index) + 1, ""); }

  std::int16_t ARCTYPE = 0;
  std::string FILENAME;  // the archive

 private:
  UserInterface& user_;
  std::size_t next_ = 0;
  std::vector<std::string> texts_ = {""};
};

}  // namespace quendle
