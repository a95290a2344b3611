#include "ExitCheck.h"

namespace velmora::detail {

namespace {

bool isDateField(InpType type)
{
    return type == itDate;
}

} // namespace

ExitResult exitCheck(const QString &value, const ExitCheckInput &in)
{
    if (in.displayMode != dmChangeable)
        return ExitResult::Accepted;
    const bool emptyAllowed = isOn(Switch::EnableEmpty, in.switches);
    if (isOn(Switch::ListCheckValue, in.switches) && in.setList) {
        const bool boxEmpty
            = in.boxText.isEmpty() || (isDateField(in.inputType) && in.boxText == in.emptyDateText);
        if ((emptyAllowed && boxEmpty && in.listIndex < 0) || in.inputType == itBool)
            return ExitResult::Accepted;
        if (in.listIndex < 0 || (in.listIndex == 0 && in.listAddNewItem))
            return ExitResult::NotInList;
        if (!value.isEmpty() && in.valueColumnType == itNum && !isNumeric(value, in.regional))
            return ExitResult::InvalidNumber;
        if (in.valueColumnType == itDate && !value.isEmpty() && !isDate(in.fieldValue, in.regional))
            return ExitResult::InvalidDate;
        return ExitResult::Accepted;
    }
    if (in.inputType == itNum && !value.isEmpty() && !isNumeric(value, in.regional))
        return ExitResult::InvalidNumber;
    if (isDateField(in.inputType) && value != in.emptyDateText && !value.isEmpty()
        && !isDate(in.fieldValue, in.regional))
        return ExitResult::InvalidDate;
    if (value.isEmpty() && !emptyAllowed)
        return ExitResult::EmptyNotAllowed;
    return ExitResult::Accepted;
}

int exitMessage(ExitResult result)
{
    switch (result) {
    case ExitResult::NotInList:
        return 10;
    case ExitResult::InvalidNumber:
        return 11;
    case ExitResult::InvalidDate:
        return 12;
    case ExitResult::EmptyNotAllowed:
        return 13;
    case ExitResult::Accepted:
        break;
    }
    return 0;
}

} // namespace velmora::detail
