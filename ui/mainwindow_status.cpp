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
    publishStatus(m_power->statusRecord());
}

void MainWindow::loadIntoSharedMem(const QString &text)
{
    publishStatus(text);
}

// The latest text wins; one retry at a time.
void MainWindow::publishStatus(const QString &text)
{
    m_statusPending = text;
    if (m_status->publish(text) || m_statusRetryPending)
        return;
    m_statusRetryPending = true;
    QTimer::singleShot(1000, this, &MainWindow::retryStatus);
}

void MainWindow::retryStatus()
{
    m_statusRetryPending = false;
    publishStatus(m_statusPending);
}
