// The desktop's own dialogs for choosing folders and files.
#pragma once

#include <string>
#include <utility>
#include <vector>

class QWidget;

namespace quendle {

// `prompt` is the dialog's title. It begins in the nearest existing folder at or above the proposed one. Paths are bytes of
// the file system. Empty when the user cancels.
std::string PickFolder(QWidget* owner, const std::string& prompt, const std::string& proposed);

struct FileDialogRequest {
  std::string title;
  std::vector<std::pair<std::string, std::string>> filter;  // what is shown, and patterns separated by ";"
  bool open = true;                                         // else a file to be saved, which need not exist
  std::string folder;                                       // to begin in
  std::string name;                                         // proposed
};

// Empty when the user cancels.
std::string ShowFileDialog(QWidget* owner, const FileDialogRequest& request);

}  // namespace quendle
