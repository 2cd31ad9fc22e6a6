#pragma once

#include "settingsfiles.h"

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

void initDarkStyleResources();

// The application's dark look: Fusion underneath, a fixed dark palette whose highlight comes
// from the branding file, and the style sheet from the resources.
class DarkStyle : public QProxyStyle {
    Q_OBJECT

public:
    DarkStyle();
    ~DarkStyle() override;

    void polish(QPalette &palette) override;
    void polish(QApplication *app) override;
    using QProxyStyle::polish;

    // The shared base style, created once.
    static QStyle *styleBase();
    static QPalette darkPalette(const QColor &highlight);
    // The branding file's highlight colour, each part held to 0 ... 255.
    static QColor brandingHighlight(const SettingsFile &branding);

private:
    SettingsFileSet m_files;
};
