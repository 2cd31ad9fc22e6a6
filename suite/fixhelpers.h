#pragma once

#include "commandrunner.h"

// The laptop's small fix programs in the install folder, started at start-up, from the tweak
// boxes and after a resume.
namespace fixhelpers {

// "Libs\AuxSwitch.exe", hidden: panel brightness controls work again.
void startBrightnessFix(CommandRunner &commands);
// "Libs\InitHeadphone.exe" then "Libs\PhoneJack.exe": headphone jack detection.
void startHeadphoneHelpers(CommandRunner &commands, ShowMode mode);
// After a resume the helpers that still run are stale: end both, then start them shown.
void restartHeadphoneHelpers(CommandRunner &commands);

} // namespace fixhelpers
