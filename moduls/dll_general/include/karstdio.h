/// \file
/// The host's console: messages, progress, localised texts and dialogs, and the hooks of modules built for diagnosis.
#ifndef KAR_STDIO_H
#define KAR_STDIO_H

#include "karenum.h"
#include "karexport.h"
#include "karstring.h"

#include <cstdarg>

class karTaskElem;

/// What a message is. A host keeps values of its own in the same types, here and below.
enum MsgType : int {
    MsgInfo = 1,    ///< `infoText`
    MsgParam = 2,   ///< `paramText`
    MsgWarning = 3, ///< `warningText`
    MsgError = 4,   ///< `errorText`
};

/// The sign that a dialog shows.
enum InterActIcon : int {
    InterActIconError = 1,   ///< the `Error` forms
    InterActIconWarning = 3, ///< the `Warning` forms
    InterActIconInfo = 4,    ///< the `Info` forms
};

/// The buttons of a dialog.
enum InterActType : int {
    InterActTypeOK = 10, ///< an OK button and nothing else
};

/// Further properties of a dialog. The short forms pass 1 for each.
enum InterActDefault : int {
    InterActDefaultUsual = 1
};
/// \overload
enum InterActModal : int {
    InterActModalUsual = 1
};
/// \overload
enum InterActSonder : int {
    InterActSonderUsual = 1
};

/// How the user answered.
enum InterActAnswer : int {
    InterActAnswerNoHost = 100, ///< nobody was asked: no `karStdio` is installed
};

/// What the library asks of its host; the host derives its console from it. Argument lists are as `vsprintf` consumes
/// them, each to be walked once. The texts of a dialog are localised by the host before it expands them.
class KAR_API karStdio {
public:
    /// \name Virtual operations, in slot order
    /// \{

    /// Asks for the name of a file to write.
    virtual karString GetFileNameWrite(const karString &a, const karString &b, const karString &c, const karString &d,
                                       const karString &e, int flags) = 0;
    /// Shows a text: `type` from the caller's function, `level` and `format` as handed in.
    virtual void message(MsgType type, int level, const char *format, va_list arguments) = 0;
    virtual void statusText(const char *format, va_list arguments) = 0; ///< Shows a text in the status line.
    virtual void Fortschritt(int number) = 0;                           ///< The progress has changed. Always gets 0.
    /// A task was made: its `_todo` is to be called in turn from now on.
    virtual void addTask(karTaskElem *task) = 0;
    /// A task goes: also called for one that the host has dropped already.
    virtual void removeTask(karTaskElem *task) = 0;
    /// Shows a dialog and waits for the answer, which goes back to the caller as it is.
    virtual InterActAnswer interAction(InterActType type, InterActIcon icon, InterActDefault defaultButton,
                                       InterActModal modal, InterActSonder sonder, karString section, karString caption,
                                       karString text, va_list arguments) = 0;
    /// The localised text of a section and a key. May give `out` itself or any other string that outlives the call.
    virtual karString &localizeString(const char *section, const char *key, karString &out, long number) = 0;
    virtual ~karStdio(); ///< The library never deletes its host.
    /// \}
};

/// The host's object, null at load. The host stores and frees it, and may change it between any two calls.
extern KAR_API karStdio *Stdio;

/// \name Messages
/// Without `Stdio` nothing happens.
/// \{

/// Note: the pointer isn't tested here: a host must be installed.
KAR_API void statusText(const char *format, ...);
/// A message of any type.
KAR_API void message(MsgType type, int level, const char *format, ...);
KAR_API void messageV(MsgType type, int level, const char *format, va_list arguments); ///< \overload
KAR_API void infoText(int level, const char *format, ...);                             ///< Type 1.
KAR_API void paramText(int level, const char *format, ...);                            ///< Type 2.
KAR_API void warningText(int level, const char *format, ...);                          ///< Type 3.
KAR_API void errorText(int level, const char *format, ...);                            ///< Type 4.
KAR_API void Fortschritt();                                                            ///< Passes 0.

/// \}

/// \name Texts and names
/// \{

/// Assigns what the host has for section and key to `out` and gives `out`, which stays as it is without `Stdio`.
KAR_API karString &LocalizeString(const char *section, const char *key, karString &out, long number);
KAR_API karString LocalizeString(const char *section, const char *key, long number); ///< The same, from an empty text.

/// What the host gives for the six arguments, a copy of `c` without `Stdio`.
KAR_API karString GetFileNameWrite(const karString &a, const karString &b, const karString &c, const karString &d,
                                   const karString &e, int flags);

/// \}

/// \name Dialogs
/// Pass everything on to the host, whose answer comes back as it is; 100 without `Stdio`. `text` is a format for the
/// further arguments. The short forms differ in the icon; those with OK in the name have just that button.
/// \{

/// The full form.
KAR_API InterActAnswer LocalizeInterAction(InterActType type, InterActIcon icon, InterActDefault defaultButton,
                                           InterActModal modal, InterActSonder sonder, const char *section,
                                           const char *caption, const char *text, ...);
/// The full form with the arguments as a list.
KAR_API InterActAnswer LocalizeInterActionV(InterActType type, InterActIcon icon, InterActDefault defaultButton,
                                            InterActModal modal, InterActSonder sonder, const char *section,
                                            const char *caption, const char *text, va_list arguments);
/// With the icon of an information.
KAR_API InterActAnswer LocalizeInterActionInfo(InterActType type, const char *section, const char *caption,
                                               const char *text, ...);
/// With the icon of a warning.
KAR_API InterActAnswer LocalizeInterActionWarning(InterActType type, const char *section, const char *caption,
                                                  const char *text, ...);
/// With the icon of an error.
KAR_API InterActAnswer LocalizeInterActionError(InterActType type, const char *section, const char *caption,
                                                const char *text, ...);
/// With the icon of an information and an OK button.
KAR_API InterActAnswer LocalizeInterActionInfoOK(const char *section, const char *caption, const char *text, ...);
/// With the icon of a warning and an OK button.
KAR_API InterActAnswer LocalizeInterActionWarningOK(const char *section, const char *caption, const char *text, ...);
/// With the icon of an error and an OK button.
KAR_API InterActAnswer LocalizeInterActionErrorOK(const char *section, const char *caption, const char *text, ...);

/// Tells the user of a failure of the host's copy protection, by `LocalizeInterActionErrorOK` with section "Dongle",
/// caption "Copy protection" and text "The copy protection reports failure %d." for the code. The flag isn't used.
KAR_API void showDongleMessage(errorCodesKARTORY code, bool flag);
/// \}

/// \name Diagnosis
/// Modules built for diagnosis link against these. Their bodies are empty.
/// \{

/// Does nothing.
KAR_API void debugErrorText(int number, const char *format, ...);
KAR_API void debugInfoText(int number, const char *format, ...);
KAR_API void debugWarningText(int number, const char *format, ...);
KAR_API void debugInfoTimer(int number, const char *format, ...);
KAR_API void debugErrorFile(const char *format, ...);
KAR_API void debugInfoFile(const char *format, ...);
KAR_API void debugWarningFile(const char *format, ...);
KAR_API void debugFileWriteV(const char *format, va_list arguments);
KAR_API void debugStartTimer(int number);
/// \}

#endif
