// A console of a host, installed for as long as it lives.
#include "expect.h"

#include <karstdio.h>

class Console : public karStdio {
public:
    Console() { Stdio = this; }
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;
    ~Console() override { Stdio = nullptr; }

    karString lastText;
    MsgType lastType = MsgType(0);

    // Level 0 is shown; what is more detailed is dropped.
    void message(MsgType type, int level, const char *format, va_list arguments) override
    {
        if (level > 0)
            return;
        char text[200];
        std::vsnprintf(text, sizeof text, format, arguments);
        lastType = type;
        lastText = text;
    }
    void statusText(const char *, va_list) override {}
    void Fortschritt(int) override {}
    void addTask(karTaskElem *) override {}
    void removeTask(karTaskElem *) override {}
    karString GetFileNameWrite(const karString &, const karString &, const karString &suggested, const karString &,
                               const karString &, int) override
    {
        return suggested;
    }
    InterActAnswer interAction(InterActType, InterActIcon, InterActDefault, InterActModal, InterActSonder, karString,
                               karString, karString, va_list) override
    {
        return InterActAnswer(1);
    }
    karString &localizeString(const char *, const char *key, karString &out, long) override { return out = key; }
};

int main()
{
    // Without a host a message goes nowhere, and a dialog answers 100.
    infoText(0, "nobody reads this");
    EXPECT(LocalizeInterActionInfoOK("section", "caption", "text") == InterActAnswerNoHost);

    const Console console;
    warningText(0, "%d contours are open", 3);
    EXPECT(console.lastType == MsgWarning);
    EXPECT(console.lastText == "3 contours are open");
    infoText(1, "a detail");
    EXPECT(console.lastText == "3 contours are open");
    EXPECT(LocalizeInterActionInfoOK("section", "caption", "text") == InterActAnswer(1));
    return 0;
}
