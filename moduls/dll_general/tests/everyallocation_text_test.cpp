// Texts, lists of texts and what makes texts of other things, with each allocation failing in turn.
#include "karcolor.h"
#include "karstdio.h"
#include "karstring.h"
#include "karstringlist.h"
#include "vcolor.h"

#include "everyallocation.h"

namespace {

const char *const twenty = "0123456789abcdefghij";
const char *const longer = "and a text that is too long for it"; // 34 characters, of which a string makes a size of 48
const std::string twoThousand(2000, 'x');

// -- Scenarios: a text that an operation makes, one that it changes, one that it makes of another

#define NEW_TEXT(...)                                                                                                  \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        span.begin();                                                                                                  \
        const auto s = karString(__VA_ARGS__);                                                                         \
        span.end();                                                                                                    \
        return read(s);                                                                                                \
    }
#define ON_TEXT(...)                                                                                                   \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        karString s(twenty, 3u); /* room for 23 characters */                                                          \
        span.begin();                                                                                                  \
        __VA_ARGS__;                                                                                                   \
        span.end();                                                                                                    \
        return read(s);                                                                                                \
    }
#define TEXT_OF(text, ...)                                                                                             \
    [](Span &span) {                                                                                                   \
        karString s(text);                                                                                             \
        span.begin();                                                                                                  \
        const karString result = __VA_ARGS__;                                                                          \
        span.end();                                                                                                    \
        return read(result) + " of " + read(s);                                                                        \
    }

const Operation makingTexts[] = {
    {"Empty", NEW_TEXT(), "'' 0/16", {"none 0/16"}, {}},
    {"Reserve", NEW_TEXT(20u), "'' 0/24", {"none 0/24"}, {}},
    {"Repeated", NEW_TEXT('x', 3u, 8u), "'xxx' 3/16", {"none 3/16"}, {}},
    {"Integer", NEW_TEXT(255, 16), "'ff' 2/8", {"none 2/8"}, {}},
    {"LongInteger", NEW_TEXT(255L, 16), "'ff' 2/8", {"none 2/8"}, {}},
    {"Real", NEW_TEXT(1.5, 2, false), "'1.50' 4/8", {"none 4/8"}, {}},
    {"TwoTexts", NEW_TEXT("abc", "def"), "'abcdef' 6/8", {"none 6/8"}, {}},
    {"PlainText", NEW_TEXT("abc"), "'abc' 3/16", {"none 3/16"}, {}},
    {"Copy", NEW_TEXT(source, 0u), "'and a text that is too long for it' 34/40", {"none 34/40"}, {}},
    {"Large", NEW_TEXT(twoThousand.c_str()), "2000 characters 2000/2016", {"none 2000/2016"}, {}, Operation::large},
};
INSTANTIATE_TEST_SUITE_P(MakingTexts, EveryAllocation, ::testing::ValuesIn(makingTexts), nameOf);

const Operation changingTexts[] = {
    {"Assign", ON_TEXT(s = source), "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"AssignPlain", ON_TEXT(s = longer), "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"Resize", ON_TEXT(s.reSize(40)), "'0123456789abcdefghij' 20/48", {"none 20/48"}, {}},
    {"Append",
     ON_TEXT(s &= source),
     "'0123456789abcdefghijand a text that is too long for it' 54/56",
     {"none 54/56"},
     {}},
    {"AppendPlain",
     ON_TEXT(s &= longer),
     "'0123456789abcdefghijand a text that is too long for it' 54/56",
     {"none 54/56"},
     {}},
    {"AppendCharacters",
     ON_TEXT((((s &= 'w') &= 'x') &= 'y') &= 'z'),
     "'0123456789abcdefghijwxyz' 24/32",
     {"none 24/32"},
     {}},
    {"BoundedCopy", ON_TEXT(s.ncopy(longer, 30)), "'and a text that is too long fo' 30/32", {"none 30/32"}, {}},
    {"CopyOfPart", ON_TEXT(s.ncopy(longer, 2, -1)), "'d a text that is too long for it' 32/40", {"none 32/40"}, {}},
    {"CopyOfItself", ON_TEXT(s.ncopy(TextProbe::bytes(s), 0, 29)), "'0123456789abcdefghij' 30/32", {"none 30/32"}, {}},
    {"BoundedAppend", ON_TEXT(s.ncat(longer, 6)), "'0123456789abcdefghijand a ' 26/32", {"none 26/32"}, {}},
    {"Format", // room for 32 + 2 characters
     ON_TEXT(s.format("%d and", 7)),
     "'7 and' 5/40",
     {"none 5/40"},
     {}},
    {"FormatBeyondTheEstimate", // which doesn't know the second letter
     ON_TEXT(s.format("%40lld", 7ll)),
     "'                                       7' 40/48",
     {"none 40/48"},
     {}},
    {"FormatOfALongText", // is printed apart first
     ON_TEXT(s.format("%s", twoThousand.c_str())),
     "2000 characters 2000/2008",
     {"'' 2000/2008", "none 2000/2008"},
     {"none 2000/2008", "none 2000/2008"},
     Operation::large},
    {"AssignInteger", ON_TEXT(s.int2s(255, 16)), "'ff' 2/24", {"'' 2/24"}, {}},
    {"AssignReal", ON_TEXT(s.double2s(1.5, 2, false)), "'1.50' 4/24", {"'' 4/24"}, {}},
    {"Time", ON_TEXT(s.time(3661)), "'01:01:01' 8/104", {"none 8/104"}, {}},
    {"ColourName", ON_TEXT(vColorName::Conv(0x030201, s, 0)), "'RGB(1,2,3)' 10/104", {"none 10/104"}, {}},
};
INSTANTIATE_TEST_SUITE_P(ChangingTexts, EveryAllocation, ::testing::ValuesIn(changingTexts), nameOf);

const Operation textsOfOthers[] = {
    {"Joined", TEXT_OF("ab,c", s &s), "'ab,cab,c' 8/24 of 'ab,c' 4/16", {"none 8/24 of 'ab,c' 4/16"}, {}},
    {"JoinedPlain", TEXT_OF("ab,c", s & ",d"), "'ab,c,d' 6/16 of 'ab,c' 4/16", {"none 6/16 of 'ab,c' 4/16"}, {}},
    {"NotIn", TEXT_OF("ab,c", s.notIn(",")), "'abc' 3/16 of 'ab,c' 4/16", {"none 0/16 of 'ab,c' 4/16"}, {}},
    {"NotInOfALongText",
     TEXT_OF(twenty, s.notIn("0")),
     "'123456789abcdefghij' 19/24 of '0123456789abcdefghij' 20/32",
     {"'123456789abcdefghij' 19/24 of '0123456789abcdefghij' 20/32", "none 0/24 of '0123456789abcdefghij' 20/32"},
     {"none 0/24 of '0123456789abcdefghij' 20/32", "none 0/24 of '0123456789abcdefghij' 20/32"}},
    {"Masked", TEXT_OF("ab,c", s.maskchar(',', 2)), "'ab\\\\,c' 6/16 of 'ab,c' 4/16", {"none 0/16 of 'ab,c' 4/16"}, {}},
    {"MaskedByNothing",
     TEXT_OF("ab,c", s.maskchar(',', 0)),
     "'ab,c' 4/16 of 'ab,c' 4/16",
     {"none 4/16 of 'ab,c' 4/16"},
     {}},
    {"Replaced",
     TEXT_OF("ab,c", s.replacechar('a', 'z')),
     "'zb,c' 4/16 of 'ab,c' 4/16",
     {"none 0/16 of 'ab,c' 4/16"},
     {}},
    {"Removed", TEXT_OF("ab,c", s.removechar('b')), "'a,c' 3/16 of 'ab,c' 4/16", {"none 0/16 of 'ab,c' 4/16"}, {}},
    {"Token", TEXT_OF("ab,c", s.karstrtok(",")), "'ab' 2/16 of 'c' 1/16", {"none 2/16 of 'c' 1/16"}, {}},
    {"LongToken",
     TEXT_OF(twenty, s.karstrtok("i")),
     "'0123456789abcdefgh' 18/24 of 'j' 1/32",
     {"'0123456789abcdefgh' 18/24 of 'j' 1/32", "none 18/24 of 'j' 1/32"},
     {"none 18/24 of 'j' 1/32", "none 18/24 of 'j' 1/32"}},
    {"NameOfAColour",
     TEXT_OF("", karColor(1, 2, 3).name(false)),
     "'RGB(1,2,3)' 10/104 of '' 0/16",
     {"'RGB(1,2,3)' 10/104 of '' 0/16", "none 10/104 of '' 0/16"},
     {"none 10/104 of '' 0/16", "none 10/104 of '' 0/16"}},
};
INSTANTIATE_TEST_SUITE_P(TextsOfOthers, EveryAllocation, ::testing::ValuesIn(textsOfOthers), nameOf);

// -- Numbers of texts, date and time

template <long (*convert)(const char *)>
std::string converted(Span &span)
{
    span.begin();
    const long value = convert("RGB(1, 2,3)");
    span.end();
    return std::to_string(value);
}

template <karString (*now)()>
std::string clockText(Span &span)
{
    span.begin();
    const karString s = now();
    span.end();
    return std::to_string(s.vstrlen()) + " of " + std::to_string(s.length()) + '/' + std::to_string(s.size());
}

const Operation conversions[] = {
    {"ColourOfAText", // a copy, then red, green and blue; 3 * 65536 + 2 * 256 + 1
     converted<vColorName::Conv>,
     "197121",
     {"0", "197120", "196609", "513"},
     {"0", "0", "1", "513"}},
    {"Date", clockText<GetLocalizedDate>, "8 of 8/24", {"0 of 8/24"}, {}},
    {"Time", clockText<GetLocalizedTime>, "8 of 8/24", {"0 of 8/24"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Conversions, EveryAllocation, ::testing::ValuesIn(conversions), nameOf);

// -- The console

/// Answers with texts of its own and counts those that arrive.
class AnsweringHost : public karStdio {
public:
    AnsweringHost() { Stdio = this; }
    AnsweringHost(const AnsweringHost &) = delete;
    AnsweringHost &operator=(const AnsweringHost &) = delete;
    ~AnsweringHost() override { Stdio = nullptr; }

    karString GetFileNameWrite(const karString &, const karString &second, const karString &, const karString &,
                               const karString &, int) override
    {
        return second;
    }
    void message(MsgType, int, const char *, va_list) override {}
    void statusText(const char *, va_list) override {}
    void Fortschritt(int) override {}
    void addTask(karTaskElem *) override {}
    void removeTask(karTaskElem *) override {}
    InterActAnswer interAction(InterActType, InterActIcon, InterActDefault, InterActModal, InterActSonder,
                               karString section, karString caption, karString text, va_list) override
    {
        for (const karString *s : {&section, &caption, &text})
            heard += !s->isNull();
        return InterActAnswer(3);
    }
    karString &localizeString(const char *, const char *, karString &, long) override { return answer; }

    int heard = 0;

private:
    karString answer{longer};
};

// The order in which the three texts are made is the compiler's.
#define DIALOG(...)                                                                                                    \
    [](Span &span) {                                                                                                   \
        AnsweringHost host;                                                                                            \
        span.begin();                                                                                                  \
        __VA_ARGS__;                                                                                                   \
        span.end();                                                                                                    \
        return std::to_string(host.heard) + " texts";                                                                  \
    },                                                                                                                 \
        "3 texts", {"2 texts", "2 texts", "2 texts"},                                                                  \
    {                                                                                                                  \
        "0 texts", "1 texts", "2 texts"                                                                                \
    }

std::string localizedInto(Span &span)
{
    AnsweringHost host;
    karString out;
    span.begin();
    LocalizeString("part", "key", out, 1);
    span.end();
    return read(out);
}

std::string localized(Span &span)
{
    AnsweringHost host;
    span.begin();
    const karString s = LocalizeString("part", "key", 1);
    span.end();
    return read(s);
}

std::string fileName(Span &span)
{
    AnsweringHost host;
    const karString second(longer);
    const karString third("c");
    span.begin();
    const karString s = GetFileNameWrite(third, second, third, third, third, 0);
    span.end();
    return read(s);
}

std::string fileNameWithoutHost(Span &span)
{
    const karString third("c");
    span.begin();
    const karString s = GetFileNameWrite(third, third, third, third, third, 0);
    span.end();
    return read(s);
}

const Operation console[] = {
    {"Dialog", DIALOG(LocalizeInterAction(InterActTypeOK, InterActIconInfo, InterActDefaultUsual, InterActModalUsual,
                                          InterActSonderUsual, "part", "head", "text"))},
    {"Information", DIALOG(LocalizeInterActionInfo(InterActTypeOK, "part", "head", "text"))},
    {"Warning", DIALOG(LocalizeInterActionWarning(InterActTypeOK, "part", "head", "text"))},
    {"Error", DIALOG(LocalizeInterActionError(InterActTypeOK, "part", "head", "text"))},
    {"InformationOK", DIALOG(LocalizeInterActionInfoOK("part", "head", "text"))},
    {"WarningOK", DIALOG(LocalizeInterActionWarningOK("part", "head", "text"))},
    {"ErrorOK", DIALOG(LocalizeInterActionErrorOK("part", "head", "text"))},
    {"CopyProtection", DIALOG(showDongleMessage(errorCodesKARTORY(-1), false))},
    {"LocalizedInto", localizedInto, "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"Localized", // the empty text, the assignment of the host's, the result
     localized,
     "'and a text that is too long for it' 34/48",
     {"'and a text that is too long for it' 34/48", "'' 34/48", "none 34/48"},
     {"none 34/48", "none 34/48", "none 34/48"}},
    {"FileName", // the third argument, the host's result, its assignment, the result
     fileName,
     "'and a text that is too long for it' 34/48",
     {"'and a text that is too long for it' 34/48", "'' 34/48", "'' 34/48", "none 34/48"},
     {"none 1/16", "none 34/48", "none 34/48", "none 34/48"}},
    {"FileNameWithoutHost", fileNameWithoutHost, "'c' 1/16", {"'' 1/16", "none 1/16"}, {"none 1/16", "none 1/16"}},
};
INSTANTIATE_TEST_SUITE_P(Console, EveryAllocation, ::testing::ValuesIn(console), nameOf);

// -- Lists of texts

#define NEW_ELEMENT(...)                                                                                               \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        const karStringList other(source);                                                                             \
        karStringListHead head;                                                                                        \
        span.begin();                                                                                                  \
        auto *const element = new karStringList(__VA_ARGS__);                                                          \
        head.ListAppend(element);                                                                                      \
        span.end();                                                                                                    \
        EXPECT_EQ(head.ListFirst(), element);                                                                          \
        return std::to_string(head.ListAnzahl()) + ": " + (element ? read(element->getString()) : "null");             \
    }
#define ON_ELEMENT(...)                                                                                                \
    [](Span &span) {                                                                                                   \
        const karString source(longer);                                                                                \
        const karStringList other(source);                                                                             \
        karStringList first("first");                                                                                  \
        karStringList element("abc", &first);                                                                          \
        span.begin();                                                                                                  \
        __VA_ARGS__;                                                                                                   \
        span.end();                                                                                                    \
        EXPECT_EQ(first.next(), &element);                                                                             \
        return read(element.getString());                                                                              \
    }

const Operation lists[] = {
    {"EmptyElement", NEW_ELEMENT(), "1: '' 0/16", {"0: null", "1: none 0/16"}, {}},
    {"ElementWithRoom", NEW_ELEMENT(20u), "1: '' 0/24", {"0: null", "1: none 0/24"}, {}},
    {"ElementOfAPlainText", NEW_ELEMENT("abc"), "1: 'abc' 3/16", {"0: null", "1: none 3/16"}, {}},
    {"ElementOfAText",
     NEW_ELEMENT(source),
     "1: 'and a text that is too long for it' 34/48",
     {"0: null", "1: none 34/48"},
     {}},
    {"CopyOfAnElement",
     NEW_ELEMENT(other),
     "1: 'and a text that is too long for it' 34/48",
     {"0: null", "1: none 34/48"},
     {}},
    {"Assign", ON_ELEMENT(element = other), "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"AssignText", ON_ELEMENT(element = source), "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"AssignPlain", ON_ELEMENT(element = longer), "'and a text that is too long for it' 34/48", {"none 34/48"}, {}},
    {"SetString",
     ON_ELEMENT(element.setString(source)),
     "'and a text that is too long for it' 34/48",
     {"none 34/48"},
     {}},
    {"Append", ON_ELEMENT(element &= other), "'abcand a text that is too long for it' 37/40", {"none 37/40"}, {}},
    {"AppendText", ON_ELEMENT(element &= source), "'abcand a text that is too long for it' 37/40", {"none 37/40"}, {}},
    {"AppendPlain", ON_ELEMENT(element &= longer), "'abcand a text that is too long for it' 37/40", {"none 37/40"}, {}},
};
INSTANTIATE_TEST_SUITE_P(ListsOfTexts, EveryAllocation, ::testing::ValuesIn(lists), nameOf);

} // namespace
