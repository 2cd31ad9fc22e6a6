// The window's shared status block for the companion tools: each slot reads its controls and
// hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "powermodes.h"
#include "statuspublisher.h"

#include <QTimer>

// The record is published when it changes, so it is never older than a second without a timer
// waking the laptop every second to write the same bytes again. A publication that fails (a
// reader still holds the old segment) is tried again each second until it succeeds.
void MainWindow::startStatusPublisher()
{
    m_status = new StatusPublisher(QStringLiteral("VarnelSharedMem"), this);
    m_power->onStatusChanged([this] { sharedmemtimer(); });
    sharedmemtimer();
}

void MainWindow::sharedmemtimer()
{
    if (m_status->publish(m_power->statusRecord()) || m_statusRetryPending)
        return;
    m_statusRetryPending = true;
    QTimer::singleShot(1000, this, &MainWindow::retryStatus);
}

void MainWindow::retryStatus()
{
    m_statusRetryPending = false;
    sharedmemtimer();
}

void MainWindow::loadIntoSharedMem(const QString &text)
{
    m_status->publish(text);
}
