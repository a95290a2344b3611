#pragma once

// The exit check: whether the value of a field may be accepted when the user leaves it
// or the host asks. A plain decision on what the field shows and holds; the field turns
// its result into a message and runs it on leaving.

#include "Messages.h"

#include "format/Regional.h"

#include <velmora/Types.h>

#include <QtCore/QString>

namespace velmora::detail {

enum class ExitResult : qint16 {
    Accepted = 0,
    NotInList = 1,
    InvalidNumber = 2,
    InvalidDate = 3,
    EmptyNotAllowed = 4,
};

struct ExitCheckInput
{
    DisplMode displayMode = dmChangeable;
    InpType inputType = itAlfaNum;
    CheckSwitches switches;
    bool setList = false;
    bool listAddNewItem = false; // row 0 is the new-item row, never a valid choice
    QString boxText; // what the edit box shows
    QString emptyDateText; // what it shows for an empty date of the field's format
    QString fieldValue; // the field's Value as it stands
    int listIndex = -1; // the list row the value matches, -1 for none
    char16_t valueColumnType = u'A'; // the data type of the list's value column
    RegionalSettings regional; // for the lenient numeric and date tests
};

// The check of the text value: the list rules when the list check applies, else the
// plain rules. Fields that cannot be edited always pass.
ExitResult exitCheck(const QString &value, const ExitCheckInput &in);

// The message a result is reported with (0 for none), and whether that message quotes
// the value that was tested (the others quote nothing, or the stored text).
int exitMessage(ExitResult result);

} // namespace velmora::detail
