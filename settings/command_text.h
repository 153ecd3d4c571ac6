// Command text notation: plain characters stand for their own byte, bytes are written in
// hexadecimal inside angle brackets ("ESC J 0" is "<1B4A00>"). Shared by the configuration
// import and the Document settings page.
#pragma once

#ifdef _WIN32
#include <windows.h>
#else
// Built natively for the fuzzer: only the few Windows types the parser uses.
#include <cstdint>
typedef unsigned char BYTE;
typedef uint32_t DWORD;
typedef int BOOL;
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#endif

constexpr DWORD kCommandTextMaxBytes = 256;

// Decodes `text` (terminated here at textSize - 1) into `bytes`, which must have room for
// kCommandTextMaxBytes bytes. `*count` receives the number of bytes produced. FALSE when the
// text would give more than 256 bytes (the first 256 are kept) or when an argument is missing.
// A lone digit before ">" leaves its value times 16 in the byte after the last counted one,
// without counting it. `reserved` is not used.
BOOL CommandTextToBytes(char* text, BYTE* bytes, DWORD textSize, DWORD reserved, DWORD* count);
