#include "oemui/log.h"

#include <strsafe.h>
#include <cstdarg>

#include "oemui/handles.h"

namespace logdetail {

void BuildLogDirectory(const WCHAR* windowsDir, WCHAR (&path)[260])
{
    // Only the drive ("C:"): the log lives on the system drive, not under the Windows directory.
    WCHAR drive[3] = {};
    if (windowsDir[0] != L'\0') {
        drive[0] = windowsDir[0];
        drive[1] = windowsDir[1];
    }
    StringCbCopyW(path, sizeof path, drive);
    StringCbCatW(path, sizeof path, L"\\temp\\");
    StringCbCatW(path, sizeof path, L"QVRPOS");
}

void AppendLogFileName(const SYSTEMTIME& now, WCHAR (&path)[260])
{
    WCHAR stamp[16];
    StringCbPrintfW(stamp, sizeof stamp, L"%02u%02u%02u%02u", now.wMonth, now.wDay, now.wHour, now.wMinute);
    StringCbCatW(path, sizeof path, L"\\");
    StringCbCatW(path, sizeof path, L"QVRPOS");
    StringCbCatW(path, sizeof path, L"_");
    StringCbCatW(path, sizeof path, stamp);
    StringCbCatW(path, sizeof path, L"_OEMUI.LOG");
}

void FormatLogLine(const SYSTEMTIME& now, const char* message, char (&line)[kLineBytes])
{
    // strsafe cuts an overlong line at 259 bytes and always terminates; such a line then has
    // no closing blank, CR and LF.
    StringCbPrintfA(line, sizeof line, "%02u/%02u_%02u:%02u:%02u: %s \r\n",
                    now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, message);
}

}  // namespace logdetail

void Log(const char* format, ...)
{
    const DWORD savedError = GetLastError();

    SYSTEMTIME now;
    GetLocalTime(&now);

    WCHAR windowsDir[260] = {};
    GetWindowsDirectoryW(windowsDir, ARRAYSIZE(windowsDir));

    WCHAR path[260];
    logdetail::BuildLogDirectory(windowsDir, path);
    // The parent "\temp" is deliberately not created: without it nothing is logged.
    CreateDirectoryW(path, nullptr);
    logdetail::AppendLogFileName(now, path);

    // No sharing: a second writer at the same moment fails to open and loses its line.
    ScopedFile file(CreateFileW(path, GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.valid()) {
        SetFilePointer(file.get(), 0, nullptr, FILE_END);

        char message[logdetail::kLineBytes] = {};
        va_list args;
        va_start(args, format);
        StringCbVPrintfA(message, sizeof message, format, args);   // cut at 259 bytes on overflow
        va_end(args);

        char line[logdetail::kLineBytes];
        logdetail::FormatLogLine(now, message, line);

        DWORD written = 0;
        WriteFile(file.get(), line, static_cast<DWORD>(lstrlenA(line)), &written, nullptr);
    }

    SetLastError(savedError);
}
