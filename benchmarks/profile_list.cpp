// How long the list of profiles takes: opening it with 10,000 profiles over opening it empty, each key in its
// filter, and each key in the name on trial. Milliseconds of processor time, best and worst of several.
#include <QApplication>
#include <QLineEdit>
#include <QtTest/QTest>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"
#include "ui/windows/frmMain.h"

namespace {

double Milliseconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void Print(const char* what, std::vector<double> times) {
  const auto [best, worst] = std::minmax_element(times.begin(), times.end());
  std::printf("%-34s %7.1f to %7.1f ms\n", what, *best, *worst);
}

// A profile of fifteen lines, as the editor writes them.
void WriteProfiles(const std::string& file, int count) {
  std::ofstream out(file, std::ios::binary);
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i * 7919 % 10'000);
    out << "[Profile " << number << "]\r\nPattern=report" << number << "_.*\\.(zip|lzh|cab)\r\n"
        << "ExtractTo=/home/user/Documents/extracted/" << number << "\r\nMoveTo=/home/user/Archive/" << number
        << "\r\nCopyTo=\r\nInclude=*.txt;*.doc\r\nExclude=*.tmp\r\nOpenFile=\r\nID=" << i % 2
        << "\r\nAction=" << i % 8 << "\r\nSmartRename=3\r\nExtractType=1\r\nSmartMakeDir=1\r\nOpenDir=0\r\n";
  }
}

struct Store {
  explicit Store(int count) : folder(std::filesystem::temp_directory_path() / "quendle-profile-list-bench") {
    std::filesystem::create_directories(folder);
    WriteProfiles(folder / "items.ini", count);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // so that a parse of the file may be kept
  }
  ~Store() { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
  quendle::clsPropDefault standard{{folder, "/standard"}, false};
  quendle::clsPropItem items{
      folder,
      {[this]() -> const quendle::clsPropDefault& { return standard; },
       [this]() -> const quendle::clsPropDefault& { return standard; }, [] { return std::string(); }}};
};

std::unique_ptr<quendle::frmMain> Open(Store* store) {
  auto window =
      std::make_unique<quendle::frmMain>(store->items, store->standard, quendle::MainServices(), "");
  window->show();
  QCoreApplication::processEvents();
  window->grab();
  return window;
}

std::vector<double> TimeOpening(int profiles) {
  std::vector<double> times;
  for (int i = 0; i < 5; ++i) {
    Store store(profiles);
    const double begin = Milliseconds();
    Open(&store);
    times.push_back(Milliseconds() - begin);
  }
  return times;
}

std::vector<double> TimeKeys(quendle::frmMain* window, const char* field, const QString& text) {
  auto* edit = window->findChild<QLineEdit*>(field);
  edit->setFocus();
  std::vector<double> times;
  const auto press = [&](const std::function<void()>& key) {
    const double begin = Milliseconds();
    key();
    QCoreApplication::processEvents();
    window->grab();
    times.push_back(Milliseconds() - begin);
  };
  for (const QChar key : text) press([&] { QTest::keyClick(edit, key.toLatin1()); });
  for (qsizetype i = 0; i < text.size(); ++i) press([&] { QTest::keyClick(edit, Qt::Key_Backspace); });
  return times;
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  TimeOpening(0);  // fonts and styles are loaded
  Print("opening, no profiles", TimeOpening(0));
  Print("opening, 10,000 profiles", TimeOpening(10'000));
  Store store(10'000);
  const auto window = Open(&store);
  Print("a key in the filter", TimeKeys(window.get(), "filter", "archive/99"));
  Print("a key in the name on trial", TimeKeys(window.get(), "test", "report99_a.zip"));
  return 0;
}
