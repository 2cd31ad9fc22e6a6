#include "darkstyle.h"

#include "keys.h"
#include "stylesheethold.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QStyleFactory>

void initDarkStyleResources()
{
    // The style sheet and its icons are compiled into a static library.
    Q_INIT_RESOURCE(darkstyle);
}

DarkStyle::DarkStyle() : QProxyStyle(styleBase())
{
    initDarkStyleResources();
}

DarkStyle::~DarkStyle()
{
    // The proxy adopts its base as a child; the base is shared, so give it back.
    if (QStyle *base = baseStyle())
        base->setParent(nullptr);
}

QStyle *DarkStyle::styleBase()
{
    static QStyle *base = QStyleFactory::create(QStringLiteral("Fusion"));
    return base;
}

QPalette DarkStyle::darkPalette(const QColor &highlight)
{
    QPalette p;
    p.setColor(QPalette::Window, QColor(48, 48, 48));
    p.setColor(QPalette::WindowText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(127, 127, 127));
    p.setColor(QPalette::Base, QColor(42, 42, 42));
    p.setColor(QPalette::AlternateBase, QColor(66, 66, 66));
    p.setColor(QPalette::ToolTipBase, Qt::white);
    p.setColor(QPalette::ToolTipText, QColor(53, 53, 53));
    p.setColor(QPalette::Text, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(127, 127, 127));
    p.setColor(QPalette::Dark, QColor(40, 40, 40));
    p.setColor(QPalette::Shadow, QColor(15, 15, 15));
    p.setColor(QPalette::Button, QColor(56, 56, 56));
    p.setColor(QPalette::ButtonText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(127, 127, 127));
    p.setColor(QPalette::BrightText, Qt::red);
    p.setColor(QPalette::Link, QColor(42, 130, 218));
    p.setColor(QPalette::Highlight, highlight);
    p.setColor(QPalette::Disabled, QPalette::Highlight, QColor(80, 80, 80));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(127, 127, 127));
    return p;
}

void DarkStyle::polish(QPalette &palette)
{
    const Settings settings(m_files);
    const SettingsFile branding = settings.branding();
    palette = darkPalette(brandingHighlight(branding));
}

QColor DarkStyle::brandingHighlight(const SettingsFile &branding)
{
    // Out of range, QColor turns invalid and prints a warning: a typo in a reseller's file
    // must neither blank the highlight nor reach the console.
    auto part = [&branding](const char *key) {
        return qBound(0, branding.value(QLatin1String(key)).toInt(), 255);
    };
    return QColor(part(keys::highlightRed), part(keys::highlightGreen), part(keys::highlightBlue));
}

void DarkStyle::polish(QApplication *app)
{
    if (!app)
        return;
    QFont font = QApplication::font();
    // A pixel-sized font has no point size to grow; it stays as it is.
    if (font.pointSize() > 0) {
        font.setPointSize(font.pointSize() + 1);
        QApplication::setFont(font);
    }

    if (!StyleSheetHold::held())
        applyDarkStyleSheet();
}
