#pragma once

#include "outcome.h"
#include "systree.h"

// A power mode's processor minimum and maximum, in percent of the highest frequency:
// intel_pstate's own percentages where that driver runs, otherwise every CPU's cpufreq limits.
class ProcessorLimits {
public:
    explicit ProcessorLimits(SysTree tree) : m_tree(std::move(tree)) {}

    Outcome read(int *minimum, int *maximum) const;
    Outcome setMinimum(int percent, int *readBack) const;
    Outcome setMaximum(int percent, int *readBack) const;

private:
    bool usesPstate() const;
    QStringList cpufreqFolders() const;
    Outcome setFrequencyShare(bool minimum, int percent) const;

    SysTree m_tree;
};
