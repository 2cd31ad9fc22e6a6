#pragma once

#include <QString>

// Texts of the "NVIDIA GPU Info" tab for the first GPU's figures.
QString gpuTemperatureText(int celsius); // "65ºC"
QString gpuClockText(int mhz);           // "1500 Mhz"
// The memory-clock label reads "Disabled" for a running GPU: kept as the tab always showed it.
QString gpuMemoryClockText(int mhz);
QString gpuPstateText(int pstate); // "P0"
