// libFuzzer target for CommandTextToBytes. The text and the output live in heap blocks of exactly
// the sizes the callers use, so AddressSanitizer reports any read or write beyond them.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "settings/command_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) return 0;
    // The first two bytes choose the declared text size, from 0 to the whole buffer.
    const size_t textBytes = size - 2;
    const size_t declared = (static_cast<size_t>(data[0]) | static_cast<size_t>(data[1]) << 8) % (textBytes + 2);

    std::unique_ptr<char[]> text(new char[textBytes + 1]);
    memcpy(text.get(), data + 2, textBytes);
    text[textBytes] = '\0';
    std::unique_ptr<BYTE[]> bytes(new BYTE[kCommandTextMaxBytes]);
    memset(bytes.get(), 0, kCommandTextMaxBytes);

    DWORD count = 0xFFFFFFFF;
    const BOOL ok = CommandTextToBytes(text.get(), bytes.get(), static_cast<DWORD>(declared), 0, &count);
    if (count > kCommandTextMaxBytes) abort();
    if (declared == 0) {
        // No room for even a terminator: nothing is read.
        if (count != 0 || ok == FALSE) abort();
        return 0;
    }

    // Without brackets every character is its own byte.
    const size_t length = strlen(text.get());
    if (memchr(text.get(), '<', length) == nullptr) {
        const size_t expected = length < kCommandTextMaxBytes ? length : kCommandTextMaxBytes;
        if (count != expected) abort();
        if (memcmp(bytes.get(), text.get(), expected) != 0) abort();
        if ((ok != FALSE) != (length <= kCommandTextMaxBytes)) abort();
    }
    return 0;
}
