// The window's shared status block for the companion tools: each slot reads its controls and
// hands over to the subsystem.
#include "mainwindow.h"
#include "ui_mainwindow.h"

#include "powermodes.h"
#include "statuspublisher.h"

#include <QTimer>

void MainWindow::startStatusPublisher()
{
    m_status = new StatusPublisher(QStringLiteral("VarnelSharedMem"), this);
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MainWindow::sharedmemtimer);
    timer->start(1000);
}

void MainWindow::sharedmemtimer()
{
    m_status->publish(m_power->statusRecord());
}

void MainWindow::loadIntoSharedMem(const QString &text)
{
    m_status->publish(text);
}
