// Windows the plug-in creates itself (modal dialogs and their message boxes) take the DLL's own
// manifest (resource id 2, common controls 6) for as long as an object of this class lives, so they
// are themed whatever the host process asked for. Property pages need nothing: they take the
// context of the sheet that the host creates.
#pragma once

#include <windows.h>

class PluginControlsScope {
public:
    PluginControlsScope();
    ~PluginControlsScope();
    PluginControlsScope(const PluginControlsScope&) = delete;
    PluginControlsScope& operator=(const PluginControlsScope&) = delete;

private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};
