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
  int id;
};

constexpr QtText kTexts[] = {
    {"QPlatformTheme", "OK", 6108},
    {"QPlatformTheme", "Cancel", 6109},
    {"QPlatformTheme", "&Yes", 6110},
    {"QPlatformTheme", "Yes to &All", 6111},
    {"QPlatformTheme", "&No", 6112},
    {"QPlatformTheme", "N&o to All", 6113},
    {"QPlatformTheme", "Close", 6114},
    {"QPlatformTheme", "Retry", 6115},
    {"QPlatformTheme", "Save", 6116},
    {"QPlatformTheme", "Save All", 6117},
    {"QPlatformTheme", "Open", 6118},
    {"QPlatformTheme", "Abort", 6119},
    {"QPlatformTheme", "Ignore", 6120},
    {"QPlatformTheme", "Discard", 6121},
    {"QPlatformTheme", "Help", 6122},
    {"QPlatformTheme", "Apply", 6123},
    {"QPlatformTheme", "Reset", 6124},
    {"QPlatformTheme", "Restore Defaults", 6125},
    {"QLineEdit", "&Undo", 6126},
    {"QLineEdit", "&Redo", 6127},
    {"QLineEdit", "Cu&t", 6128},
    {"QLineEdit", "&Copy", 6106},
    {"QLineEdit", "&Paste", 6129},
    {"QLineEdit", "Delete", 6130},
    {"QLineEdit", "Select All", 6131},
    {"QWidgetTextControl", "&Undo", 6126},
    {"QWidgetTextControl", "&Redo", 6127},
    {"QWidgetTextControl", "Cu&t", 6128},
    {"QWidgetTextControl", "&Copy", 6106},
    {"QWidgetTextControl", "&Paste", 6129},
    {"QWidgetTextControl", "Delete", 6130},
    {"QWidgetTextControl", "Select All", 6131},
    {"QWidgetTextControl", "Copy &Link Location", 6132},
    {"QAbstractSpinBox", "&Step up", 6133},
    {"QAbstractSpinBox", "Step &down", 6134},
    {"QAbstractSpinBox", "&Select All", 6105},
    {"QScrollBar", "Scroll here", 6135},
    {"QScrollBar", "Top", 6136},
    {"QScrollBar", "Bottom", 6137},
    {"QScrollBar", "Page up", 6138},
    {"QScrollBar", "Page down", 6139},
    {"QScrollBar", "Scroll up", 6140},
    {"QScrollBar", "Scroll down", 6141},
    {"QScrollBar", "Left edge", 6142},
    {"QScrollBar", "Right edge", 6143},
    {"QScrollBar", "Page left", 6144},
    {"QScrollBar", "Page right", 6145},
    {"QScrollBar", "Scroll left", 6146},
    {"QScrollBar", "Scroll right", 6147},
    {"QMessageBox", "Show Details...", 6148},
    {"QMessageBox", "Hide Details...", 6149},
    {"QFileDialog", "Look in:", 6150},
    {"QFileDialog", "Back", 6151},
    {"QFileDialog", "Go back", 6152},
    {"QFileDialog", "Forward", 6153},
    {"QFileDialog", "Go forward", 6154},
    {"QFileDialog", "Parent Directory", 6155},
    {"QFileDialog", "Go to the parent directory", 6156},
    {"QFileDialog", "Create New Folder", 6157},
    {"QFileDialog", "Create a New Folder", 6158},
    {"QFileDialog", "List View", 6159},
    {"QFileDialog", "Change to list view mode", 6160},
    {"QFileDialog", "Detail View", 6161},
    {"QFileDialog", "Change to detail view mode", 6162},
    {"QFileDialog", "Sidebar", 6163},
    {"QFileDialog", "List of places and bookmarks", 6164},
    {"QFileDialog", "Files", 6165},
    {"QFileDialog", "Directories", 6166},
    {"QFileDialog", "File &name:", 6167},
    {"QFileDialog", "Directory:", 6168},
    {"QFileDialog", "Files of type:", 6169},
    {"QFileDialog", "All Files (*)", 6170},
    {"QFileDialog", "&Open", 6171},
    {"QFileDialog", "&Save", 6172},
    {"QFileDialog", "&Choose", 6173},
    {"QFileDialog", "Open", 6118},
    {"QFileDialog", "Save As", 6174},
    {"QFileDialog", "Find Directory", 6175},
    {"QFileDialog", "&Rename", 6176},
    {"QFileDialog", "&Delete", 6177},
    {"QFileDialog", "Delete", 6130},
    {"QFileDialog", "&New Folder", 6178},
    {"QFileDialog", "New Folder", 6157},
    {"QFileDialog", "Show &hidden files", 6179},
    {"QFileDialog", "Show ", 6180},
    {"QFileDialog", "Remove", 6181},
    {"QFileDialog", "Recent Places", 6182},
    {"QFileDialog", "%1 already exists.\nDo you want to replace it?", 6183},
    {"QFileDialog", "%1\nFile not found.\nPlease verify the correct file name was given.", 6184},
    {"QFileDialog", "%1\nDirectory not found.\nPlease verify the correct directory name was given.", 6185},
    {"QFileDialog", "'%1' is write protected.\nDo you want to delete it anyway?", 6186},
    {"QFileDialog", "Are you sure you want to delete '%1'?", 6187},
    {"QFileDialog", "Could not delete directory.", 6188},
    {"QFileSystemModel", "Name", 6189},
    {"QFileSystemModel", "Size", 6190},
    {"QFileSystemModel", "Type", 6191},
    {"QFileSystemModel", "Kind", 6191},
    {"QFileSystemModel", "Date Modified", 6192},
    {"QFileSystemModel", "Computer", 6193},
    {"QFileSystemModel", "My Computer", 6193},
    {"QAbstractFileIconProvider", "Drive", 6194},
    {"QAbstractFileIconProvider", "Folder", 6166},
    {"QAbstractFileIconProvider", "File Folder", 6166},
    {"QAbstractFileIconProvider", "File", 6165},
    {"QAbstractFileIconProvider", "%1 File", 6195},
    {"QAbstractFileIconProvider", "Shortcut", 6196},
    {"QAbstractFileIconProvider", "Unknown", 6197},
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
