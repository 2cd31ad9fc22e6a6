#pragma once

#include <QList>
#include <QPoint>
#include <QWidget>

class QLabel;
class SettingsFile;

// What the two desktop widgets share: a frameless translucent tool window sized by the screen
// density, dragged with the left button, whose geometry is saved in the widget file on every
// mouse move under its own key.
class DesktopWidget : public QWidget {
    Q_OBJECT
public:
    DesktopWidget(const char *geometryKey, QWidget *parent);

    // The primary screen's logical DPI on the x axis over 120.
    static float screenScaleFactor();

protected:
    static SettingsFile widgetFile();
    void restoreSavedGeometry();
    // Flags, translucency and the fixed 800 x 600 size scaled by the factor.
    void makeFloating(float scale);
    // 1 gives black text, 0 white; any other value changes nothing.
    static void applyTextColor(const QList<QLabel *> &labels, int cor);
    static QLabel *whiteLabel(const QString &objectName, QWidget *parent);

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    const char *m_geometryKey;
    QPoint m_dragOffset;
};
