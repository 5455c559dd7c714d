#include "shell/browser_window.h"

namespace kestrune {

void BrowserWindow::mnuSetting_Click() {}

void BrowserWindow::cmdEdit_Click() {}

void BrowserWindow::cmdDelete_Click() { store_.cmdDelete_Click(CurrentRecordList()); }

void BrowserWindow::cmdSave_Click() { store_.cmdSave_Click(); }

void BrowserWindow::cmdReset_Click() {}

void BrowserWindow::cmdPlayback_Click() {}

} // namespace kestrune
