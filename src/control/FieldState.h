#pragma once

// What a field holds, in two owners: its settings (every property that says how it
// edits and checks, and the format parsed from them) and its value (the stored text
// and what is compared against it). Plain data: the private side decides who writes.

#include "format/ParsedFormat.h"
#include "validation/Messages.h"

#include <velmora/Types.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <optional>

namespace velmora::detail {

struct FieldSettings
{
    InpType inputType = itAlfaNum;
    QString formatStr;
    QChar desOddel, tisOddel, datOddel; // configured separators; null = the regional one
    ParsedFormat parsed;
    EntAction enterAction = eaTab;
    ArrAction arrowAction = aaUpDownTab;
    DisplMode displayMode = dmChangeable;
    ControlLengthConst controlLength = clDecimalPart;
    qint16 maxLength = 0;
    bool autoTab = false;
    bool selectText = true;
    bool nullable = false;
    AlfaNumTrim alfaNumTrim = atLeftRight;
    CheckSwitches switches;
    bool messages = true;
    bool crrr = true;
    QString label;
    qint16 group = 0;
    qint16 refreshInt = 0;
    // The lookup list's settings; the list itself is not built yet.
    bool setList = false;
    QString sqlList, sqlConnect, listFormatString, hideCol, listNewItemText;
    qint16 valueCol = 0, textCol = 0, matchCol = -1;
    bool listAddNewItem = false;
    quint32 listBackColor = 0x80000005u, listForeColor = 0x80000008u;
    // Bumped by every assignment of the type, the format or a separator, so that an
    // assignment can tell that a handler made another one meanwhile.
    quint64 formatGeneration = 0;
};

struct FieldValue
{
    QString text; // the stored text; written only where the edit box is written
    QString baseText; // the baseline of Changed
    int listIndex = -1, baseListIndex = -1; // rows of a list may pass 32767
    bool changed = false;
    qint16 error = 0;
    QVariant lastValue; // the typed value ValueChanged last reported
    std::optional<double> number; // the number of a numeric value, kept whole
    quint64 generation = 0; // bumped by every write of the text
};

} // namespace velmora::detail
