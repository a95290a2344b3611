#include "Messages.h"

namespace velmora::detail {

QString messageText(int number, const QString &value)
{
    switch (number) {
    case 1:
        return QStringLiteral("Neplatně zadaná hodnota (") + value + QStringLiteral(").");
    case 2:
    case 7:
    case 12:
        return QStringLiteral("Neplatně zadané datum (") + value + QStringLiteral(").");
    case 3:
        return QStringLiteral("Neplatně zadaný numerický formátovací řetězec.");
    case 4:
        return QStringLiteral("Neplatně zadaný alfanumerický formátovací řetězec.");
    case 5:
        return QStringLiteral("Neplatně zadaný datumový formátovací řetězec.");
    case 6:
    case 11:
        return QStringLiteral("Neplatně zadaná numerická hodnota (") + value + QStringLiteral(").");
    case 8:
        return QStringLiteral("Do tohoto pole nelze vložit za desetinnou čárku více znaků než ")
            + value + QStringLiteral(".");
    case 9:
        return QStringLiteral("Do tohoto pole nelze vložit před desetinnou čárku více znaků než ")
            + value + QStringLiteral(".");
    case 10:
        return QStringLiteral("Údaj není obsažen v seznamu povolených hodnot.");
    case 13:
        return QStringLiteral("Pole musí obsahovat nějakou hodnotu.");
    case 14:
        return QStringLiteral("Do tohoto pole nelze vložit více než ") + value
            + QStringLiteral(" znaků.");
    default:
        return QString();
    }
}

bool isOn(Switch which, const CheckSwitches &switches)
{
    if (which == Switch::ListCheckValue)
        return switches.checkValues && switches.listCheckValue;
    return !switches.checkValues || switches.enableEmpty;
}

std::optional<bool> isSet(const QString &name, const CheckSwitches &switches)
{
    const QString key = name.trimmed().toUpper();
    if (key == QLatin1String("LISTCHECKVALUE"))
        return isOn(Switch::ListCheckValue, switches);
    if (key == QLatin1String("ENABLEEMPTY"))
        return isOn(Switch::EnableEmpty, switches);
    return std::nullopt;
}

QString unknownSwitchText(const QString &name)
{
    return QStringLiteral("Chyba programátora. Neznámý parametr funkce IsSet (") + name
        + QStringLiteral(").");
}

} // namespace velmora::detail
