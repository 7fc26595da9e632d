#include "karstdio.h"

// `call` with what stands behind `last` as the list `arguments`. No function can do this: a list is opened and closed
// in the one that has the ellipsis.
#define KAR_WITH_ARGUMENTS(last, call)                                                                                 \
    va_list arguments;                                                                                                 \
    va_start(arguments, last);                                                                                         \
    call;                                                                                                              \
    va_end(arguments)

karStdio *Stdio;

karStdio::~karStdio() = default;

// ---- Messages

void statusText(const char *format, ...) { KAR_WITH_ARGUMENTS(format, Stdio->statusText(format, arguments)); }

void message(MsgType type, int level, const char *format, ...)
{
    KAR_WITH_ARGUMENTS(format, messageV(type, level, format, arguments));
}

void messageV(MsgType type, int level, const char *format, va_list arguments)
{
    if (Stdio)
        Stdio->message(type, level, format, arguments);
}

void infoText(int level, const char *format, ...)
{
    KAR_WITH_ARGUMENTS(format, messageV(MsgInfo, level, format, arguments));
}

void paramText(int level, const char *format, ...)
{
    KAR_WITH_ARGUMENTS(format, messageV(MsgParam, level, format, arguments));
}

void warningText(int level, const char *format, ...)
{
    KAR_WITH_ARGUMENTS(format, messageV(MsgWarning, level, format, arguments));
}

void errorText(int level, const char *format, ...)
{
    KAR_WITH_ARGUMENTS(format, messageV(MsgError, level, format, arguments));
}

void Fortschritt()
{
    if (Stdio)
        Stdio->Fortschritt(0);
}

// ---- Texts and names

karString &LocalizeString(const char *section, const char *key, karString &out, long number)
{
    if (Stdio)
        out = Stdio->localizeString(section, key, out, number);
    return out;
}

karString LocalizeString(const char *section, const char *key, long number)
{
    karString out;
    return karString(LocalizeString(section, key, out, number));
}

karString GetFileNameWrite(const karString &a, const karString &b, const karString &c, const karString &d,
                           const karString &e, int flags)
{
    karString name(c);
    if (Stdio)
        name = Stdio->GetFileNameWrite(a, b, c, d, e, flags);
    return karString(name, 8u);
}

// ---- Dialogs

InterActAnswer LocalizeInterAction(InterActType type, InterActIcon icon, InterActDefault defaultButton,
                                   InterActModal modal, InterActSonder sonder, const char *section, const char *caption,
                                   const char *text, ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text, answer = LocalizeInterActionV(type, icon, defaultButton, modal, sonder, section, caption,
                                                           text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionV(InterActType type, InterActIcon icon, InterActDefault defaultButton,
                                    InterActModal modal, InterActSonder sonder, const char *section,
                                    const char *caption, const char *text, va_list arguments)
{
    if (!Stdio)
        return InterActAnswerNoHost;
    return Stdio->interAction(type, icon, defaultButton, modal, sonder, karString(section), karString(caption),
                              karString(text), arguments);
}

namespace {

InterActAnswer usualDialog(InterActType type, InterActIcon icon, const char *section, const char *caption,
                           const char *text, va_list arguments)
{
    return LocalizeInterActionV(type, icon, InterActDefaultUsual, InterActModalUsual, InterActSonderUsual, section,
                                caption, text, arguments);
}

} // namespace

InterActAnswer LocalizeInterActionInfo(InterActType type, const char *section, const char *caption, const char *text,
                                       ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text, answer = usualDialog(type, InterActIconInfo, section, caption, text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionWarning(InterActType type, const char *section, const char *caption, const char *text,
                                          ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text, answer = usualDialog(type, InterActIconWarning, section, caption, text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionError(InterActType type, const char *section, const char *caption, const char *text,
                                        ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text, answer = usualDialog(type, InterActIconError, section, caption, text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionInfoOK(const char *section, const char *caption, const char *text, ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text, answer = usualDialog(InterActTypeOK, InterActIconInfo, section, caption, text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionWarningOK(const char *section, const char *caption, const char *text, ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text,
                       answer = usualDialog(InterActTypeOK, InterActIconWarning, section, caption, text, arguments));
    return answer;
}

InterActAnswer LocalizeInterActionErrorOK(const char *section, const char *caption, const char *text, ...)
{
    InterActAnswer answer;
    KAR_WITH_ARGUMENTS(text,
                       answer = usualDialog(InterActTypeOK, InterActIconError, section, caption, text, arguments));
    return answer;
}

void showDongleMessage(errorCodesKARTORY code, bool)
{
    LocalizeInterActionErrorOK("Dongle", "Copy protection", "The copy protection reports failure %d.",
                               static_cast<int>(code));
}

// ---- Diagnosis

void debugErrorText(int, const char *, ...) {}
void debugInfoText(int, const char *, ...) {}
void debugWarningText(int, const char *, ...) {}
void debugInfoTimer(int, const char *, ...) {}
void debugErrorFile(const char *, ...) {}
void debugInfoFile(const char *, ...) {}
void debugWarningFile(const char *, ...) {}
void debugFileWriteV(const char *, va_list) {}
void debugStartTimer(int) {}
