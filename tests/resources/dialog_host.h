// Creating the plug-in's dialog templates outside a property sheet, one language at a time, and
// making the CJK page fonts available when the test runs under Wine.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace dialogs {

struct Language {
    LANGID id;
    const char* tag;
    bool cjk;
};
const std::vector<Language>& Languages();
const std::vector<WORD>& Templates();

// The template resource of `id` in exactly the language `lang` (no fallback), or null.
const DLGTEMPLATE* FindTemplate(HMODULE module, WORD id, LANGID lang);

// A top-level window to own or parent the created dialogs (property pages are child windows).
HWND HostWindow();

// Creates the dialog hidden, with a dialog procedure that does nothing. Null on failure.
HWND Create(HMODULE module, WORD id, LANGID lang, HWND parent);

// The CJK templates name the faces a Chinese, Japanese or Korean Windows has ("MS UI Gothic",
// "SimSun", "PMingLiU", "Gulim"). Wine has none of them; a Wine prefix gets them as substitutes
// for a CJK font installed on the machine. Substitutes are read when a process starts, so the
// first process writes them and runs the program again.
bool CjkFacesRender();
// Writes the substitutes; false when no CJK font is installed (or not under Wine).
bool SubstituteCjkFaces();
// Runs this program again with the same command line and returns its exit code.
int RunAgain();
// What main() does before anything else: returns -1 to go on, or the exit code to return.
int PrepareFonts();

}  // namespace dialogs
