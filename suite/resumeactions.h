#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace Ui {
class MainWindow;
}
class CommandRunner;

// What the window does a few seconds after the machine wakes up: the fixes that sleep undoes,
// then fresh readings of the values that may have changed meanwhile.
class ResumeActions : public QObject {
    Q_OBJECT
public:
    // The window's own re-reads, owned by other subsystems.
    struct Rereads {
        std::function<void()> volume;
        std::function<void()> brightness;
        std::function<void()> reapplyTuning;
    };

    ResumeActions(Ui::MainWindow &ui, std::shared_ptr<CommandRunner> commands, Rereads rereads,
                  QObject *parent = nullptr);

    // Three seconds after a resume: fixes, volume, brightness, and tuning when asked for.
    void afterResume();
    // Two seconds after the device message: the fixes only.
    void afterDeviceMessage();

private:
    void runFixes();

    Ui::MainWindow &m_ui;
    std::shared_ptr<CommandRunner> m_commands;
    Rereads m_rereads;
};
