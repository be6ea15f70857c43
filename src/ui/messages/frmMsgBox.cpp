#include "ui/messages/frmMsgBox.h"

#include <QCloseEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "resources/version.h"
#include "ui/messages/modMsgBox.h"
#include "ui/parts/form_helpers.h"
#include "ui/parts/pictures.h"
#include "ui/parts/system_events.h"
#include "ui/parts/text.h"
#include "ui/parts/wrapped_label.h"

namespace quendle {
namespace {

constexpr int kIconPixels = 32;
constexpr int kFramePixels = 60;  // what the desktop may put around a window, above and below together

int ToTwips(int pixels) {
  return pixels * kTwipsPerPixel;
}

QRect ToPixels(const TwipRect& rect) {
  return {rect.left / kTwipsPerPixel, rect.top / kTwipsPerPixel, rect.width / kTwipsPerPixel,
          rect.height / kTwipsPerPixel};
}

// Which of imgIcon; none for an unknown code.
int IconIndex(std::int32_t code) {
  switch (code) {
    case kIconInformation:
      return 0;
    case kIconExclamation:
      return 1;
    case kIconCritical:
      return 2;
    case kIconQuestion:
      return 3;
    default:
      return -1;
  }
}

}  // namespace

frmMsgBox::frmMsgBox(QWidget* owner)
    : QDialog(owner),
      cmd({new QPushButton(this)}),
      scroll_(new QScrollArea(this)),
      lblMsg(new WrappedLabel(scroll_)),
      imgMsg(new QLabel(this)),
      txtInput(new QLineEdit(this)),
      buttons_(&ButtonsOfStyle(kButtonsOk)) {
  lblMsg->setObjectName("lblMsg");
  imgMsg->setObjectName("imgMsg");
  txtInput->setObjectName("txtInput");
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->setWidgetResizable(true);
  scroll_->setWidget(lblMsg);
  txtInput->hide();
  txtInput->installEventFilter(this);
  const std::array<const char*, 4> names = {"information", "exclamation", "critical", "question"};
  for (std::size_t i = 0; i < names.size(); ++i) imgIcon[i] = Picture(names[i], kIconPixels, this);
  SelectAllOnFocus(txtInput);
  ApplyFormFont(this, true);
}

void frmMsgBox::pText(const std::string& text) {
  txtInput->setText(ToQt(text));
}

void frmMsgBox::pTitle(const std::string& title) {
  title_ = title;
}

void frmMsgBox::pPrompt(const std::string& prompt) {
  lblMsg->setText(ToQt(prompt));
  txtInput->setAccessibleName(lblMsg->text());
}

void frmMsgBox::pMsgIcon(std::int32_t icon) {
  icon_ = icon;
}

void frmMsgBox::pButtonStyle(std::int32_t style) {
  buttons_ = &ButtonsOfStyle(style);
}

void frmMsgBox::pHidesText(bool hides) {
  txtInput->setEchoMode(hides ? QLineEdit::Password : QLineEdit::Normal);
}

void frmMsgBox::InitForm() {
  bare_letters_ = true;
  BoxInput input = Measure();
  const int icon = IconIndex(icon_);
  input.has_icon = icon >= 0;
  if (icon >= 0) imgMsg->setPixmap(imgIcon[static_cast<std::size_t>(icon)]);
  Place(LayOutMessageBox(input));
  if (icon >= 0) SoundMessage(icon_);
  FinishButtons();
  cmd[buttons_->default_button]->setFocus();
}

void frmMsgBox::InitFormInputBox() {
  bare_letters_ = false;
  Place(LayOutInputBox(Measure()));
  txtInput->show();
  FinishButtons();
  setTabOrder(txtInput, cmd.front());
  txtInput->setFocus();
}

std::int32_t frmMsgBox::ShowMsgBox() {
  SetTopmost(this, true);
  exec();
  return answer_;
}

std::string frmMsgBox::ShowInputBox() {
  exec();
  return answer_ == kAnswerOk ? FromQt(txtInput->text()) : "";
}

// The captions of the window and its buttons, and all that the arithmetic has to know of them.
BoxInput frmMsgBox::Measure() {
  setWindowTitle(ToQt(title_.empty() ? kProductName : title_));
  while (cmd.size() < buttons_->count) cmd.push_back(new QPushButton(this));
  BoxInput input;
  for (std::size_t i = 0; i < buttons_->count; ++i) {
    const QString caption = Text(buttons_->captions[i]);
    cmd[i]->setText(caption);
    cmd[i]->setFont(font());
    cmd[i]->installEventFilter(this);
    input.caption_widths.push_back(ToTwips(fontMetrics().horizontalAdvance(caption)));
  }
  for (const int width : lblMsg->LineWidths()) input.line_widths.push_back(ToTwips(width));
  input.label_height = [this](int width) { return ToTwips(lblMsg->heightForWidth(width / kTwipsPerPixel)); };
  const int widest = *std::max_element(input.caption_widths.begin(), input.caption_widths.end());
  input.design = DesignForFont(ToTwips(fontMetrics().height()), widest);
  const QSize available = screen()->availableSize();
  input.screen_width = ToTwips(available.width());
  input.screen_height = ToTwips(available.height() - kFramePixels);
  return input;
}

void frmMsgBox::Place(const BoxLayout& box) {
  setFixedSize(box.width / kTwipsPerPixel, box.height / kTwipsPerPixel);
  imgMsg->setGeometry(ToPixels(box.icon));
  scroll_->setGeometry(ToPixels(box.label));
  txtInput->setGeometry(ToPixels(box.field));
  for (std::size_t i = 0; i < box.buttons.size(); ++i) {
    cmd[i]->setGeometry(ToPixels(box.buttons[i]));
    cmd[i]->show();
  }
}

void frmMsgBox::FinishButtons() {
  for (std::size_t i = 0; i < cmd.size(); ++i) {
    connect(cmd[i], &QPushButton::clicked, this, [this, i] { cmd_Click(i); });
  }
  cmd[buttons_->default_button]->setDefault(true);
}

void frmMsgBox::cmd_Click(std::size_t index) {
  if (index < buttons_->count) answer_ = buttons_->answers[index];
  hide();  // ends the modal loop
}

void frmMsgBox::reject() {
  if (buttons_->style != kButtonsOk) cmd[buttons_->cancel_button]->click();
}

void frmMsgBox::closeEvent(QCloseEvent* event) {
  // A window that was closed already, because the program ends, has no button left to be pressed.
  if (isVisible()) cmd[buttons_->cancel_button]->click();
  event->accept();
}

bool frmMsgBox::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && PressByLetter(*static_cast<QKeyEvent*>(event))) return true;
  return QDialog::eventFilter(watched, event);
}

void frmMsgBox::keyPressEvent(QKeyEvent* event) {
  QScrollBar* bar = scroll_->verticalScrollBar();
  if (PressByLetter(*event)) return;
  if (event->key() == Qt::Key_PageDown) {
    bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
  } else if (event->key() == Qt::Key_PageUp) {
    bar->triggerAction(QAbstractSlider::SliderPageStepSub);
  } else {
    QDialog::keyPressEvent(event);
  }
}

// Letters with Alt are the buttons' own affair. A key that is still held down from the window before answers
// nothing.
bool frmMsgBox::PressByLetter(const QKeyEvent& event) {
  const bool is_bare = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
  if (!bare_letters_ || !is_bare || event.isAutoRepeat() || event.text().size() != 1) return false;
  const QChar typed = event.text().at(0).toUpper();
  for (QPushButton* button : cmd) {
    const qsizetype mark = button->text().indexOf('&');
    if (mark < 0 || mark + 1 >= button->text().size()) continue;
    if (button->text().at(mark + 1).toUpper() != typed) continue;
    button->click();
    return true;
  }
  return false;
}

}  // namespace quendle
