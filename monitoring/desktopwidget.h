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

    // Only the labels' area belongs to the widget, so clicks anywhere else reach the desktop.
    // Where windows cannot be see-through, that area gets a dark backing instead of the black
    // of a transparent window without a compositor.
    void fitToDesktop(bool translucent);

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
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void maskToLabels();

    const char *m_geometryKey;
    bool m_fitted = false;
    QPoint m_dragOffset;
};
