// The write and read chains: one client process at a time, each step started by the previous
// one's finished signal.
#include "commandrunner.h"
#include "cpulog.h"
#include "cputuning.h"
#include "keys.h"
#include "tuningformat.h"
#include "tuningkeys.h"
#include "ui_mainwindow.h"
#include "xtuclient.h"

namespace {

using Member = AsyncProcess *CpuTuning::*;
using Step = void (CpuTuning::*)();

const Member kCoreWriteProcesses[8] = {
    &CpuTuning::core1WriteProcess, &CpuTuning::core2WriteProcess, &CpuTuning::core3WriteProcess,
    &CpuTuning::core4WriteProcess, &CpuTuning::core5WriteProcess, &CpuTuning::core6WriteProcess,
    &CpuTuning::core7WriteProcess, &CpuTuning::core8WriteProcess};

const Member kReadProcesses[11] = {
    &CpuTuning::readProcess1,  &CpuTuning::readProcess2, &CpuTuning::readProcess3,
    &CpuTuning::readProcess4,  &CpuTuning::readProcess5, &CpuTuning::readProcess6,
    &CpuTuning::readProcess7,  &CpuTuning::readProcess8, &CpuTuning::readProcess9,
    &CpuTuning::readProcess10, &CpuTuning::readProcess11};

// What runs when core N's write finishes: the next core, and after core 8 the chain's end.
const Step kAfterCoreWrite[8] = {
    &CpuTuning::Core2Out, &CpuTuning::Core3Out, &CpuTuning::Core4Out, &CpuTuning::Core5Out,
    &CpuTuning::Core6Out, &CpuTuning::Core7Out, &CpuTuning::Core8Out, &CpuTuning::terminateapply};

// What runs when read N finishes, and which parser takes its output.
const Step kAfterRead[11] = {&CpuTuning::start2,  &CpuTuning::start3,          &CpuTuning::start4,
                             &CpuTuning::start5,  &CpuTuning::start6,          &CpuTuning::start7,
                             &CpuTuning::start8,  &CpuTuning::start9,          &CpuTuning::start10,
                             &CpuTuning::start11, &CpuTuning::terminateprocess};
const Step kParsers[11] = {&CpuTuning::get1out,  &CpuTuning::get2out, &CpuTuning::get3out,
                           &CpuTuning::get4out,  &CpuTuning::get5out, &CpuTuning::get6out,
                           &CpuTuning::get7out,  &CpuTuning::get8out, &CpuTuning::get9out,
                           &CpuTuning::get10out, &CpuTuning::get11out};

const char *const kCoreWriteNames[8] = {
    "core1WriteProcess", "core2WriteProcess", "core3WriteProcess", "core4WriteProcess",
    "core5WriteProcess", "core6WriteProcess", "core7WriteProcess", "core8WriteProcess"};

void onFinished(AsyncProcess *process, CpuTuning *tuning, Step step)
{
    QObject::connect(process, &AsyncProcess::finished, tuning, step);
}

} // namespace

AsyncProcess *CpuTuning::coreWriteProcess(int cores) const
{
    return this->*kCoreWriteProcesses[cores - 1];
}

AsyncProcess *CpuTuning::readProcess(int order) const
{
    return this->*kReadProcesses[order - 1];
}

void CpuTuning::createProcesses()
{
    CommandRunner &runner = *m_platform.commands;
    auto create = [&](Member member, const QString &name) {
        this->*member = runner.createProcess(this);
        (this->*member)->setObjectName(name);
    };
    create(&CpuTuning::serviceApplyProcess, QStringLiteral("serviceApplyProcess"));
    create(&CpuTuning::undervoltWriteProcess, QStringLiteral("undervoltWriteProcess"));
    create(&CpuTuning::powerWriteProcess, QStringLiteral("powerWriteProcess"));
    create(&CpuTuning::timeWriteProcess, QStringLiteral("timeWriteProcess"));
    for (int cores = 1; cores <= 8; ++cores)
        create(kCoreWriteProcesses[cores - 1], QLatin1String(kCoreWriteNames[cores - 1]));
    create(&CpuTuning::serviceReadProcess, QStringLiteral("serviceReadProcess"));
    for (int order = 1; order <= 11; ++order)
        create(kReadProcesses[order - 1], QStringLiteral("readProcess%1").arg(order));
    connectWriteChain();
    connectReadChain();
}

void CpuTuning::connectWriteChain()
{
    onFinished(serviceApplyProcess, this, &CpuTuning::XTUOutputUnderVoltOut);
    onFinished(undervoltWriteProcess, this, &CpuTuning::XTUTurboPowerOut);
    onFinished(powerWriteProcess, this, &CpuTuning::XTUTurboTimeOut);
    onFinished(timeWriteProcess, this, &CpuTuning::Core1Out);
    for (int cores = 1; cores <= 8; ++cores)
        onFinished(coreWriteProcess(cores), this, kAfterCoreWrite[cores - 1]);
}

void CpuTuning::connectReadChain()
{
    onFinished(serviceReadProcess, this, &CpuTuning::start1);
    for (int order = 1; order <= 11; ++order) {
        onFinished(readProcess(order), this, kAfterRead[order - 1]);
        connect(readProcess(order), &AsyncProcess::readyReadStandardOutput, this,
                kParsers[order - 1]);
    }
}

void CpuTuning::apply()
{
    if (!serviceApplyProcess)
        return;
    serviceApplyProcess->startCommand(xtu::serviceStart);
    ui.Button_ApplyValues->setEnabled(false);
    saveKnownValues();
    ui.checkBox_ReApply->setEnabled(true);
}

// A start-up position saved here would replace what the user applied before, without a client
// to ever read it: only known values are saved.
void CpuTuning::saveKnownValues()
{
    const SettingsFile general = m_settings.general();
    if (isKnown(Undervolt))
        general.setValue(keys::undervolt, ui.undervolt_slider->value());
    // With the override on, the turbo power is the power mode's; the tab's own stays saved.
    if (isKnown(TurboPower) && !ui.turbo_override->isChecked())
        general.setValue(keys::boostPower, turboPowerText);
    if (isKnown(TurboTime))
        general.setValue(keys::turboTime, ui.Slider_TurboTime->value());
    for (int cores = 1; cores <= 8; ++cores) {
        if (isKnown(CoreRatio1 + cores - 1))
            general.setValue(coreMultiKey(cores), coreSpin(cores)->value());
    }
}

void CpuTuning::getxtuvalues()
{
    if (serviceReadProcess)
        serviceReadProcess->startCommand(xtu::serviceStart);
}

void CpuTuning::writeValue(AsyncProcess *process, int id, const QString &value)
{
    qCDebug(lcCpuTuning) << "write" << id << value;
    process->start(xtu::clientProgram, xtu::writeArguments(id, value));
}

void CpuTuning::XTUOutputUnderVoltOut()
{
    // A value never read nor set is skipped like an unchanged one: the processor keeps its own.
    if (!isKnown(Undervolt) || readUndervolt == undervoltText) {
        XTUTurboPowerOut();
        return;
    }
    writeValue(undervoltWriteProcess, xtu::kUndervoltId, undervoltText);
}

void CpuTuning::XTUTurboPowerOut()
{
    undervoltWriteProcess->close();
    if (!isKnown(TurboPower) ||
        QString(turboPowerText).replace(QLatin1Char('.'), QLatin1Char(',')) == readTurboPower) {
        XTUTurboTimeOut();
        return;
    }
    // A client that prints decimal commas also reads them; the text itself keeps the comma.
    if (decimalComma)
        turboPowerText.replace(QLatin1Char('.'), QLatin1Char(','));
    writeValue(powerWriteProcess, xtu::kTurboPowerId, turboPowerText);
}

void CpuTuning::XTUTurboTimeOut()
{
    powerWriteProcess->close();
    if (!isKnown(TurboTime) || readTurboTime == ui.Slider_TurboTime->value()) {
        Core1Out();
        return;
    }
    writeValue(timeWriteProcess, xtu::kTurboTimeId, QString::number(ui.Slider_TurboTime->value()));
}

void CpuTuning::coreOut(int cores)
{
    (cores == 1 ? timeWriteProcess : coreWriteProcess(cores - 1))->close();
    QSpinBox *spin = coreSpin(cores);
    // A spin box in a disabled frame counts as disabled; a hidden one does not.
    const bool skip = spin->value() == readCoreRatio(cores) || !spin->isEnabled() ||
                      !isKnown(CoreRatio1 + cores - 1);
    if (!skip) {
        writeValue(coreWriteProcess(cores), xtu::kCoreIds[cores - 1],
                   QString::number(spin->value()));
        return;
    }
    if (cores < 8)
        (this->*kAfterCoreWrite[cores - 1])();
    else
        finishWriteChain();
}

void CpuTuning::Core1Out()
{
    coreOut(1);
}
void CpuTuning::Core2Out()
{
    coreOut(2);
}
void CpuTuning::Core3Out()
{
    coreOut(3);
}
void CpuTuning::Core4Out()
{
    coreOut(4);
}
void CpuTuning::Core5Out()
{
    coreOut(5);
}
void CpuTuning::Core6Out()
{
    coreOut(6);
}
void CpuTuning::Core7Out()
{
    coreOut(7);
}
void CpuTuning::Core8Out()
{
    coreOut(8);
}

void CpuTuning::terminateapply()
{
    finishWriteChain();
}

// The sixth core's process is the one stopped here; the eighth ends by itself. Kept that way.
void CpuTuning::finishWriteChain()
{
    core6WriteProcess->close();
    serviceApplyProcess->close();
    serviceReadProcess->startCommand(xtu::serviceStart);
}

void CpuTuning::startRead(int order)
{
    if (order > 1)
        readProcess(order - 1)->close();
    AsyncProcess *process = readProcess(order);
    process->start(xtu::clientProgram, m_readQueries.at(order - 1));
    process->write(QByteArrayLiteral("\n"));
}

void CpuTuning::start1()
{
    startRead(1);
}
void CpuTuning::start2()
{
    startRead(2);
}
void CpuTuning::start3()
{
    startRead(3);
}
void CpuTuning::start4()
{
    startRead(4);
}
void CpuTuning::start5()
{
    startRead(5);
}
void CpuTuning::start6()
{
    startRead(6);
}
void CpuTuning::start7()
{
    startRead(7);
}
void CpuTuning::start8()
{
    startRead(8);
}
void CpuTuning::start9()
{
    startRead(9);
}
void CpuTuning::start10()
{
    startRead(10);
}
void CpuTuning::start11()
{
    startRead(11);
}

void CpuTuning::terminateprocess()
{
    readProcess11->close();
    if (ui.Check_PreventXTU->isChecked()) {
        serviceReadProcess->close();
        runQuery(xtu::serviceStop);
    }
    ui.Button_ApplyValues->setEnabled(false);
    if (ui.checkBox_ReApply->isChecked() && !reapplyDone)
        comprareXTU();
    showPrivilegedState();
    emit readChainFinished();
}

void CpuTuning::comprareXTU()
{
    const SettingsFile general = m_settings.general();
    // Each control that differs from what was last applied takes the saved value. A key that
    // was never saved is no value to restore (it would read as 0).
    auto restore = [this, &general](const QString &key, auto saved, auto shown, auto set) {
        if (!general.contains(key) || saved == shown)
            return;
        set();
        reapplyPending = true;
    };
    // A saved figure that is no whole number within the control's range restores nothing:
    // read as 0 or clamped, it would be written as if the user had applied it.
    auto restoreWhole = [&](const QString &key, auto *control) {
        bool ok = false;
        const int saved = general.value(key).toString().trimmed().toInt(&ok);
        if (ok && saved >= control->minimum() && saved <= control->maximum())
            restore(key, saved, control->value(), [&] { control->setValue(saved); });
    };

    restoreWhole(QLatin1String(keys::undervolt), ui.undervolt_slider);

    if (ui.turbo_override->isChecked()) {
        const int target = ui.power_mode_turbo_boost->value();
        if (target != ui.Slider_TurboBoost->value()) {
            ui.Slider_TurboBoost->setValue(target);
            reapplyPending = true;
        }
    } else {
        const QString saved = general.value(keys::boostPower)
                                  .toString()
                                  .remove(QLatin1Char('W'))
                                  .replace(QLatin1Char(','), QLatin1Char('.'));
        // A saved figure that is no power (1e300) restores nothing.
        if (const auto position = turboPowerPosition(saved))
            restore(QLatin1String(keys::boostPower), saved,
                    ui.Label_TurboPowerValue->text().remove(QLatin1Char('W')),
                    [&] { ui.Slider_TurboBoost->setValue(*position); });
    }

    restoreWhole(QLatin1String(keys::turboTime), ui.Slider_TurboTime);
    for (int cores = 1; cores <= 8; ++cores)
        restoreWhole(coreMultiKey(cores), coreSpin(cores));

    if (reapplyPending) {
        ui.Button_ApplyValues->setEnabled(true);
        apply();
        reapplyPending = false;
        reapplyDone = true;
    }
}
