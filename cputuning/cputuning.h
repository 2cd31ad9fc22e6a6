#pragma once

#include "cpuidentification.h"
#include "platform.h"
#include "settingsfiles.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>
#include <bitset>

namespace Ui {
class MainWindow;
}
class AsyncProcess;
class QLabel;
class QSpinBox;
class QWidget;

// The "CPU Tuning" tab: identifies the processor, reads and writes the tuning values through
// the tuning utility's command-line client, and decides at start-up whether it manages the
// processor at all.
//
// Writing and reading are chains of child processes, one at a time: each step starts when the
// previous process has finished, and a step with nothing to do hands over at once.
class CpuTuning : public QObject {
    Q_OBJECT

public:
    CpuTuning(Ui::MainWindow &ui, Platform platform, Settings settings, QWidget *window);

    // Start-up: processor, model, turbo limits, the process objects and the "Manage CPU"
    // decision.
    void identifyCpu();
    // "Recommended": the matched profile's values into the controls; nothing is written.
    void loadRecommended();

    // Handlers of the tab's controls.
    void undervoltChanged(int position);
    void turboPowerChanged(int position);
    void turboTimeChanged(int seconds);
    void core1Changed();
    void manageCpuClicked();
    void preventXtuClicked();
    void reApplyClicked();

    // Settings loader steps.
    void loadPreventXtu();
    void loadReApply();

    // Identification.
    QString cpuName;
    QString laptopModel;
    int turboPowerMax = 0;
    QString turboPowerUnlimited;

    // What the last read chain found.
    QString readUndervolt;
    QString readTurboPower;
    int readTurboTime = 0;
    int readCoreRatio1 = 0;
    int readCoreRatio2 = 0;
    int readCoreRatio3 = 0;
    int readCoreRatio4 = 0;
    int readCoreRatio5 = 0;
    int readCoreRatio6 = 0;
    int readCoreRatio7 = 0;
    int readCoreRatio8 = 0;
    bool decimalComma = false;
    bool coreRowsMissing = false;

    // What the next apply writes, and the once-per-run re-apply.
    QString undervoltText = QStringLiteral("0");
    QString turboPowerText;
    QString turboTimeText = QStringLiteral("1");
    bool reapplyPending = false;
    bool reapplyDone = false;

    // The client's process objects, created by identifyCpu() and reused for every run.
    AsyncProcess *serviceApplyProcess = nullptr;
    AsyncProcess *undervoltWriteProcess = nullptr;
    AsyncProcess *powerWriteProcess = nullptr;
    AsyncProcess *timeWriteProcess = nullptr;
    AsyncProcess *core1WriteProcess = nullptr;
    AsyncProcess *core2WriteProcess = nullptr;
    AsyncProcess *core3WriteProcess = nullptr;
    AsyncProcess *core4WriteProcess = nullptr;
    AsyncProcess *core5WriteProcess = nullptr;
    AsyncProcess *core6WriteProcess = nullptr;
    AsyncProcess *core7WriteProcess = nullptr;
    AsyncProcess *core8WriteProcess = nullptr;
    AsyncProcess *serviceReadProcess = nullptr;
    AsyncProcess *readProcess1 = nullptr;
    AsyncProcess *readProcess2 = nullptr;
    AsyncProcess *readProcess3 = nullptr;
    AsyncProcess *readProcess4 = nullptr;
    AsyncProcess *readProcess5 = nullptr;
    AsyncProcess *readProcess6 = nullptr;
    AsyncProcess *readProcess7 = nullptr;
    AsyncProcess *readProcess8 = nullptr;
    AsyncProcess *readProcess9 = nullptr;
    AsyncProcess *readProcess10 = nullptr;
    AsyncProcess *readProcess11 = nullptr;

    // The values an apply may write and save: read from the client, or set since start-up (by
    // hand, "Recommended", a power mode or the re-apply check). A control's start-up position
    // is neither, so it never reaches the client or the saved settings.
    enum TuningValue { Undervolt, TurboPower, TurboTime, CoreRatio1 };
    bool isKnown(int tuningValue) const { return m_known.test(std::size_t(tuningValue)); }

    // The per-core members by active-core count (1 ... 8) and read order (1 ... 11).
    int &readCoreRatio(int cores);
    AsyncProcess *coreWriteProcess(int cores) const;
    AsyncProcess *readProcess(int order) const;

signals:
    // The eleventh read has been handled (end of terminateprocess()).
    void readChainFinished();

public slots:
    // Apply: starts the service, saves the values, and the write chain follows.
    void apply();
    // Starts the service; the read chain follows.
    void getxtuvalues();
    // The re-apply check against the saved settings.
    void comprareXTU();

    // Write chain.
    void XTUOutputUnderVoltOut();
    void XTUTurboPowerOut();
    void XTUTurboTimeOut();
    void Core1Out();
    void Core2Out();
    void Core3Out();
    void Core4Out();
    void Core5Out();
    void Core6Out();
    void Core7Out();
    void Core8Out();
    void terminateapply();

    // Read chain.
    void start1();
    void start2();
    void start3();
    void start4();
    void start5();
    void start6();
    void start7();
    void start8();
    void start9();
    void start10();
    void start11();
    void terminateprocess();

    // Parsers, one per read query.
    void get1out();
    void get2out();
    void get3out();
    void get4out();
    void get5out();
    void get6out();
    void get7out();
    void get8out();
    void get9out();
    void get10out();
    void get11out();

private:
    void createProcesses();
    void connectWriteChain();
    void connectReadChain();
    void applyStartupDecision();
    void showPrivilegedState();
    void applyTurboLimits(const TurboLimits &limits);

    void coreOut(int cores);
    void startRead(int order);
    void readCoreRatioRow(int cores);
    void hideCoreRows(int fromCores);
    void finishWriteChain();
    void writeValue(AsyncProcess *process, int id, const QString &value);
    QString readAvailableOutput(int order);
    QString runQuery(const QString &commandLine);

    void markKnown(int tuningValue) { m_known.set(std::size_t(tuningValue)); }
    void saveKnownValues();

    QSpinBox *coreSpin(int cores) const;
    QLabel *coreLabel(int cores) const;

    Ui::MainWindow &ui;
    QVector<QStringList> m_readQueries; // the eleven read queries' arguments, in read order
    Platform m_platform;
    Settings m_settings;
    QWidget *m_window;
    std::bitset<CoreRatio1 + 8> m_known;
};
