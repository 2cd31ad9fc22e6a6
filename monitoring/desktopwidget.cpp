#include "desktopwidget.h"

#include "settingsfiles.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QScreen>

DesktopWidget::DesktopWidget(const char *geometryKey, QWidget *parent)
    : QWidget(parent), m_geometryKey(geometryKey)
{
}

float DesktopWidget::screenScaleFactor()
{
    return static_cast<float>(QGuiApplication::primaryScreen()->logicalDotsPerInchX() / 120.0);
}

SettingsFile DesktopWidget::widgetFile()
{
    return SettingsFile(QStringLiteral("settings\\settings_widgets.ini"));
}

void DesktopWidget::restoreSavedGeometry()
{
    restoreGeometry(widgetFile().value(QLatin1String(m_geometryKey)).toByteArray());
}

void DesktopWidget::makeFloating(float scale)
{
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(static_cast<int>(800 * scale), static_cast<int>(600 * scale));
}

void DesktopWidget::fitToDesktop(bool translucent)
{
    if (!translucent) {
        setAttribute(Qt::WA_TranslucentBackground, false);
        QPalette backing = palette();
        backing.setColor(QPalette::Window, QColor(32, 32, 32));
        setPalette(backing);
        setAutoFillBackground(true);
    }
    if (!m_fitted) {
        for (QLabel *label : findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly))
            label->installEventFilter(this);
        m_fitted = true;
    }
    maskToLabels();
}

void DesktopWidget::maskToLabels()
{
    QRegion shown;
    for (QLabel *label : findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!label->isHidden())
            shown += label->geometry();
    }
    setMask(shown);
}

bool DesktopWidget::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::Show:
    case QEvent::Hide:
        maskToLabels();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void DesktopWidget::applyTextColor(const QList<QLabel *> &labels, int cor)
{
    QString sheet;
    if (cor == 1)
        sheet = QStringLiteral("color:black;");
    else if (cor == 0)
        sheet = QStringLiteral("color:white;");
    else
        return;
    for (QLabel *label : labels)
        label->setStyleSheet(sheet);
}

QLabel *DesktopWidget::whiteLabel(const QString &objectName, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setStyleSheet(QStringLiteral("color:white;"));
    return label;
}

void DesktopWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_dragOffset = event->globalPos() - frameGeometry().topLeft();
        event->accept();
    }
}

void DesktopWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        move(event->globalPos() - m_dragOffset);
        event->accept();
    }
    widgetFile().setValue(QLatin1String(m_geometryKey), saveGeometry());
}
