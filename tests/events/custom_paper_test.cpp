// Custom paper import on printer initialisation: the paper file's lines become forms of the
// print server (held by the test's forms store, since Wine keeps no user forms).
#include <gtest/gtest.h>

#include <string>

#include "event_bench.h"

using namespace events_bench;

namespace {

class CustomPaper : public EventTest {
protected:
    // A queue of model QM-101 with form identifier "[R80]", initialised with `paperFile`.
    void Import(const std::string& paperFile, const std::wstring& model = L"ORLIVEX QM-101",
                const std::wstring& media = L"Roll 80 x 297 mm[R80]")
    {
        if (printer_.empty()) printer_ = bench::NewTestPrinter(L"paper", model, media);
        ASSERT_FALSE(printer_.empty());
        WritePaperFile(L"QM-101", paperFile);
        EXPECT_EQ(S_OK, PrinterEvent(printer_, kInitialize));
    }
    static int Count(const std::string& text)
    {
        const std::string log = bench::ReadLog();
        int n = 0;
        for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++n;
        return n;
    }
    std::wstring printer_;
};

}  // namespace

TEST_F(CustomPaper, HeadingOnlyAddsNothing)
{
    Import("Paper name,Width(mm),Height(mm)\r\n");
    EXPECT_TRUE(forms::UserForms().empty());
    EXPECT_EQ(0, forms::Counts().add);
    EXPECT_EQ(1, Count("SetCustomPaper :FirstLine Skip"));
    EXPECT_EQ(0, Count("SetCustomPaper : paper_name :"));
}

TEST_F(CustomPaper, LinesBecomeForms)
{
    const struct { const char* line; const WCHAR* form; LONG cx, cy; } rows[] = {
        { "Ticket,80,297", L"Ticket[R80]", 80000, 297000 },
        { "Receipt 58,58,210", L"Receipt 58[R80]", 58000, 210000 },
        { " Blank lead , 80 ,100 trailing words", L" Blank lead [R80]", 80000, 100000 },
        { "Fraction,80.5,99.9", L"Fraction[R80]", 80000, 99000 },
        { "Tabbed,72,\t150", L"Tabbed[R80]", 72000, 150000 },
    };
    std::string file = "heading\r\n";
    for (const auto& row : rows) file += std::string(row.line) + "\r\n";
    Import(file);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto form = forms::Find(row.form);
        ASSERT_TRUE(form.has_value());
        EXPECT_EQ(static_cast<DWORD>(FORM_USER), form->flags);
        EXPECT_EQ(row.cx, form->size.cx);
        EXPECT_EQ(row.cy, form->size.cy);
        EXPECT_EQ(0, form->area.left);
        EXPECT_EQ(0, form->area.top);
        EXPECT_EQ(row.cx, form->area.right);
        EXPECT_EQ(row.cy, form->area.bottom);
    }
    EXPECT_EQ(std::size(rows), forms::UserForms().size());
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_name :Ticket"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_name + formid:Ticket[R80]"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_width_str :80.5"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_width :80000"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_height :297000"));
    EXPECT_EQ(static_cast<int>(std::size(rows)), Count("SetCustomPaper :AddForm Success "));
    const std::wstring path = PaperPath(L"QM-101");
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_info_file path = " + std::string(path.begin(), path.end())));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : before wszModelName = ORLIVEX QM-101"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : after wszModelName = QM-101"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : before wszFormId = Roll 80 x 297 mm[R80]"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : after wszFormId = [R80]"));
}

TEST_F(CustomPaper, BadLinesAreSkipped)
{
    const std::string longLine(10000, 'L');
    Import("heading\r\n"
           "Ticket,80\r\n"                       // two fields
           "\r\n"                                // empty
           ",80,297\r\n"                         // no name
           "NoWidth,,297\r\n"                    // empty width
           "NoHeight,80,\r\n"                    // nothing after the second comma
           "Negative,-80,297\r\n"
           "Enormous,999999999999999,297\r\n"
           "Endless,99999999999999999999,297\r\n"   // more than 15 characters: the scan fails
           "TooBig,2147484,297\r\n"              // 2147484000 does not fit a form
           "Largest,2147483,297\r\n"             // 2147483000 does
           "Words,eighty,297\r\n"                // no digits: 0, which no form accepts
           + longLine + ",80,297\r\n" +
           "After,80,297\r\n");
    EXPECT_EQ(6 + 39, Count("SetCustomPaper :swscanf Fail (")) << "six bad lines and 39 pieces of the long one";
    EXPECT_TRUE(forms::Find(std::wstring(10000 - 39 * 255, L'L') + L"[R80]").has_value())
        << "the long line's last piece is a line of its own";
    EXPECT_EQ(3, Count("SetCustomPaper : paper size out of range, line skipped"));
    EXPECT_FALSE(forms::Find(L"Negative[R80]").has_value());
    EXPECT_FALSE(forms::Find(L"Enormous[R80]").has_value());
    EXPECT_FALSE(forms::Find(L"TooBig[R80]").has_value());
    const auto largest = forms::Find(L"Largest[R80]");
    ASSERT_TRUE(largest.has_value());
    EXPECT_EQ(2147483000, largest->size.cx);
    EXPECT_FALSE(forms::Find(L"Words[R80]").has_value());
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :AddForm returned FALSE, (1903)"));
    EXPECT_TRUE(forms::Find(L"After[R80]").has_value()) << "lines after the bad ones are still read";
    for (const auto& form : forms::UserForms()) EXPECT_LE(form.name.size(), 63u);
}

TEST_F(CustomPaper, LongLinesAreReadInPieces)
{
    // 300 characters: the first 255 are one line (no commas: the scan fails), the rest another.
    std::string line(255, 'p');
    line += "Tail,60,100";
    Import("heading\r\n" + line + "\r\n");
    EXPECT_TRUE(forms::Find(L"Tail[R80]").has_value());
    EXPECT_EQ(1, Count("SetCustomPaper :swscanf Fail ("));

    // A heading longer than 255 characters: its rest is read as a line of its own.
    forms::Reset();
    Import(std::string(255, 'h') + "Rest,70,70\r\nNext,50,50\r\n");
    EXPECT_TRUE(forms::Find(L"Rest[R80]").has_value());
    EXPECT_TRUE(forms::Find(L"Next[R80]").has_value());
}

TEST_F(CustomPaper, NameLengthLeavesRoomForTheIdentifier)
{
    const std::string name63(63, 'n'), name60(60, 'm'), name64(64, 'o');
    Import("heading\r\n" + name63 + ",80,297\r\n" + name60 + ",80,297\r\n" + name64 + ",80,297\r\n");
    EXPECT_TRUE(forms::Find(std::wstring(63, L'n')).has_value()) << "a 63-character name gets no identifier";
    EXPECT_TRUE(forms::Find(std::wstring(60, L'm') + L"[R8").has_value()) << "the whole name is cut at 63";
    EXPECT_EQ(2u, forms::UserForms().size()) << "a 64-character name fails the scan";
}

TEST_F(CustomPaper, RepeatedImportReplacesTheForm)
{
    Import("heading\r\nTicket,80,297\r\n");
    forms::Reset();
    forms::Preload({ L"Ticket[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
    bench::ClearLog();
    Import("heading\r\nTicket,80,200\r\n");
    const auto form = forms::Find(L"Ticket[R80]");
    ASSERT_TRUE(form.has_value());
    EXPECT_EQ(200000, form->size.cy);
    EXPECT_EQ(1u, forms::UserForms().size());
    EXPECT_EQ(1, forms::Counts().set);
    EXPECT_EQ(0, forms::Counts().remove);
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :AddForm returned FALSE, (80)"));
    EXPECT_TRUE(bench::LogContains("SearchEnumPaperCompare :Search Enum Paper Form"));
    EXPECT_TRUE(bench::LogContains("SearchEnumPaperCompare : Found Paper Form ."));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : Repalce Paper Form."));
}

TEST_F(CustomPaper, ReplaceEvenWhenTheNameDiffersInCase)
{
    // The store refuses the add (names are the same without regard to case), the exact search
    // finds nothing, and the form is still replaced.
    forms::Preload({ L"TICKET[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
    Import("heading\r\nTicket,80,150\r\n");
    EXPECT_FALSE(bench::LogContains("SearchEnumPaperCompare : Found Paper Form ."));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : Repalce Paper Form."));
    EXPECT_EQ(150000, forms::Find(L"Ticket[R80]")->size.cy);
}

TEST_F(CustomPaper, FailedListingLeavesTheFormAlone)
{
    forms::Preload({ L"Ticket[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
    forms::FailEnum(1, ERROR_NOT_ENOUGH_MEMORY);
    Import("heading\r\nTicket,80,150\r\n");
    EXPECT_TRUE(bench::LogContains("SearchEnumPaperCompare : EnumForms failed. (8)"));
    EXPECT_FALSE(bench::LogContains("SetCustomPaper : Repalce Paper Form."));
    EXPECT_EQ(0, forms::Counts().set);
    EXPECT_EQ(297000, forms::Find(L"Ticket[R80]")->size.cy);
}

TEST_F(CustomPaper, FailedSetDeletesAndAddsAgain)
{
    forms::Preload({ L"Ticket[R80]", { 80000, 297000 }, { 0, 0, 80000, 297000 }, FORM_USER });
    forms::FailSet(1, ERROR_ACCESS_DENIED);
    Import("heading\r\nTicket,80,150\r\n");
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :SetForm returned FALSE, (5)"));
    EXPECT_EQ(1, forms::Counts().remove);
    EXPECT_EQ(2, forms::Counts().add);
    EXPECT_EQ(150000, forms::Find(L"Ticket[R80]")->size.cy);
    EXPECT_FALSE(bench::LogContains("SetCustomPaper :DeleteForm returned FALSE"));

    // A built-in form of that name can be neither changed nor deleted: every failure is logged.
    bench::ClearLog();
    const auto builtin = forms::All().front();
    ASSERT_EQ(static_cast<DWORD>(FORM_BUILTIN), builtin.flags);
    WritePaperFile(L"QM-101", "heading\r\n" + std::string(builtin.name.begin(), builtin.name.end()) + ",80,150\r\n");
    PrinterEvent(printer_, kInitialize);   // the identifier is appended: no clash; use an empty one instead
    const std::wstring plain = bench::NewTestPrinter(L"plainid", L"ORLIVEX QM-101", L"");
    ASSERT_FALSE(plain.empty());
    bench::ClearLog();
    PrinterEvent(plain, kInitialize);
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :AddForm returned FALSE, (80)"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :SetForm returned FALSE, (87)"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :DeleteForm returned FALSE, (87)"));
    EXPECT_EQ(2, Count("SetCustomPaper :AddForm returned FALSE, (80)"));
}

TEST_F(CustomPaper, MissingValuesAndFiles)
{
    // No "Model": the file is looked for directly in the Windows directory.
    const std::wstring printer = bench::NewTestPrinter(L"nomodel", L"", L"Roll 80 x 297 mm[R80]");
    ASSERT_FALSE(printer.empty());
    const std::wstring direct = bench::WindowsDir() + L"\\\\AddCustomPaper.txt";
    ASSERT_TRUE(bench::WriteTextFile(bench::WindowsDir() + L"\\AddCustomPaper.txt", "heading\r\nLoose,50,50\r\n"));
    PrinterEvent(printer, kInitialize);
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : paper_info_file path = " + std::string(direct.begin(), direct.end())));
    EXPECT_FALSE(bench::LogContains("SetCustomPaper : before wszModelName"));
    EXPECT_TRUE(bench::LogContains("SetCustomPaper : after wszModelName = \r\n") ||
                bench::LogContains("SetCustomPaper : after wszModelName =  \r\n"));
    EXPECT_TRUE(forms::Find(L"Loose[R80]").has_value());
    DeleteFileW((bench::WindowsDir() + L"\\AddCustomPaper.txt").c_str());

    // No paper file for the model.
    bench::ClearLog();
    const std::wstring other = bench::NewTestPrinter(L"nofile", L"ORLIVEX QM-999");
    ASSERT_FALSE(other.empty());
    PrinterEvent(other, kInitialize);
    EXPECT_TRUE(bench::LogContains("SetCustomPaper :File Open Fail (3)") ||
                bench::LogContains("SetCustomPaper :File Open Fail (2)"));
    // The import has no closing line of its own.
    EXPECT_FALSE(bench::LogContains("SetCustomPaper : END"));
}
