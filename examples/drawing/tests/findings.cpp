// Findings of an operation whose controller found no memory for its messages: there are none, and nothing faults.
#include "operation.h"
#include "report.h"

#include <cstdio>

namespace {

class CtrlWithoutMessages : public karCtrl {
public:
    karMessage *getMessageList() override { return nullptr; }
    karMessageBase *addMessage(EnumMessageID, int) override { return nullptr; }
};

bool hasNoFindings(karFilter &filter)
{
    FindingMaker(filter, FindingMissingBlock, 1) << karString("B");
    tellFindings(filter);
    return !firstFinding(filter) && toJson(Results(), filter).find("\"findings\": []") != std::string::npos;
}

} // namespace

int main()
{
    CtrlWithoutMessages ctrl;
    karFilter filter(&ctrl);
    karFilter filterWithoutCtrl(&ctrl);
    filterWithoutCtrl.setCtrl(nullptr);
    if (hasNoFindings(filter) && hasNoFindings(filterWithoutCtrl))
        return 0;
    std::puts("a finding where there is no list of them");
    return 1;
}
