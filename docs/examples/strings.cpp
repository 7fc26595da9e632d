// Texts: build, take apart, read numbers.
#include "expect.h"

#include <karstringlist.h>

int main()
{
    karString line("LINE");
    line &= ": ";
    line &= karString(12.5, 3, true); // at most three places, zeros taken off
    EXPECT(line == "LINE: 12.5");

    karString text;
    text.format("%d of %s", 7, "twelve");
    EXPECT(text == "7 of twelve" && text.length() == 11);

    // Tokens go into a list, which owns them.
    karStringListHead words;
    for (karString rest("alpha,beta,gamma"); !rest.isNull();)
        words.ListAppend(new karStringList(rest.karstrtok(",")));
    EXPECT(words.ListAnzahl() == 3);
    EXPECT(words.ListLast()->getString() == "gamma");

    // Failure is a code, and the value has a stated result all the same.
    int number = 1;
    EXPECT(karString("250").s2int(number) == KAR_SUCCESS && number == 250);
    EXPECT(karString("none").s2int(number) == KAR_ERROR_NO_NUMBER && number == 0);
    EXPECT(karString("12a").s2int(number) == KAR_SUCCESS && number == 298); // not digits alone: hexadecimal
    return 0;
}
