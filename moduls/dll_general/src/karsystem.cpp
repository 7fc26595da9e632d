#include "karsystem.h"

#include "platform.h"
#include "systemreport.h"

namespace {

bool probed;
kar::SystemAnswers answers;
char systemNameText[1];

const kar::SystemAnswers &systemProbe()
{
    if (!probed) {
        kar::SystemReport report = {};
        answers = kar::answersTo(kar::platform::systemReport(report) ? &report : nullptr, kar::platform::computerName);
        probed = true;
    }
    return answers;
}

const kar::SystemVersion &probedVersion() { return kar::systemVersions[systemProbe().version]; }

} // namespace

int systemType() { return systemProbe().type; }
const char *systemTypeString() { return kar::systemTypes[systemProbe().type]; }
int systemVersion() { return systemProbe().version; }
const char *systemVersionString() { return probedVersion().text; }
unsigned short systemVersionBinary() { return probedVersion().packed; }
int systemBuilt() { return systemProbe().built; }

char *systemName()
{
    systemProbe();
    return systemNameText;
}

char *nodeName()
{
    systemProbe();
    return answers.node;
}

void globalBeep() {}
void _notready(const char *, const char *, int) {}
errorCodesKARTORY errornoMethod(int code) { return static_cast<errorCodesKARTORY>(code); }
errorCodesKARTORY errornoMethodExt(errorCodesKARTORY code, const char *, int) { return code; }
int errornoMethodExt(int code, const char *, int) { return code; }
