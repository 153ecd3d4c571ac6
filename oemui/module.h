// The plug-in's own module: everything below the COM entry that needs the DLL's instance (dialog
// templates, the manifest) takes it from here.
#pragma once

#include <windows.h>

extern HINSTANCE ModuleInstance;     // stored on process attach; pages load their templates from it
