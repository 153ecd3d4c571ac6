#include "settings/dialog_info.h"

#include <cstring>
#include <initializer_list>

void SetDefaultPreferences(BYTE (&byteValue)[kPreferenceCount])
{
    memset(byteValue, 0, sizeof byteValue);
    for (unsigned i : { pref::Drawer1PulseAfter, pref::Drawer2PulseAfter, pref::Drawer1PulseBefore,
                        pref::Drawer2PulseBefore, pref::BeepBeforeDuration, pref::BeepAfterDuration })
        byteValue[i] = 25;                    // 50 ms
    for (unsigned i : { pref::PaperCut, pref::Copies, pref::NvImageCommand, pref::Reserved36 })
        byteValue[i] = 1;
    byteValue[pref::Brightness] = 10;
    byteValue[pref::ColorThreshold] = 128;
}
