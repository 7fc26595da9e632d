// The program's console: what the library's messages, texts and dialogs come to on a terminal.
#ifndef CONSOLE_H
#define CONSOLE_H

#include "texts.h"

#include <krkgeneral.h>

#include <chrono>
#include <string>
#include <vector>

enum class Loudness {
    Quiet,  ///< errors alone
    Usual,  ///< messages of level 0
    Verbose ///< all messages
};

/// Installs itself as the library's `Stdio` for as long as it lives. Everything goes to standard error, in colours
/// where that is a terminal that has them; standard output is left to the report.
class Console : public karStdio {
public:
    explicit Console(Language language);
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;
    ~Console() override;

    karString GetFileNameWrite(const karString &a, const karString &b, const karString &c, const karString &d,
                               const karString &e, int flags) override;
    void message(MsgType type, int level, const char *format, va_list arguments) override;
    void statusText(const char *format, va_list arguments) override;
    void Fortschritt(int number) override;
    void addTask(karTaskElem *task) override;
    void removeTask(karTaskElem *task) override;
    InterActAnswer interAction(InterActType type, InterActIcon icon, InterActDefault defaultButton, InterActModal modal,
                               InterActSonder sonder, karString section, karString caption, karString text,
                               va_list arguments) override;
    karString &localizeString(const char *section, const char *key, karString &out, long number) override;

    /// The turn of everything that runs beside an operation: the tasks, and the progress bar of the controller, which
    /// is drawn at most ten times a second, on a terminal only and never with `Quiet`.
    void turn(karCtrl &ctrl);
    void setLoudness(Loudness newLoudness) { loudness = newLoudness; }
    /// Takes the bar away.
    void clearBar();
    /// The figures that the bar shows.
    void setFigures(const karString &newFigures) { figures = newFigures; }

private:
    void drawBar(int percent);
    void print(MsgType type, const std::string &text);

    Loudness loudness = Loudness::Usual;
    Language language;
    bool terminal; // standard error is one, and it can move back in its line
    std::vector<karTaskElem *> tasks;
    std::string status; // what is being done
    karString figures;
    bool barShown = false;
    std::chrono::steady_clock::time_point barDrawn;
};

#endif
