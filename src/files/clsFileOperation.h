// Moving, copying, renaming and deleting the way the user wants to be asked about it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/user_interface.h"
#include "platform/moving/file_operation.h"
#include "reasons/result.h"

namespace quendle {

inline constexpr std::uint16_t FOF_SILENT = 0x04;
inline constexpr std::uint16_t FOF_RENAMEONCOLLISION = 0x08;
inline constexpr std::uint16_t FOF_NOCONFIRMATION = 0x10;
inline constexpr std::uint16_t FOF_ALLOWUNDO = 0x40;
inline constexpr std::uint16_t FOF_SIMPLEPROGRESS = 0x100;
inline constexpr std::uint16_t FOF_NOCONFIRMMKDIR = 0x200;

class clsFileOperation {
 public:
  explicit clsFileOperation(UserInterface& user) : user_(user) {}

  bool mDelete(const std::string& path);

  // To a path in an existing folder.
  bool mRename(const std::string& source, const std::string& destination);

  // Into the destination when it ends in a separator or, unless pExactPath, is an existing folder; else to exactly that
  // path.
  // Missing folders are made, and those that were go again if nothing comes into them.
  bool mMove(const std::string& source, const std::string& destination);
  bool mCopy(const std::string& source, const std::string& destination);

  // Why the last operation failed; ok() after a success.
  const platform::Result& LastFailure() const { return last_failure_; }

  // Did it fail for no other reason than that the user cancelled it or declined something?
  bool FailedByUser() const { return failed_by_user_; }

  // The window that owns the questions. What is no window is stored as 0, and no handle is one on this
  // system.
  void* pTarget() const { return target_; }
  void pTarget(void*) { target_ = nullptr; }

  // Yes to every question.
  bool pRespondDialog() const { return Has(FOF_NOCONFIRMATION); }
  void pRespondDialog(bool value) { Set(FOF_NOCONFIRMATION, value); }

  // A free name is taken when the name is taken.
  bool pRenameOnCollision() const { return Has(FOF_RENAMEONCOLLISION); }
  void pRenameOnCollision(bool value) { Set(FOF_RENAMEONCOLLISION, value); }

  // Only to exactly the path that is given, and only when nothing has that name: else the failure is kExists,
  // and nobody is asked.
  bool pFailIfTaken() const { return fails_if_taken_; }
  void pFailIfTaken(bool value) { fails_if_taken_ = value; }

  // A destination without a separator at its end is where the entry is to be, also when a folder is there: a folder is
  // merged into that, and a file fails.
  bool pExactPath() const { return is_exact_; }
  void pExactPath(bool value) { is_exact_ = value; }

  // Progress without names.
  bool pSimpleProgress() const { return Has(FOF_SIMPLEPROGRESS); }
  void pSimpleProgress(bool value) { Set(FOF_SIMPLEPROGRESS, value); }

  // The user is asked before a missing destination folder is made.
  bool pConfirmMakeDir() const { return !Has(FOF_NOCONFIRMMKDIR); }
  void pConfirmMakeDir(bool value) { Set(FOF_NOCONFIRMMKDIR, !value); }

  // Progress is shown.
  bool pShowDialog() const { return !Has(FOF_SILENT); }
  void pShowProgress(bool value) { Set(FOF_SILENT, !value); }

  // What is deleted or replaced goes to the trash.
  bool pAllowUndo() const { return Has(FOF_ALLOWUNDO); }
  void pAllowUndo(bool value) { Set(FOF_ALLOWUNDO, value); }

 private:
  enum class Kind { kDelete, kRename, kMove, kCopy };

  bool Has(std::uint16_t flag) const { return (flags_ & flag) != 0; }
  void Set(std::uint16_t flag, bool value);

  bool Operate(Kind kind, const std::string& source, const std::string& destination);
  platform::Result Delete(const std::string& path);
  platform::Result Transfer(Kind kind, const std::string& source, const std::string& destination);
  platform::Result MakeDestination(const std::string& folder, std::vector<std::string>* made);
  platform::FileOperationOptions Options() const;

  UserInterface& user_;
  void* target_ = nullptr;
  std::uint16_t flags_ = 0;
  bool fails_if_taken_ = false;
  bool is_exact_ = false;
  platform::Result last_failure_;
  bool failed_by_user_ = false;
};

}  // namespace quendle
