// The console hooks beside a host that records what it is asked.
// Not tested: `statusText` without a host, where the pointer is used without a test.
#include "karstdio.h"
#include "failalloc.h"
#include "textprobe.h"
#include "testslot.h"

#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

namespace {

std::string expanded(const char *format, va_list arguments)
{
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#endif
    char text[200];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
}

std::string textOf(const karString &s)
{
    const char *const bytes = TextProbe::bytes(s);
    return bytes ? bytes : "(no buffer)";
}

// Writes each call as one line.
class RecordingHost : public karStdio {
public:
    karString GetFileNameWrite(const karString &a, const karString &b, const karString &c, const karString &d,
                               const karString &e, int flags) override
    {
        calls.push_back("file " + textOf(a) + ' ' + textOf(b) + ' ' + textOf(c) + ' ' + textOf(d) + ' ' + textOf(e) +
                        ' ' + std::to_string(flags));
        return karString("chosen.dxf");
    }
    void message(MsgType type, int level, const char *format, va_list arguments) override
    {
        calls.push_back("message " + std::to_string(type) + ' ' + std::to_string(level) + ' ' + format + ": " +
                        expanded(format, arguments));
    }
    void statusText(const char *format, va_list arguments) override
    {
        calls.push_back("status " + expanded(format, arguments));
    }
    void Fortschritt(int number) override { calls.push_back("progress " + std::to_string(number)); }
    void addTask(karTaskElem *) override {}
    void removeTask(karTaskElem *) override {}
    InterActAnswer interAction(InterActType type, InterActIcon icon, InterActDefault defaultButton, InterActModal modal,
                               InterActSonder sonder, karString section, karString caption, karString text,
                               va_list arguments) override
    {
        calls.push_back("dialog " + std::to_string(type) + ' ' + std::to_string(icon) + ' ' +
                        std::to_string(defaultButton) + ' ' + std::to_string(modal) + ' ' + std::to_string(sonder) +
                        ' ' + textOf(section) + '/' + textOf(caption) + ": " +
                        expanded(textOf(text).c_str(), arguments));
        return answer;
    }
    karString &localizeString(const char *section, const char *key, karString &out, long number) override
    {
        calls.push_back(std::string("string ") + section + ' ' + key + ' ' + textOf(out) + ' ' +
                        std::to_string(number));
        if (!givesOther) {
            out = "filled";
            return out;
        }
        return other;
    }

    std::vector<std::string> calls;
    InterActAnswer answer = InterActAnswer(42);
    bool givesOther = false;
    karString other{"other"};
};

class Console : public ::testing::Test {
protected:
    void SetUp() override { Stdio = &host; }
    void TearDown() override { Stdio = nullptr; }

    RecordingHost host;
    using Calls = std::vector<std::string>;
};

class ConsoleWithoutHost : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(Stdio, nullptr); }
};

InterActAnswer passOn(const char *text, ...)
{
    va_list arguments;
    va_start(arguments, text);
    const InterActAnswer answer =
        LocalizeInterActionV(InterActType(11), InterActIcon(12), InterActDefault(13), InterActModal(14),
                             InterActSonder(15), "section", "caption", text, arguments);
    va_end(arguments);
    return answer;
}

void passOnMessage(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    messageV(MsgType(9), -3, format, arguments);
    va_end(arguments);
}

void passOnDebug(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    debugFileWriteV(format, arguments);
    va_end(arguments);
}

} // namespace

TEST(Stdio, EnumerationsHaveTheirValues)
{
    EXPECT_EQ(MsgInfo, 1);
    EXPECT_EQ(MsgParam, 2);
    EXPECT_EQ(MsgWarning, 3);
    EXPECT_EQ(MsgError, 4);
    EXPECT_EQ(InterActIconError, 1);
    EXPECT_EQ(InterActIconWarning, 3);
    EXPECT_EQ(InterActIconInfo, 4);
    EXPECT_EQ(InterActTypeOK, 10);
    EXPECT_EQ(InterActAnswerNoHost, 100);
    EXPECT_EQ(sizeof(MsgType), sizeof(int));
}

TEST(Stdio, VirtualOperationsStandInTheirOrder)
{
    EXPECT_EQ(slotOf(&karStdio::GetFileNameWrite), 0);
    EXPECT_EQ(slotOf(&karStdio::message), 1);
    EXPECT_EQ(slotOf(&karStdio::statusText), 2);
    EXPECT_EQ(slotOf(&karStdio::Fortschritt), 3);
    EXPECT_EQ(slotOf(&karStdio::addTask), 4);
    EXPECT_EQ(slotOf(&karStdio::removeTask), 5);
    EXPECT_EQ(slotOf(&karStdio::interAction), 6);
    EXPECT_EQ(slotOf(&karStdio::localizeString), 7); // the destructor is the last
    static_assert(std::is_abstract<karStdio>::value && std::has_virtual_destructor<karStdio>::value, "");
    static_assert(sizeof(karStdio) == sizeof(void *), "no fields");
}

TEST_F(Console, MessagesKeepTheirOrderTypesLevelsAndArguments)
{
    infoText(7, "%d", 5);
    paramText(1, "%s-%s", "a", "b");
    warningText(2, "%5.2f", 1.5);
    errorText(3, "plain");
    message(MsgType(77), 8, "%c%d", 'x', -1);
    passOnMessage("%d %s", 6, "six");
    statusText("%d of %d", 3, 4);
    Fortschritt();
    EXPECT_EQ(host.calls, (Calls{"message 1 7 %d: 5", "message 2 1 %s-%s: a-b", "message 3 2 %5.2f:  1.50",
                                 "message 4 3 plain: plain", "message 77 8 %c%d: x-1", "message 9 -3 %d %s: 6 six",
                                 "status 3 of 4", "progress 0"}));
}

TEST_F(Console, LocalizedTextIsAssignedWhereverTheHostHasIt)
{
    karString out("before");
    EXPECT_EQ(&LocalizeString("section", "key", out, 12L), &out);
    EXPECT_TRUE(hasState(out, "filled", 6, 16));
    host.givesOther = true;
    EXPECT_EQ(&LocalizeString("s", "k", out, -1L), &out);
    EXPECT_TRUE(hasState(out, "other", 5, 16));
    EXPECT_TRUE(hasState(LocalizeString("s2", "k2", 3L), "other", 5, 16));
    host.givesOther = false;
    EXPECT_TRUE(hasState(LocalizeString("s3", "k3", 4L), "filled", 6, 16));
    EXPECT_EQ(host.calls, (Calls{"string section key before 12", "string s k filled -1", "string s2 k2  3",
                                 "string s3 k3  4"})); // the last two from an empty text
}

TEST_F(Console, AFileNameComesBackAsTheHostGivesIt)
{
    EXPECT_TRUE(hasState(GetFileNameWrite("a", "b", "c", "d", "e", 6), "chosen.dxf", 10, 24));
    EXPECT_EQ(host.calls, (Calls{"file a b c d e 6"}));
}

TEST_F(Console, DialogsPassEverythingThrough)
{
    EXPECT_EQ(LocalizeInterAction(InterActType(1), InterActIcon(2), InterActDefault(3), InterActModal(4),
                                  InterActSonder(5), "s", "c", "%d+%d", 6, 7),
              42);
    host.answer = InterActAnswer(-9);
    EXPECT_EQ(passOn("%s", "text"), -9);
    EXPECT_EQ(host.calls, (Calls{"dialog 1 2 3 4 5 s/c: 6+7", "dialog 11 12 13 14 15 section/caption: text"}));
}

TEST_F(Console, ShortFormsDifferInIconAndButton)
{
    EXPECT_EQ(LocalizeInterActionInfo(InterActType(20), "s", "c", "%d", 1), 42);
    EXPECT_EQ(LocalizeInterActionWarning(InterActType(21), "s", "c", "%d", 2), 42);
    EXPECT_EQ(LocalizeInterActionError(InterActType(22), "s", "c", "%d", 3), 42);
    EXPECT_EQ(LocalizeInterActionInfoOK("s", "c", "%d", 4), 42);
    EXPECT_EQ(LocalizeInterActionWarningOK("s", "c", "%d", 5), 42);
    EXPECT_EQ(LocalizeInterActionErrorOK("s", "c", "%d", 6), 42);
    EXPECT_EQ(host.calls, (Calls{"dialog 20 4 1 1 1 s/c: 1", "dialog 21 3 1 1 1 s/c: 2", "dialog 22 1 1 1 1 s/c: 3",
                                 "dialog 10 4 1 1 1 s/c: 4", "dialog 10 3 1 1 1 s/c: 5", "dialog 10 1 1 1 1 s/c: 6"}));
}

TEST_F(Console, NullTextsOfADialogReachTheHostEmpty)
{
    LocalizeInterActionErrorOK(nullptr, nullptr, nullptr);
    EXPECT_EQ(host.calls, (Calls{"dialog 10 1 1 1 1 /: "}));
}

TEST_F(Console, TheDongleMessageIsAnErrorWithTheCode)
{
    showDongleMessage(errorCodesKARTORY(-33), true);
    showDongleMessage(KAR_ERROR_NO_METHOD, false);
    EXPECT_EQ(host.calls,
              (Calls{"dialog 10 1 1 1 1 Dongle/Copy protection: The copy protection reports failure -33.",
                     "dialog 10 1 1 1 1 Dongle/Copy protection: The copy protection reports failure -251."}));
}

TEST_F(Console, EachCallGoesToTheHostOfTheMoment)
{
    RecordingHost other;
    infoText(1, "a");
    Stdio = &other;
    infoText(2, "b");
    Stdio = nullptr;
    infoText(3, "c");
    Stdio = &host;
    infoText(4, "d");
    EXPECT_EQ(host.calls, (Calls{"message 1 1 a: a", "message 1 4 d: d"}));
    EXPECT_EQ(other.calls, (Calls{"message 1 2 b: b"}));
}

TEST_F(Console, TextsWithoutMemoryReachTheHostWithoutABuffer)
{
    host.givesOther = true;
    const karString name("n");
    {
        const AllAllocationsFail failing;
        EXPECT_EQ(LocalizeInterActionErrorOK("s", "c", "t"), 42);
        EXPECT_EQ(LocalizeString("s", "k", 1L).isNull(), 1);
        EXPECT_EQ(GetFileNameWrite(name, name, name, name, name, 1).isNull(), 1);
    }
    EXPECT_EQ(host.calls, (Calls{"dialog 10 1 1 1 1 (no buffer)/(no buffer): (no buffer)", "string s k (no buffer) 1",
                                 "file n n n n n 1"}));
}

TEST_F(Console, DiagnosisSaysNothing)
{
    debugErrorText(0, "%d", 1);
    debugInfoText(0, "%d", 1);
    debugWarningText(0, "%d", 1);
    debugInfoTimer(0, "%d", 1);
    debugErrorFile("%d", 1);
    debugInfoFile("%d", 1);
    debugWarningFile("%d", 1);
    passOnDebug("%d", 1);
    debugStartTimer(1);
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(ConsoleWithoutHost, MessagesAreQuiet)
{
    errorText(1, "x");
    infoText(1, "%d", 5);
    paramText(1, "x");
    warningText(1, "x");
    message(MsgError, 1, "x");
    passOnMessage("x");
    Fortschritt();
    showDongleMessage(KAR_ERROR_NO_METHOD, true);
}

TEST_F(ConsoleWithoutHost, TextsFallBack)
{
    karString out("before");
    EXPECT_EQ(&LocalizeString("a", "b", out, 0L), &out);
    EXPECT_TRUE(hasState(out, "before", 6, 16));
    EXPECT_TRUE(hasState(LocalizeString("a", "b", 0L), "", 0, 16));
    EXPECT_TRUE(hasState(GetFileNameWrite("a", "b", "third", "d", "e", 1), "third", 5, 16));
    EXPECT_TRUE(hasState(GetFileNameWrite("a", "b", "seventh", "d", "e", 1), "seventh", 7, 16)); // extra 8
}

TEST_F(ConsoleWithoutHost, TextsWithoutMemoryAreEmpty)
{
    const karString third("third");
    const AllAllocationsFail failing;
    EXPECT_EQ(LocalizeString("a", "b", 0L).isNull(), 1);
    EXPECT_EQ(GetFileNameWrite(third, third, third, third, third, 1).isNull(), 1);
}

TEST_F(ConsoleWithoutHost, DialogsAnswerAHundred)
{
    EXPECT_EQ(LocalizeInterActionErrorOK("s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterActionWarningOK("s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterActionInfoOK("s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterActionError(InterActType(1), "s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterActionWarning(InterActType(1), "s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterActionInfo(InterActType(1), "s", "c", "t"), 100);
    EXPECT_EQ(LocalizeInterAction(InterActType(1), InterActIcon(2), InterActDefault(3), InterActModal(4),
                                  InterActSonder(5), "s", "c", "t"),
              100);
    EXPECT_EQ(passOn("t"), 100);
}
