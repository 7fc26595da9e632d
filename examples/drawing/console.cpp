#include "console.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace {

// A file's name or a text in a drawing may hold anything; a terminal gets no control characters from them.
std::string printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return text;
}

bool isAbleTerminal()
{
    const char *name = std::getenv("TERM");
    return isatty(STDERR_FILENO) != 0 && name && *name != '\0' && std::strcmp(name, "dumb") != 0;
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

Console::Console(Language ownLanguage) : language(ownLanguage), terminal(isAbleTerminal()) { Stdio = this; }

Console::~Console()
{
    clearBar();
    while (!tasks.empty())
        delete tasks.back(); // which takes it out of the list
    Stdio = nullptr;
}

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
    clearBar();
    const std::string colour = terminal ? colourOf(type) : "";
    if (!colour.empty())
        line = colour + line + "\x1b[0m";
    std::fprintf(stderr, "%s\n", line.c_str());
}

void Console::statusText(const char *format, va_list arguments) { status = printable(expanded(format, arguments)); }

void Console::Fortschritt(int) { barDrawn = {}; } // the percentage fell: the bar is drawn anew at the next turn

void Console::turn(karCtrl &ctrl)
{
    for (std::size_t i = 0; i < tasks.size();) {
        karTaskElem *task = tasks[i];
        if (task->_todo()) {
            removeTask(task);
            task->PostRemove();
        } else {
            ++i;
        }
    }
    if (!terminal || loudness == Loudness::Quiet)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now - barDrawn < std::chrono::milliseconds(100))
        return;
    barDrawn = now;
    drawBar(ctrl.getGlobalPercent());
}

void Console::drawBar(int percent)
{
    constexpr int cells = 25;
    const int known = std::clamp(percent, 0, 100);
    std::string bar(static_cast<std::size_t>(known * cells / 100), '#');
    bar.resize(cells, '.');
    std::fprintf(stderr, "\r[%s] %3d%% %s  %s\x1b[K", bar.c_str(), known, status.c_str(),
                 static_cast<const char *>(static_cast<const karString &>(figures)));
    barShown = true;
}

void Console::clearBar()
{
    if (barShown)
        std::fputs("\r\x1b[K", stderr);
    barShown = false;
}

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
