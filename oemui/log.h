// Diagnostic log: one plain text file per minute under <system drive>\temp\QVRPOS.
#pragma once

#include <windows.h>

// printf-style in the Windows manner; wide arguments are passed as %S. The compiler checks every
// format against its arguments, so formats are literals at the call sites. Never changes the
// caller's last error, never reports a failure: a line that cannot be written is dropped.
void Log(const char* format, ...) __attribute__((format(ms_printf, 1, 2)));

// The thread's last error as the "%d" of a log line prints it.
inline int LastErrorCode() { return static_cast<int>(GetLastError()); }

// Pure pieces of the log, kept apart from the file system so they can be checked on their own.
namespace logdetail {
constexpr size_t kLineBytes = 260;   // message and line buffers; at most 259 characters are kept
// "<drive>\temp\QVRPOS" from the Windows directory (only its drive letter and colon are used).
void BuildLogDirectory(const WCHAR* windowsDir, WCHAR (&path)[260]);
// Appends "\QVRPOS_<MMDDhhmm>_OEMUI.LOG" to the directory; pieces that do not fit are cut.
void AppendLogFileName(const SYSTEMTIME& now, WCHAR (&path)[260]);
// "MM/DD_hh:mm:ss: <message> \r\n", cut at 259 bytes.
void FormatLogLine(const SYSTEMTIME& now, const char* message, char (&line)[kLineBytes]);
}

// Writes "<start>" now and "<end>" when it goes out of scope, so every return of a
// procedure is followed by its END line.
class ScopedLog {
public:
    ScopedLog(const char* startText, const char* endText) : endText_(endText) { Log("%s", startText); }
    ~ScopedLog() { Log("%s", endText_); }
    ScopedLog(const ScopedLog&) = delete;
    ScopedLog& operator=(const ScopedLog&) = delete;

private:
    const char* endText_;
};
