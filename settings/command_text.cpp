#include "settings/command_text.h"

namespace {

int HexValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

BOOL CommandTextToBytes(char* text, BYTE* bytes, DWORD textSize, DWORD /*reserved*/, DWORD* count)
{
    if (count != nullptr) *count = 0;
    if (text == nullptr || bytes == nullptr || count == nullptr) return FALSE;
    // No room even for a terminator: nothing to read.
    if (textSize == 0) return TRUE;
    text[textSize - 1] = '\0';

    DWORD stored = 0;
    bool inside = false;        // between "<" and ">"
    bool highNext = true;       // the next digit is a byte's high half
    for (const char* p = text; *p != '\0'; ++p) {
        const char c = *p;
        if (!inside) {
            if (c == '<') {
                inside = true;
                highNext = true;
                continue;
            }
            if (stored == kCommandTextMaxBytes) {
                *count = stored;
                return FALSE;
            }
            bytes[stored++] = static_cast<BYTE>(c);
            continue;
        }
        if (c == '>') {
            inside = false;
            continue;
        }
        const int digit = HexValue(c);
        if (digit < 0) continue;            // blanks, commas, a second "<": skipped
        if (highNext) {
            // The high half is parked in the next byte; it only counts once the low half follows.
            if (stored == kCommandTextMaxBytes) {
                *count = stored;
                return FALSE;
            }
            bytes[stored] = static_cast<BYTE>(digit << 4);
        } else {
            bytes[stored] = static_cast<BYTE>(bytes[stored] | digit);
            ++stored;
        }
        highNext = !highNext;
    }
    *count = stored;
    return TRUE;
}
