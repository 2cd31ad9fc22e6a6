#pragma once

// The real window over the fake bundle, with the tuning client mapped to the fake client program
// so that the real process chains run it.

#include "cputuning.h"
#include "fakeplatform.h"
#include "mainwindow.h"
#include "testfolder.h"
#include "ui_mainwindow.h"
#include "xtuclient.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

class ClientRig {
public:
    ClientRig()
    {
        fake.commands->programMap[xtu::clientProgram] =
            QStringLiteral(VARNEL_TEST_BIN_DIR "/cputuning/fake_xtu_client" VARNEL_EXE_SUFFIX);
        fake.commands->asyncOutputs[xtu::serviceStart] = QString();
        fake.commands->outputs[QStringLiteral("wmic cpu get Name")] =
            QStringLiteral("Name\r\r\nIntel(R) Core(TM) i7-10875H CPU @ 2.30GHz\r\r\n\r\r\n");
        folder.copyShipped(QStringLiteral("cpuprofiles/10875H.ini"));
        manage(true);
        qputenv("FAKE_XTU_STATE", folder.file(QStringLiteral("xtu-state")).toLocal8Bit());
    }
    ~ClientRig()
    {
        window.reset();
        for (const char *name : {"FAKE_XTU_STATE", "FAKE_XTU_COMMA", "FAKE_XTU_CORES",
                                 "FAKE_XTU_SILENT", "FAKE_XTU_HANG", "FAKE_XTU_SPLIT"})
            qunsetenv(name);
    }

    void manage(bool managed) const
    {
        folder.setIni(QStringLiteral("settings/varnel.ini"), QStringLiteral("DontManageCPU"),
                      managed);
    }
    void saved(const QString &key, const QVariant &value) const
    {
        folder.setIni(QStringLiteral("settings/varnel.ini"), key, value);
    }
    QVariant savedValue(const QString &key) const
    {
        return folder.ini(QStringLiteral("settings/varnel.ini"), key);
    }
    // What the processor holds before the program starts ("id=value" in the client's state).
    void holds(int id, const QString &value) const
    {
        QFile state(folder.file(QStringLiteral("xtu-state")));
        state.open(QIODevice::Append);
        state.write(QStringLiteral("%1=%2\n").arg(id).arg(value).toUtf8());
    }

    void start()
    {
        window = std::make_unique<MainWindow>(fake.bundle());
        chainEnds = std::make_unique<QSignalSpy>(cpu(), &CpuTuning::readChainFinished);
    }
    CpuTuning *cpu() const { return window->cpuTuning(); }
    Ui::MainWindow *ui() const { return window->form(); }

    // Waits until `count` read chains have ended since start-up.
    bool waitForReadChains(int count)
    {
        QElapsedTimer clock;
        clock.start();
        while (chainEnds->count() < count && clock.elapsed() < 20000)
            chainEnds->wait(200);
        return chainEnds->count() >= count;
    }

    // The client's arguments, in the order the chains started it ("-t -id 34 -v -80").
    QStringList clientRuns(bool writes) const
    {
        const QString prefix = QStringLiteral("process: ") + xtu::clientProgram + ' ';
        QStringList runs;
        for (const QString &entry : fake.log->withPrefix(prefix)) {
            const QString arguments = entry.mid(prefix.size());
            if (arguments.contains(QLatin1String(" -v ")) == writes)
                runs << arguments;
        }
        return runs;
    }
    QStringList writes() const { return clientRuns(true); }
    QStringList reads() const { return clientRuns(false); }

    void clickApply() const
    {
        ui()->Button_ApplyValues->setEnabled(true);
        ui()->Button_ApplyValues->click();
    }

    FakePlatform fake;
    TestFolder folder;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<QSignalSpy> chainEnds;
};
