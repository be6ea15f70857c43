// What the editor does when the user wants something.
#include <QGuiApplication>
#include <QInputMethod>
#include <QLineEdit>
#include <algorithm>

#include "base/display.h"
#include "base/modString.h"
#include "core/edit_keys.h"
#include "core/profile_pattern.h"
#include "platform/services/send_to.h"
#include "platform/text/unicode.h"
#include "resources/string_table.h"
#include "ui/parts/busy.h"
#include "ui/parts/text.h"
#include "ui/windows/frmEdit.h"

namespace quendle {
namespace {

constexpr const char* kLineBreak = "\r\n";

std::string ListOfValues(const EditDraft& draft, const std::vector<TextId>& keys) {
  std::string list;
  for (const TextId key : keys) {
    list.append(kLineBreak).append(KeyName(key)).append(": ").append(ValueText(key, draft.Stored(key)));
  }
  return list;
}

std::string ListOfNames(const std::vector<TextId>& keys) {
  std::string list;
  for (const TextId key : keys) list.append(list.empty() ? "" : "、").append(KeyName(key));
  return list;
}

}  // namespace

bool frmEdit::Ask(const std::string& question) {
  return services_.show_message(question, kButtonsYesNo, kIconQuestion, "") == kAnswerYes;
}

void frmEdit::Tell(const std::string& text, std::int32_t icon) {
  services_.show_message(text, kButtonsOk, icon, "");
}

// Nothing was picked, or a path that is no text: the settings are text.
bool frmEdit::IsFitForSettings(const std::string& picked) {
  if (platform::IsUtf8(picked)) return !picked.empty();
  Tell(LoadText(TextId::kNameNotText, {ForDisplay(picked)}), kIconExclamation);
  return false;
}

// As if it were typed over what is there: it can be undone.
void frmEdit::Put(TextId key, const std::string& text) {
  txt[key]->selectAll();
  txt[key]->insert(ToQt(text));
  txt[key]->selectAll();
}

void frmEdit::BrowseFolder(TextId key) {
  const std::map<TextId, TextId> prompts = {{TextId::kExtractTo, TextId::kAskExtractFolder},
                                            {TextId::kMoveTo, TextId::kAskMoveFolder},
                                            {TextId::kCopyTo, TextId::kAskCopyFolder}};
  const Busy busy(&is_busy_);
  const std::string& typed = draft_.Text(key);
  const std::string start = typed.empty() ? draft_.InheritedFolder(key) : typed;
  const std::string picked = services_.pick_folder(this, LoadText(prompts.at(key)), start);
  FocusOn(key);
  if (IsFitForSettings(picked)) Put(key, draft_.PickedFolder(picked));
}

void frmEdit::BrowseFiler() {
  const Busy busy(&is_busy_);
  FileDialogRequest request;
  request.title = LoadText(TextId::kBrowseFiler);
  request.filter = {{LoadText(TextId::kAllFiles), "*"}};
  request.folder = SplitPath(draft_.Text(TextId::kFiler)).folder;
  const std::string picked = services_.pick_file(this, request);
  FocusOn(TextId::kFiler);
  if (IsFitForSettings(picked)) Put(TextId::kFiler, picked);
}

// At once: the menus are no part of the settings.
void frmEdit::SwitchSendTo() {
  if (is_busy_) return;
  const Busy busy(&is_busy_);
  const bool is_there = platform::IsInSendTo(services_.program);
  const platform::Result done =
      is_there ? platform::RemoveFromSendTo() : platform::AddToSendTo(services_.program);
  ShowSendTo();
  if (!done.ok()) {
    Tell(LoadText(TextId::kSendToNotChanged, {ForDisplay(done.path), LoadText(done.reason)}), kIconCritical);
  }
}

void frmEdit::ProposePattern() {
  const Busy busy(&is_busy_);
  std::string pattern = MakePatternFromTarget(target_);
  if (target_.pFileNameLong().empty()) {
    FileDialogRequest request;
    request.title = LoadText(TextId::kPickExample);
    request.filter = {{LoadText(TextId::kAllFiles), "*"}};
    const std::string picked = services_.pick_file(this, request);
    if (picked.empty()) return;
    clsFileInfo file;
    if (!file.SetFilename(picked)) {
      const platform::Result& failure = file.LastFailure();
      Tell(ForDisplay(picked) + kLineBreak + LoadText(failure.reason), kIconExclamation);
      return;
    }
    pattern = MakePatternFromTarget(file);
    example_name_ = file.pFileNameLong();
  }
  FocusOn(TextId::kPattern);
  Put(TextId::kPattern, pattern);
}

void frmEdit::TryPattern() {
  const Busy busy(&is_busy_);
  const std::string& name = target_.pFileNameLong();
  services_.open_tester(this, draft_.Text(TextId::kPattern), name.empty() ? example_name_ : name);
}

void frmEdit::Save() {
  if (is_busy_) return;
  const Busy busy(&is_busy_);
  QGuiApplication::inputMethod()->commit();  // what is being typed counts
  if (!MaySave()) return;
  EditDraft::Comparison comparison;
  do {
    const platform::Result saved = draft_.Save(&comparison);
    Fill();  // what has come from the file is to be seen
    if (!saved.ok()) {
      Tell(LoadText(TextId::kNotSaved, {ForDisplay(saved.path), LoadText(saved.reason)}), kIconCritical);
      return;
    }
    if (!Settle(comparison)) return;
  } while (!comparison.IsSettled());
  TellOthersChanges();
  accept();
}

// Is what would be written fit to be written, or at least meant?
bool frmEdit::MaySave() {
  const std::vector<TextId> changed = draft_.ChangedKeys();
  for (const TextId key : changed) {
    const auto problem = draft_.ProblemOf(key);
    if (!problem) continue;
    const std::string text = KeyName(key) + ": " + problem->text;
    if (problem->can_be_saved && Ask(LoadText(TextId::kSaveAnyway, {text}))) continue;
    if (!problem->can_be_saved) Tell(LoadText(TextId::kCannotSave, {text}), kIconExclamation);
    FocusOn(key);
    return false;
  }
  const bool is_new = draft_.Mode() == EditMode::kNew;
  if (is_new && draft_.Text(TextId::kPattern).empty() && !Ask(LoadText(TextId::kSaveEmptyPattern))) {
    FocusOn(TextId::kPattern);
    return false;
  }
  return true;
}

// False when it cannot be settled here, or the user wants to think about it.
bool frmEdit::Settle(const EditDraft::Comparison& comparison) {
  if (comparison.is_title_taken) {
    Tell(LoadText(TextId::kSameProfileName), kIconCritical);
    return false;
  }
  if (comparison.is_gone) {
    if (!Ask(LoadText(TextId::kSaveAsNewProfile, {ForDisplay(draft_.Title())}))) return false;
    draft_.BecomeNew();
  }
  return std::all_of(comparison.conflicts.begin(), comparison.conflicts.end(),
                     [this](const auto& conflict) { return AskWhoseValue(conflict); });
}

// False when the user does not decide.
bool frmEdit::AskWhoseValue(const EditDraft::Comparison::Conflict& conflict) {
  const TextId key = conflict.key;
  const std::string question =
      LoadText(TextId::kWhoseValue,
               {KeyName(key), ValueText(key, draft_.Stored(key)), ValueText(key, conflict.theirs)});
  const std::int32_t answer = services_.show_message(question, kButtonsYesNoCancel, kIconQuestion, "");
  if (answer != kAnswerYes && answer != kAnswerNo) return false;
  draft_.Settle(conflict, answer == kAnswerYes);
  Fill();  // also when a later question is left open
  return true;
}

void frmEdit::TellOthersChanges() {
  if (draft_.ChangedByOthers().empty()) return;
  Tell(LoadText(TextId::kOthersChanges, {ListOfValues(draft_, draft_.ChangedByOthers())}), kIconInformation);
}

void frmEdit::reject() {
  if (is_busy_) return;
  const Busy busy(&is_busy_);
  QGuiApplication::inputMethod()->commit();
  const std::vector<TextId> changed = draft_.ChangedKeys();
  if (!changed.empty() && !Ask(LoadText(TextId::kCloseUnsaved, {ListOfNames(changed)}))) return;
  QDialog::reject();
}

}  // namespace quendle
