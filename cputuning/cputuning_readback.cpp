// The parsers' results shown in the tab's controls and kept as the last-read values. Setting a
// control runs its value-changed handler, as a change by hand would.
#include "commandrunner.h"
#include "cputuning.h"
#include "tuningparsers.h"
#include "ui_mainwindow.h"

QString CpuTuning::readAvailableOutput(int order)
{
    return QString::fromLocal8Bit(readProcess(order)->readAllStandardOutput());
}

void CpuTuning::get1out()
{
    const auto reading = parseUndervolt(readAvailableOutput(1));
    if (!reading)
        return;
    markKnown(Undervolt);
    ui.undervolt_slider->setValue(reading->sliderValue);
    ui.Label_UnderVolt_Value->setText(reading->label);
    readUndervolt = reading->readUndervolt;
}

void CpuTuning::get2out()
{
    const TurboPowerParse parse = parseTurboPower(readAvailableOutput(2));
    if (parse.decimalComma)
        decimalComma = true;
    if (!parse.reading)
        return;
    markKnown(TurboPower);
    ui.Label_TurboPowerValue->setText(parse.reading->label);
    ui.Slider_TurboBoost->setValue(parse.reading->sliderValue);
    readTurboPower = parse.reading->readTurboPower;
}

void CpuTuning::get3out()
{
    const auto reading = parseTurboTime(readAvailableOutput(3));
    if (!reading)
        return;
    markKnown(TurboTime);
    ui.Slider_TurboTime->setRange(0, reading->maximum);
    ui.Label_BoostTimeValue->setText(reading->label);
    ui.Slider_TurboTime->setValue(reading->value);
    readTurboTime = reading->value;
}

void CpuTuning::readCoreRatioRow(int cores)
{
    // Reads 4 ... 11 are the ratios for 1 ... 8 active cores.
    const CoreRatioParse parse = parseCoreRatio(readAvailableOutput(cores + 3), cores);
    if (parse.reading) {
        markKnown(CoreRatio1 + cores - 1);
        QSpinBox *spin = coreSpin(cores);
        spin->setRange(parse.reading->minimum, parse.reading->maximum);
        spin->setValue(parse.reading->value);
        readCoreRatio(cores) = parse.reading->value;
        return;
    }
    // A processor with fewer cores has no 5- or 7-core row and says so.
    if (!parse.invalidId || (cores != 5 && cores != 7))
        return;
    coreRowsMissing = true;
    hideCoreRows(cores);
    if (cores == 5) {
        for (int hidden = 5; hidden <= 8; ++hidden) {
            coreSpin(hidden)->setRange(0, 0);
            coreSpin(hidden)->setValue(0);
        }
    }
    // The 7- and 8-core boxes keep their ranges and values when only the 7-core row is missing.
    readCoreRatio(cores) = 0;
}

void CpuTuning::hideCoreRows(int fromCores)
{
    for (int cores = fromCores; cores <= 8; ++cores) {
        coreLabel(cores)->hide();
        coreSpin(cores)->hide();
    }
}

void CpuTuning::get4out()
{
    readCoreRatioRow(1);
}
void CpuTuning::get5out()
{
    readCoreRatioRow(2);
}
void CpuTuning::get6out()
{
    readCoreRatioRow(3);
}
void CpuTuning::get7out()
{
    readCoreRatioRow(4);
}
void CpuTuning::get8out()
{
    readCoreRatioRow(5);
}
void CpuTuning::get9out()
{
    readCoreRatioRow(6);
}
void CpuTuning::get10out()
{
    readCoreRatioRow(7);
}
void CpuTuning::get11out()
{
    readCoreRatioRow(8);
}
