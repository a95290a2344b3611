#pragma once

// The message table of a field and the switch test that combines the master switch
// CheckValues with the individual switches.

#include <QtCore/QString>

#include <optional>

namespace velmora::detail {

// The Czech text of message number (1 to 14) with the value put in plain; any other
// number gives the empty text.
QString messageText(int number, const QString &value);

struct CheckSwitches
{
    bool checkValues = true;
    bool listCheckValue = true;
    bool enableEmpty = true;
};

// The two switches that CheckValues governs: off with CheckValues off, the list check
// off and empty values allowed.
enum class Switch { ListCheckValue, EnableEmpty };
bool isOn(Switch which, const CheckSwitches &switches);

// "ListCheckValue" and "EnableEmpty" by name, in any case and padded with blanks. An unknown
// name gives nothing: the caller shows unknownSwitchText() and takes it as false.
std::optional<bool> isSet(const QString &name, const CheckSwitches &switches);
QString unknownSwitchText(const QString &name);

} // namespace velmora::detail
