// The command text notation, as the configuration import and the Document settings page use it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/command_text.h"

namespace {

constexpr DWORD kWholeText = 0xFFFFFFFF;

struct Decoded {
    BOOL ok;
    std::vector<BYTE> bytes;       // the counted bytes
    BYTE after;                    // the byte after the last counted one
};

Decoded Decode(std::string text, DWORD textSize = kWholeText)
{
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    if (textSize == kWholeText) textSize = static_cast<DWORD>(buffer.size());
    BYTE out[257];
    memset(out, 0xCC, sizeof out);    // out[256] is a guard: it must never change
    DWORD count = 0xDEAD;
    const BOOL ok = CommandTextToBytes(buffer.data(), out, textSize, 0, &count);
    EXPECT_EQ(0xCC, out[256]) << "written past 256 bytes";
    EXPECT_LE(count, 256u);
    Decoded d{ ok, std::vector<BYTE>(out, out + (count <= 256 ? count : 256)), count < 256 ? out[count] : BYTE(0xCC) };
    return d;
}

std::vector<BYTE> B(std::initializer_list<int> list)
{
    std::vector<BYTE> v;
    for (int b : list) v.push_back(static_cast<BYTE>(b));
    return v;
}

}  // namespace

TEST(CommandText, Notation)
{
    const struct { const char* text; std::vector<BYTE> bytes; } rows[] = {
        { "", {} },
        { "ABC<1B 40>", B({ 0x41, 0x42, 0x43, 0x1B, 0x40 }) },
        { "<1B4A00>", B({ 0x1B, 0x4A, 0x00 }) },
        { "<1b 61 01>", B({ 0x1B, 0x61, 0x01 }) },
        { "<aB,Cd;eF>", B({ 0xAB, 0xCD, 0xEF }) },
        { "<1B 40", B({ 0x1B, 0x40 }) },                         // left open at the end
        { "A>B", B({ 'A', '>', 'B' }) },                         // '>' outside is a character
        { "<1<B>", B({ 0x1B }) },                                // a second '<' inside is skipped
        { "<1 B>", B({ 0x1B }) },                                // a blank between the halves too
        { "<xyz>", {} },                                         // nothing but non-digits
        { "<>A<>", B({ 'A' }) },
        { " <0D> <0A> ", B({ ' ', 0x0D, ' ', 0x0A, ' ' }) },
        { "<G1H2>", B({ 0x12 }) },
        { "\x80\xFF", B({ 0x80, 0xFF }) },                       // high ANSI bytes stay as they are
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const Decoded d = Decode(row.text);
        EXPECT_TRUE(d.ok);
        EXPECT_EQ(row.bytes, d.bytes);
    }
}

TEST(CommandText, LoneDigitIsParkedButNotCounted)
{
    const struct { const char* text; std::vector<BYTE> bytes; BYTE after; } rows[] = {
        { "<4>", {}, 0x40 },
        { "<1B 4>", B({ 0x1B }), 0x40 },
        { "<1B 4>C", B({ 0x1B, 'C' }), 0xCC },                  // the next character overwrites it
        { "<1B 4><5>", B({ 0x1B }), 0x50 },                     // the next '<' expects a high digit again
        { "<1B 4><56>", B({ 0x1B, 0x56 }), 0xCC },
        { "<f", {}, 0xF0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const Decoded d = Decode(row.text);
        EXPECT_TRUE(d.ok);
        EXPECT_EQ(row.bytes, d.bytes);
        EXPECT_EQ(row.after, d.after);
    }
}

TEST(CommandText, AtMost256Bytes)
{
    std::string hex256 = "<";
    for (int i = 0; i < 256; ++i) hex256 += "7f";
    const struct { const char* name; std::string text; BOOL ok; size_t count; } rows[] = {
        { "256 plain characters", std::string(256, 'a'), TRUE, 256 },
        { "257 plain characters", std::string(257, 'a'), FALSE, 256 },
        { "256 hexadecimal bytes", hex256 + ">", TRUE, 256 },
        { "256 bytes and a lone digit", hex256 + "7>", FALSE, 256 },
        { "256 bytes and a character", hex256 + ">z", FALSE, 256 },
        { "256 bytes, then brackets only", hex256 + "><><  >", TRUE, 256 },
        { "very long", std::string(100000, 'b'), FALSE, 256 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Decoded d = Decode(row.text);
        EXPECT_EQ(row.ok, d.ok);
        EXPECT_EQ(row.count, d.bytes.size());
    }
}

TEST(CommandText, TextIsCutAtItsSize)
{
    const struct { const char* text; DWORD size; std::vector<BYTE> bytes; } rows[] = {
        { "ABCDEF", 4, B({ 'A', 'B', 'C' }) },
        { "<1B40>", 4, B({ 0x1B }) },
        { "<1B40>", 1, {} },
        { "<1B40>", 0, {} },        // no room even for a terminator: nothing is read or written
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.text << " in " << row.size);
        const Decoded d = Decode(row.text, row.size);
        EXPECT_TRUE(d.ok);
        EXPECT_EQ(row.bytes, d.bytes);
    }
}

TEST(CommandText, MissingArguments)
{
    char text[] = "AB";
    BYTE out[256];
    DWORD count = 77;
    EXPECT_FALSE(CommandTextToBytes(nullptr, out, 3, 0, &count));
    EXPECT_EQ(0u, count);
    EXPECT_FALSE(CommandTextToBytes(text, nullptr, 3, 0, &count));
    EXPECT_FALSE(CommandTextToBytes(text, out, 3, 0, nullptr));
}
