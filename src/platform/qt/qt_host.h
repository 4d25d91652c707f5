#pragma once
#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <chrono>
#include <string>

#include "platform/host.h"
#include "platform/qt/qt_image_io.h"
#include <functional>

namespace velmora {

inline QString ToQ(const std::string& s) {
  return QString::fromUtf8(s.data(), qsizetype(s.size()));
}
inline std::string FromQ(const QString& s) {
  return s.toUtf8().toStdString();
}

// "Layer files (*.shp)|*.shp|All files (*.*)|*.*" as a Qt file dialog filter.
QString QtFilter(const std::string& filter);
// Are the codecs for TIFF and PNG images there?
bool ImageCodecsReady();

// The host of a session with a window. What the window shows (the log, the progress, the
// running function's caption, the layer list) is passed on as signals; the window that
// owns the session connects to them.
class QtHost : public QObject, public Host {
  Q_OBJECT
public:
  explicit QtHost(QObject* parent = nullptr) : QObject(parent) {}
  // The window over which message boxes and file dialogs open.
  void SetWindow(QWidget* w) { window_ = w; }

  void Yield() override;
  MsgAnswer MsgBox(const std::string& text, const std::string& title, MsgButtons buttons,
                   MsgAnswer dflt) override;
  void Beep() override;
  void LogAppended(const std::string& msg) override { emit logAppended(ToQ(msg)); }
  void WaitCursor(bool on) override;
  void Progress(long long value, long long max) override { emit progressChanged(value, max); }
  void FuncText(const std::string& text) override { emit funcTextChanged(ToQ(text)); }
  void LayerListChanged() override { emit layerListChanged(); }
  void LayerItemChanged(int lyr) override { emit layerItemChanged(lyr); }
  void MapRedraw() override { emit mapRedrawRequested(); }
  void BlockTable(int lyr, bool blocked) override { emit tableBlocked(lyr, blocked); }
  bool IsDialogOpen(const std::string& caption) override;
  bool ShellOpen(const std::string& path) override;
  bool StartSecondProcess() override;
  std::string SaveFileDialog(const std::string& title, const std::string& filter,
                             const std::string& defaultName) override;
  void TableDataChanged(int lyr) override { emit tableDataChanged(lyr); }
  std::string ClipboardText() override;
  void SetClipboardText(const std::string& text) override;
  bool PrintTable(const std::string& title, const std::vector<std::string>& lines) override;
  void TableFieldsChanged(int lyr) override { emit tableFieldsChanged(lyr); }
  void FlushTable(int lyr) override { emit tableFlushRequested(lyr); }
  void CloseTable(int lyr) override { emit tableClosed(lyr); }
  bool OpenWith(const std::string& program, const std::string& path) override;
  // A script's MsgBox and InputBox (qt_script_dialogs.cpp).
  int ScriptMsgBox(const std::string& prompt, int buttons, const std::string& title) override;
  bool ScriptInputBox(const std::string& prompt, const std::string& title, const std::string& dflt,
                      std::string& answer, bool& cancelled) override;
  Canvas* MapBuf() override { return mapBuf ? mapBuf() : nullptr; }
  void MapShow() override {
    if (mapShow) mapShow();
  }
  ImageIO* Images() override { return &images; }

  // The window's map surface, set by the window that shows it.
  std::function<Canvas*()> mapBuf;
  std::function<void()> mapShow;
  QtImageIO images;
  // Where PrintTable writes its PDF when set, instead of asking for a printer (and where it
  // wrote the last one).
  std::string printFile;

signals:
  void logAppended(const QString& msg);
  void progressChanged(qint64 value, qint64 max);
  void funcTextChanged(const QString& text);
  void layerListChanged();
  void layerItemChanged(int lyr);
  void mapRedrawRequested();
  void tableBlocked(int lyr, bool blocked);
  void tableDataChanged(int lyr);
  void tableFieldsChanged(int lyr);
  void tableFlushRequested(int lyr); // connected directly: the page is written at once
  void tableClosed(int lyr);

private:
  // When events were last let through: a loop over a million rows yields every row, and
  // the window needs a turn only every few milliseconds.
  std::chrono::steady_clock::time_point lastYield_{};
  QPointer<QWidget> window_;
  bool waitCursor_ = false;
};

} // namespace velmora
