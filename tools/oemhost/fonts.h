// The CJK page templates name the faces a Chinese, Japanese or Korean Windows has ("MS UI Gothic",
// "SimSun", "PMingLiU", "Gulim"). Wine has none of them; a Wine prefix gets them as substitutes for
// a CJK font installed on the machine. Substitutes are read when a process starts, so whoever writes
// them must start a new process before drawing.
#pragma once

#include <windows.h>

#include <string>

namespace oemhost {

// True when the CJK faces already draw Japanese and Korean text.
bool CjkFacesRender();
// Writes the substitutes, and pins the Western dialog faces to what they resolve to now (Wine
// would otherwise link its missing Tahoma to the CJK font, which lacks letters such as ő and ą).
// False when no CJK font is installed.
bool SubstituteCjkFaces();

}  // namespace oemhost
