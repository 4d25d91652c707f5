#include "platform/qt/qt_host.h"

#include "platform/gdal/gdal_picture.h"

#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QTextDocument>
#include <QUrl>

namespace velmora {

QString QtFilter(const std::string& filter) {
  // Description and pattern alternate; the description already names the pattern.
  QStringList parts = ToQ(filter).split('|');
  QStringList out;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString desc = parts[i];
    QString pattern = parts[i + 1];
    pattern.replace(';', ' ');
    if (pattern == "*.*") pattern = "*";
    if (desc.contains('(')) desc = desc.left(desc.indexOf('(')).trimmed();
    out << desc + " (" + pattern + ")";
  }
  return out.join(";;");
}

bool ImageCodecsReady() {
  return GdalCodecsReady();
}

void QtHost::Yield() {
  const auto now = std::chrono::steady_clock::now();
  if (now - lastYield_ < std::chrono::milliseconds(10)) return;
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  lastYield_ = std::chrono::steady_clock::now();
}

MsgAnswer QtHost::MsgBox(const std::string& text, const std::string& title, MsgButtons buttons,
                         MsgAnswer dflt) {
  QMessageBox::StandardButtons set = QMessageBox::Ok;
  if (buttons == MsgButtons::YesNo) set = QMessageBox::Yes | QMessageBox::No;
  if (buttons == MsgButtons::YesNoCancel)
    set = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  QMessageBox::StandardButton def = QMessageBox::Ok;
  if (dflt == MsgAnswer::Yes) def = QMessageBox::Yes;
  if (dflt == MsgAnswer::No) def = QMessageBox::No;
  if (dflt == MsgAnswer::Cancel) def = QMessageBox::Cancel;

  QMessageBox box(buttons == MsgButtons::OkOnly ? QMessageBox::Information : QMessageBox::Question,
                  ToQ(title), ToQ(text), set, window_.data());
  box.setDefaultButton(def);
  switch (box.exec()) {
  case QMessageBox::Yes:
    return MsgAnswer::Yes;
  case QMessageBox::No:
    return MsgAnswer::No;
  case QMessageBox::Cancel:
    return MsgAnswer::Cancel;
  case QMessageBox::Ok:
    return MsgAnswer::Ok;
  default:
    return buttons == MsgButtons::OkOnly ? MsgAnswer::Ok : MsgAnswer::Cancel;
  }
}

void QtHost::Beep() {
  QApplication::beep();
}

void QtHost::WaitCursor(bool on) {
  if (on == waitCursor_) return;
  waitCursor_ = on;
  if (on)
    QApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QApplication::restoreOverrideCursor();
}

bool QtHost::IsDialogOpen(const std::string& caption) {
  const QString title = ToQ(caption);
  for (QWidget* w : QApplication::topLevelWidgets())
    if (w->isVisible() && w != window_ && (w->windowTitle() == title || w->objectName() == title))
      return true;
  // Dialogs of the main window are its children; they carry their list name as object name.
  if (window_)
    for (QWidget* w : window_->findChildren<QWidget*>(title))
      if (w->isVisible() && w->isWindow()) return true;
  return false;
}

bool QtHost::ShellOpen(const std::string& path) {
  QString p = ToQ(path);
  QUrl url(p, QUrl::StrictMode);
  // A path is opened as a file; only a real scheme ("http:", not a drive "C:") is a URL.
  if (url.scheme().size() < 2 || p.startsWith('/'))
    url = QUrl::fromLocalFile(QFileInfo(p).absoluteFilePath());
  return QDesktopServices::openUrl(url);
}

bool QtHost::StartSecondProcess() {
  return QProcess::startDetached(QCoreApplication::applicationFilePath(), {});
}

std::string QtHost::SaveFileDialog(const std::string& title, const std::string& filter,
                                   const std::string& defaultName) {
  return FromQ(
      QFileDialog::getSaveFileName(window_.data(), ToQ(title), ToQ(defaultName), QtFilter(filter)));
}

} // namespace velmora

namespace velmora {

std::string QtHost::ClipboardText() {
  QClipboard* c = QGuiApplication::clipboard();
  return c ? FromQ(c->text()) : std::string();
}

void QtHost::SetClipboardText(const std::string& text) {
  if (QClipboard* c = QGuiApplication::clipboard()) c->setText(ToQ(text));
}

bool QtHost::PrintTable(const std::string& title, const std::vector<std::string>& lines) {
  QString html = "<h3>" + ToQ(title).toHtmlEscaped() +
                 "</h3><table border=1 cellspacing=0 "
                 "cellpadding=2>";
  for (size_t i = 0; i < lines.size(); ++i) {
    html += "<tr>";
    for (const QString& c : ToQ(lines[i]).split('\t'))
      html += (i == 0 ? "<th>" : "<td>") + c.toHtmlEscaped() + (i == 0 ? "</th>" : "</td>");
    html += "</tr>";
  }
  html += "</table>";
  QTextDocument doc;
  doc.setHtml(html);
  QPrinter printer(QPrinter::HighResolution);
  // Without a screen (offscreen) or when a file is asked for, the page goes to a PDF.
  const bool toFile = !printFile.empty() || QGuiApplication::platformName() == "offscreen";
  if (toFile) {
    if (printFile.empty())
      printFile = FromQ(QDir::temp().filePath(ToQ(title).trimmed().replace(' ', '_') + ".pdf"));
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(ToQ(printFile));
  } else {
    QPrintDialog dlg(&printer, window_);
    if (dlg.exec() != QDialog::Accepted) return false;
  }
  doc.print(&printer);
  return true;
}

bool QtHost::OpenWith(const std::string& program, const std::string& path) {
  return QProcess::startDetached(ToQ(program), {ToQ(path)});
}

} // namespace velmora
