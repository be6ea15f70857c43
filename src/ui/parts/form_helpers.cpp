#include "ui/parts/form_helpers.h"

#include <QCursor>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScreen>

#include "ui/parts/text.h"

namespace quendle {
namespace {

QStringList Substitutes(Pitch pitch) {
  if (pitch == Pitch::kFixed) {
    return {"MS Gothic",
            "Noto Sans Mono CJK JP",
            "Noto Sans Mono CJK SC",
            "IPAGothic",
            "VL Gothic",
            "TakaoGothic",
            "Osaka-Mono",
            "Noto Sans Mono",
            "DejaVu Sans Mono"};
  }
  return {"MS PGothic", "Noto Sans CJK JP", "Noto Sans JP", "IPAPGothic",
          "VL PGothic", "TakaoPGothic",     "Hiragino Sans"};
}

template <typename Box>
class FocusSelector : public QObject {
 public:
  explicit FocusSelector(Box* box) : QObject(box), box_(box) { box->installEventFilter(this); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) {
      const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
      const bool is_back =
          reason == Qt::PopupFocusReason || (reason == Qt::ActiveWindowFocusReason && had_focus_);
      had_focus_ = true;
      // The box itself first, which may drop a selection when it gets the focus.
      box_->removeEventFilter(this);
      QCoreApplication::sendEvent(watched, event);
      box_->installEventFilter(this);
      if (!is_back) SelectAllText(box_);
      return true;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  Box* box_;
  bool had_focus_ = false;
};

}  // namespace

QFont InstalledFont(const std::string& family, const std::string& size, Pitch pitch) {
  QFont font = pitch == Pitch::kFixed ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QFont();
  // Asking for a single family looks for substitutes of it, which takes longer.
  const QStringList families = QFontDatabase::families();
  for (const QString& name : QStringList(ToQt(family)) + Substitutes(pitch)) {
    if (!families.contains(name, Qt::CaseInsensitive)) continue;
    font.setFamilies({name});
    break;
  }
  bool is_number = false;
  const int points = ToQt(size).toInt(&is_number);
  if (is_number && points > 0) font.setPointSize(points);
  return font;
}

QFont DialogFont() {
  static const QFont font =
      InstalledFont(LoadText(TextId::kFormFont), LoadText(TextId::kFormFontSize), Pitch::kProportional);
  return font;
}

QFont FixedPitchFont() {
  return InstalledFont(LoadText(TextId::kLogFont), LoadText(TextId::kLogFontSize), Pitch::kFixed);
}

void ApplyFormFont(QWidget* form, bool from_string_table) {
  const QFont font =
      from_string_table ? DialogFont() : InstalledFont("ＭＳ Ｐゴシック", "9", Pitch::kProportional);
  // Where it is the program's font already, setting it again would only cost a layout for each control.
  if (form->font() != font) form->setFont(font);
  for (QWidget* control : form->findChildren<QWidget*>()) {
    if (control->font() != font) control->setFont(font);
  }
}

void SelectAllText(QLineEdit* box) {
  box->selectAll();
}

void SelectAllText(QPlainTextEdit* box) {
  box->selectAll();
}

void SelectAllOnFocus(QLineEdit* box) {
  new FocusSelector<QLineEdit>(box);  // the box owns it
}

void SelectAllOnFocus(QPlainTextEdit* box) {
  new FocusSelector<QPlainTextEdit>(box);
}

void SetTopmost(QWidget* form, bool topmost) {
  if (form->windowFlags().testFlag(Qt::WindowStaysOnTopHint) == topmost) return;
  const bool was_visible = form->isVisible();
  form->setWindowFlag(Qt::WindowStaysOnTopHint, topmost);  // hides it
  if (was_visible) form->show();
}

void EnableDropOnControls(QWidget* form) {
  // What a control does not accept goes on to its parent.
  for (QWidget* control : form->findChildren<QWidget*>()) control->setAcceptDrops(false);
  form->setAcceptDrops(true);
}

void CentreOnScreen(QWidget* form) {
  const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) return;
  const QRect available = screen->availableGeometry();
  if (!form->testAttribute(Qt::WA_Resized)) form->adjustSize();
  form->resize(form->size().boundedTo(available.size()));
  QRect place = form->frameGeometry();
  place.moveCenter(available.center());
  form->move(std::max(place.left(), available.left()), std::max(place.top(), available.top()));
}

void KeepOnScreen(QWidget* form) {
  const QRect available = form->screen()->availableGeometry();
  const QRect place = form->frameGeometry();
  const int top = std::max(available.top(), available.bottom() + 1 - place.height());
  if (top < place.top()) form->move(place.left(), top);
}

QColor MixedColour(const QColor& ground, const QColor& colour, int percent) {
  const auto mix = [percent](int a, int b) { return a + (b - a) * percent / 100; };
  return {mix(ground.red(), colour.red()), mix(ground.green(), colour.green()),
          mix(ground.blue(), colour.blue())};
}

}  // namespace quendle
