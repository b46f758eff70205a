#include "text/conditions.h"

#include <cstring>

#include "reader/host_memory.h"
#include "reader/statement.h"
#include "text/mif_text.h"

int mifConditionTag(MifContext *context)
{
    MifConditionState &conditions = context->conditions;
    conditions.declared = nullptr;
    char *tag = mifCopyValue(context);
    if (tag == nullptr || conditions.tags.find(tag, strlen(tag)) != nullptr) {
        mifRelease(context, tag);
        return 0;
    }
    auto *condition = mifAllocateZeroed<MifCondition>(context);
    if (condition == nullptr) {
        mifRelease(context, tag);
        return 0;
    }
    condition->tag = tag;
    conditions.catalog.append(condition);
    conditions.tags.insert(condition, tag, strlen(tag));
    conditions.declared = condition;
    return 1;
}

int mifConditionState(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    MifCondition *condition = context->conditions.declared;
    if (value == nullptr || condition == nullptr) {
        return 0;
    }
    condition->isHidden = strcmp(value, "CHidden") == 0;
    return 1;
}

void mifBeginConditional(MifContext *context)
{
    context->flow.conditions = 0;
    context->flow.shownConditions = 0;
}

int mifInCondition(MifContext *context)
{
    const char *value = mifUnquotedValue(context);
    if (value == nullptr) {
        return 0;
    }
    const char *tag = mifTextOfValue(context, value);
    const auto *condition = static_cast<const MifCondition *>(context->conditions.tags.find(tag, strlen(tag)));
    context->flow.conditions = 1;
    context->flow.shownConditions |= condition == nullptr || condition->isHidden == 0 ? 1 : 0;
    return 1;
}

int mifEndConditional(MifContext *context)
{
    MifFlowState &flow = context->flow;
    flow.hidden = flow.conditions != 0 && flow.shownConditions == 0 ? 1 : 0;
    return 1;
}

int mifUnconditional(MifContext *context)
{
    context->flow.hidden = 0;
    return 1;
}

void mifFreeConditions(MifContext *context)
{
    MifConditionState &conditions = context->conditions;
    while (MifCondition *condition = conditions.catalog.takeFirst()) {
        mifRelease(context, condition->tag);
        mifRelease(context, condition);
    }
    conditions.tags.clear();
    conditions.declared = nullptr;
}
