#include "console.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace {

// A file's name or a text in a drawing may hold anything; a terminal gets no control characters from them.
std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return text;
}

const char *colourOf(MsgType type)
{
    switch (type) {
    case MsgError:
        return "\x1b[31m";
    case MsgWarning:
        return "\x1b[33m";
    case MsgParam:
        return "\x1b[36m";
    default:
        return "";
    }
}

} // namespace

Console::Console(Loudness ownLoudness, Language ownLanguage)
    : loudness(ownLoudness), language(ownLanguage), terminal(isatty(STDERR_FILENO) != 0)
{
    Stdio = this;
}

Console::~Console() { Stdio = nullptr; }

karString Console::GetFileNameWrite(const karString &, const karString &, const karString &c, const karString &,
                                    const karString &, int)
{
    return c; // nobody is asked: the names come from the command line
}

void Console::message(MsgType type, int level, const char *format, va_list arguments)
{
    if (type != MsgError && (loudness == Loudness::Quiet || (loudness != Loudness::Verbose && level > 0)))
        return;
    print(type, printable(expanded(format, arguments)));
}

void Console::print(MsgType type, const std::string &text)
{
    std::string line = "kartory-drawing: ";
    if (type == MsgError || type == MsgWarning)
        line += std::string(translated(language, type == MsgError ? "error" : "warning")) + ": ";
    line += text;
    const std::string colour = terminal ? colourOf(type) : "";
    if (!colour.empty())
        line = colour + line + "\x1b[0m";
    std::fprintf(stderr, "%s\n", line.c_str());
}

void Console::statusText(const char *format, va_list arguments) { status = printable(expanded(format, arguments)); }

void Console::Fortschritt(int) {}

void Console::addTask(karTaskElem *task) { tasks.push_back(task); }

void Console::removeTask(karTaskElem *task) { tasks.erase(std::remove(tasks.begin(), tasks.end(), task), tasks.end()); }

InterActAnswer Console::interAction(InterActType, InterActIcon icon, InterActDefault, InterActModal, InterActSonder,
                                    karString, karString, karString text, va_list arguments)
{
    const MsgType type = icon == InterActIconError ? MsgError : icon == InterActIconWarning ? MsgWarning : MsgInfo;
    message(type, 0, translated(language, static_cast<const karString &>(text)), arguments);
    return InterActAnswerNoHost; // there is nobody to press a button
}

karString &Console::localizeString(const char *, const char *key, karString &out, long)
{
    out = translated(language, key);
    return out;
}
