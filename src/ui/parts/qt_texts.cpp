#include "ui/parts/qt_texts.h"

#include <QTranslator>
#include <algorithm>
#include <cstring>
#include <iterator>

#include "ui/parts/text.h"

namespace quendle {
namespace {

struct QtText {
  const char* context;  // the class whose text it is
  const char* source;   // as Qt writes it
  TextId id;
};

constexpr QtText kTexts[] = {
    {"QPlatformTheme", "OK", TextId::kOkButton},
    {"QPlatformTheme", "Cancel", TextId::kCancelButton},
    {"QPlatformTheme", "&Yes", TextId::kQtYes},
    {"QPlatformTheme", "Yes to &All", TextId::kQtYesToAll},
    {"QPlatformTheme", "&No", TextId::kQtNo},
    {"QPlatformTheme", "N&o to All", TextId::kQtNoToAll},
    {"QPlatformTheme", "Close", TextId::kQtClose},
    {"QPlatformTheme", "Retry", TextId::kQtRetry},
    {"QPlatformTheme", "Save", TextId::kQtSave},
    {"QPlatformTheme", "Save All", TextId::kQtSaveAll},
    {"QPlatformTheme", "Open", TextId::kQtOpen},
    {"QPlatformTheme", "Abort", TextId::kQtAbort},
    {"QPlatformTheme", "Ignore", TextId::kQtIgnore},
    {"QPlatformTheme", "Discard", TextId::kQtDiscard},
    {"QPlatformTheme", "Help", TextId::kQtHelp},
    {"QPlatformTheme", "Apply", TextId::kQtApply},
    {"QPlatformTheme", "Reset", TextId::kQtReset},
    {"QPlatformTheme", "Restore Defaults", TextId::kQtRestoreDefaults},
    {"QLineEdit", "&Undo", TextId::kQtEditUndo},
    {"QLineEdit", "&Redo", TextId::kQtEditRedo},
    {"QLineEdit", "Cu&t", TextId::kQtEditCut},
    {"QLineEdit", "&Copy", TextId::kCopyButton},
    {"QLineEdit", "&Paste", TextId::kQtEditPaste},
    {"QLineEdit", "Delete", TextId::kQtEditDelete},
    {"QLineEdit", "Select All", TextId::kQtEditSelectAll},
    {"QWidgetTextControl", "&Undo", TextId::kQtEditUndo},
    {"QWidgetTextControl", "&Redo", TextId::kQtEditRedo},
    {"QWidgetTextControl", "Cu&t", TextId::kQtEditCut},
    {"QWidgetTextControl", "&Copy", TextId::kCopyButton},
    {"QWidgetTextControl", "&Paste", TextId::kQtEditPaste},
    {"QWidgetTextControl", "Delete", TextId::kQtEditDelete},
    {"QWidgetTextControl", "Select All", TextId::kQtEditSelectAll},
    {"QWidgetTextControl", "Copy &Link Location", TextId::kQtEditCopyLinkLocation},
    {"QAbstractSpinBox", "&Step up", TextId::kQtSpinStepUp},
    {"QAbstractSpinBox", "Step &down", TextId::kQtSpinStepDown},
    {"QAbstractSpinBox", "&Select All", TextId::kSelectAllButton},
    {"QScrollBar", "Scroll here", TextId::kQtScrollScrollHere},
    {"QScrollBar", "Top", TextId::kQtScrollTop},
    {"QScrollBar", "Bottom", TextId::kQtScrollBottom},
    {"QScrollBar", "Page up", TextId::kQtScrollPageUp},
    {"QScrollBar", "Page down", TextId::kQtScrollPageDown},
    {"QScrollBar", "Scroll up", TextId::kQtScrollScrollUp},
    {"QScrollBar", "Scroll down", TextId::kQtScrollScrollDown},
    {"QScrollBar", "Left edge", TextId::kQtScrollLeftEdge},
    {"QScrollBar", "Right edge", TextId::kQtScrollRightEdge},
    {"QScrollBar", "Page left", TextId::kQtScrollPageLeft},
    {"QScrollBar", "Page right", TextId::kQtScrollPageRight},
    {"QScrollBar", "Scroll left", TextId::kQtScrollScrollLeft},
    {"QScrollBar", "Scroll right", TextId::kQtScrollScrollRight},
    {"QMessageBox", "Show Details...", TextId::kQtBoxShowDetails},
    {"QMessageBox", "Hide Details...", TextId::kQtBoxHideDetails},
    {"QFileDialog", "Look in:", TextId::kQtFileLookIn},
    {"QFileDialog", "Back", TextId::kQtFileBack},
    {"QFileDialog", "Go back", TextId::kQtFileBackHint},
    {"QFileDialog", "Forward", TextId::kQtFileForward},
    {"QFileDialog", "Go forward", TextId::kQtFileForwardHint},
    {"QFileDialog", "Parent Directory", TextId::kQtFileParent},
    {"QFileDialog", "Go to the parent directory", TextId::kQtFileParentHint},
    {"QFileDialog", "Create New Folder", TextId::kQtFileNewFolder},
    {"QFileDialog", "Create a New Folder", TextId::kQtFileNewFolderHint},
    {"QFileDialog", "List View", TextId::kQtFileListView},
    {"QFileDialog", "Change to list view mode", TextId::kQtFileListViewHint},
    {"QFileDialog", "Detail View", TextId::kQtFileDetailView},
    {"QFileDialog", "Change to detail view mode", TextId::kQtFileDetailViewHint},
    {"QFileDialog", "Sidebar", TextId::kQtFileSidebar},
    {"QFileDialog", "List of places and bookmarks", TextId::kQtFileSidebarHint},
    {"QFileDialog", "Files", TextId::kQtFileFiles},
    {"QFileDialog", "Directories", TextId::kQtFileFolders},
    {"QFileDialog", "File &name:", TextId::kQtFileFileName},
    {"QFileDialog", "Directory:", TextId::kQtFileFolder},
    {"QFileDialog", "Files of type:", TextId::kQtFileFilesOfType},
    {"QFileDialog", "All Files (*)", TextId::kQtFileAllFiles},
    {"QFileDialog", "&Open", TextId::kQtFileOpen},
    {"QFileDialog", "&Save", TextId::kQtFileSave},
    {"QFileDialog", "&Choose", TextId::kQtFileChoose},
    {"QFileDialog", "Open", TextId::kQtOpen},
    {"QFileDialog", "Save As", TextId::kQtFileSaveAs},
    {"QFileDialog", "Find Directory", TextId::kQtFileFindFolder},
    {"QFileDialog", "&Rename", TextId::kQtFileRename},
    {"QFileDialog", "&Delete", TextId::kQtFileDelete},
    {"QFileDialog", "Delete", TextId::kQtEditDelete},
    {"QFileDialog", "&New Folder", TextId::kQtFileNewFolderCommand},
    {"QFileDialog", "New Folder", TextId::kQtFileNewFolder},
    {"QFileDialog", "Show &hidden files", TextId::kQtFileShowHiddenFiles},
    {"QFileDialog", "Show ", TextId::kQtFileShow},
    {"QFileDialog", "Remove", TextId::kQtFileRemove},
    {"QFileDialog", "Recent Places", TextId::kQtFileRecentPlaces},
    {"QFileDialog", "%1 already exists.\nDo you want to replace it?", TextId::kQtFileReplaceQuestion},
    {"QFileDialog", "%1\nFile not found.\nPlease verify the correct file name was given.",
     TextId::kQtFileNotFound},
    {"QFileDialog", "%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     TextId::kQtFileFolderNotFound},
    {"QFileDialog", "'%1' is write protected.\nDo you want to delete it anyway?",
     TextId::kQtFileDeleteProtectedQuestion},
    {"QFileDialog", "Are you sure you want to delete '%1'?", TextId::kQtFileDeleteQuestion},
    {"QFileDialog", "Could not delete directory.", TextId::kQtFileNotDeleted},
    {"QFileSystemModel", "Name", TextId::kQtListName},
    {"QFileSystemModel", "Size", TextId::kQtListSize},
    {"QFileSystemModel", "Type", TextId::kQtListType},
    {"QFileSystemModel", "Kind", TextId::kQtListType},
    {"QFileSystemModel", "Date Modified", TextId::kQtListDateModified},
    {"QFileSystemModel", "Computer", TextId::kQtListComputer},
    {"QFileSystemModel", "My Computer", TextId::kQtListComputer},
    {"QAbstractFileIconProvider", "Drive", TextId::kQtIconDrive},
    {"QAbstractFileIconProvider", "Folder", TextId::kQtFileFolders},
    {"QAbstractFileIconProvider", "File Folder", TextId::kQtFileFolders},
    {"QAbstractFileIconProvider", "File", TextId::kQtFileFiles},
    {"QAbstractFileIconProvider", "%1 File", TextId::kQtIconFileOfType},
    {"QAbstractFileIconProvider", "Shortcut", TextId::kQtIconShortcut},
    {"QAbstractFileIconProvider", "Unknown", TextId::kQtIconUnknown},
};

class QtTexts : public QTranslator {
 public:
  bool isEmpty() const override { return false; }  // or else it is not asked

  QString translate(const char* context, const char* source, const char* /*disambiguation*/,
                    int /*count*/) const override {
    const QtText* found = std::find_if(std::begin(kTexts), std::end(kTexts), [=](const QtText& text) {
      return std::strcmp(text.source, source) == 0 && std::strcmp(text.context, context) == 0;
    });
    return found == std::end(kTexts) ? QString() : Text(found->id);
  }
};

}  // namespace

void InstallQtTexts(QCoreApplication* application) {
  static QtTexts texts;
  application->installTranslator(&texts);
}

}  // namespace quendle
