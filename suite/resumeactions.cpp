#include "resumeactions.h"

#include "fixhelpers.h"
#include "ui_mainwindow.h"

ResumeActions::ResumeActions(Ui::MainWindow &ui, std::shared_ptr<CommandRunner> commands,
                             Rereads rereads, QObject *parent)
    : QObject(parent), m_ui(ui), m_commands(std::move(commands)), m_rereads(std::move(rereads))
{
}

void ResumeActions::runFixes()
{
    // Only after a resume are the headphone helpers shown; at start-up they run hidden.
    if (m_ui.checkBox_headphonefix->isChecked())
        fixhelpers::restartHeadphoneHelpers(*m_commands);
    if (m_ui.checkBox_3->isChecked())
        fixhelpers::startBrightnessFix(*m_commands);
}

void ResumeActions::afterResume()
{
    runFixes();
    m_rereads.volume();
    m_rereads.brightness();
    if (m_ui.checkBox_ReApply->isChecked())
        m_rereads.reapplyTuning();
}

void ResumeActions::afterDeviceMessage()
{
    runFixes();
}
