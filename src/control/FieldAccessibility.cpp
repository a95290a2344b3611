// The name, the hint and the announced messages of a field for assistive technology.

#include "FieldAccessibility.h"
#include "Velmora_p.h"
#include "lookup/ListWindow.h"

#include <QtCore/QStringList>
#include <QtGui/QAccessible>
#include <QtGui/QTextDocumentFragment>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

#include <cstring>
#include <utility>

namespace velmora {

using namespace detail;

namespace detail {

namespace {

// A Czech count with its noun: 1 takes the singular, 2 to 4 the plural and every other
// number the genitive plural ("1 znak", "3 znaky", "20 znaků").
QString counted(int n, const char *one, const char *few, const char *many)
{
    const char *noun = n == 1 ? one : (n >= 2 && n <= 4) ? few : many;
    return QString::number(n) + QLatin1Char(' ') + QString::fromUtf8(noun);
}

QString numberHint(const FieldSettings &set)
{
    const ParsedFormat &pf = set.parsed;
    if (set.formatStr.isEmpty())
        return QStringLiteral("Číslo");
    QStringList parts;
    if (pf.decimalDigits == 0)
        parts << QStringLiteral("Celé číslo");
    else
        parts << QStringLiteral("Číslo")
              << counted(pf.decimalDigits, "desetinné místo", "desetinná místa",
                         "desetinných míst");
    // The integer places are held to the format unless only the decimals are checked.
    if (set.controlLength != clNone && set.controlLength != clDecimalPart)
        parts << QStringLiteral("nejvýše ") + counted(pf.integerDigits, "místo", "místa", "míst")
                + QStringLiteral(" před desetinnou čárkou");
    return parts.join(QStringLiteral(", "));
}

QString typeHint(const FieldSettings &set)
{
    switch (set.inputType) {
    case itNum:
        return numberHint(set);
    case itDate:
        return QStringLiteral("Datum ve tvaru ")
            + typedDateLayout(set.formatStr, set.parsed.dateSeparator);
    case itBool:
        return QStringLiteral("Hodnota ") + set.parsed.boolFormat.trueText
            + QStringLiteral(" nebo ") + set.parsed.boolFormat.falseText;
    default:
        break;
    }
    if (set.maxLength > 0)
        return QStringLiteral("Text, nejvýše ") + counted(set.maxLength, "znak", "znaky", "znaků");
    return QStringLiteral("Text");
}

AccessibilityListener &listener()
{
    static AccessibilityListener installed = nullptr; // fields live on the GUI thread only
    return installed;
}

void sendEvent(QObject *object, QAccessible::Event type)
{
    QAccessibleEvent event(object, type);
    if (const AccessibilityListener l = listener())
        l(&event);
    if (QAccessible::isActive())
        QAccessible::updateAccessibility(&event);
}

void setName(QWidget *w, const QString &name)
{
    if (w->accessibleName() != name)
        w->setAccessibleName(name);
}

} // namespace

AccessibilityListener setAccessibilityListener(AccessibilityListener l)
{
    return std::exchange(listener(), l);
}

QString labelPlainText(const QLabel *label)
{
    QString text = label->text();
    const Qt::TextFormat format = label->textFormat();
    if (format == Qt::RichText || (format == Qt::AutoText && Qt::mightBeRichText(text)))
        text = QTextDocumentFragment::fromHtml(text).toPlainText();
    // "&&" shows one ampersand; a single one marks the mnemonic.
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        plain += text.at(i);
    }
    return plain.simplified();
}

const QLabel *buddyLabel(const QWidget *field, const QWidget *box)
{
    const QWidget *parent = field->parentWidget();
    if (!parent)
        return nullptr;
    const QList<QLabel *> labels = parent->findChildren<QLabel *>(Qt::FindDirectChildrenOnly);
    for (const QLabel *label : labels)
        if ((label->buddy() == field || label->buddy() == box) && !labelPlainText(label).isEmpty())
            return label;
    return nullptr;
}

QString typedDateLayout(const QString &format, QChar separator)
{
    QString layout;
    layout.reserve(format.size());
    for (const QChar c : format) {
        if (c == QLatin1Char('d'))
            layout += QLatin1Char('D');
        else if (c == QLatin1Char('m'))
            layout += QLatin1Char('M');
        else if (c == QLatin1Char('y'))
            layout += QLatin1Char('R');
        else
            layout += separator;
    }
    return layout;
}

QString inputHint(const FieldSettings &set)
{
    QStringList parts {typeHint(set)};
    if (set.displayMode == dmChangeable && !isOn(Switch::EnableEmpty, set.switches))
        parts << QStringLiteral("povinné");
    if (set.setList)
        parts << QStringLiteral("výběr ze seznamu klávesou Page Down");
    return parts.join(QStringLiteral(", "));
}

bool affectsAccessibility(const char *property)
{
    static constexpr const char *Names[]
        = {"Label",          "InputType",      "FormatStr",     "FormatDesOddel",
           "FormatTisOddel", "FormatDatOddel", "ControlLength", "MaxLength",
           "SetList",        "CheckValues",    "EnableEmpty",   "DisplayMode"};
    for (const char *name : Names)
        if (std::strcmp(name, property) == 0)
            return true;
    return false;
}

void FieldAccessibility::update(const FieldSettings &set, QWidget *listButton, ListWindow *window)
{
    QString name = set.label.simplified();
    if (name.isEmpty())
        if (const QLabel *label = buddyLabel(m_field, m_box))
            name = labelPlainText(label);
    if (name.isEmpty())
        name = m_field->accessibleName();
    m_name = name;
    setName(m_box, name);

    const QString hostHint = m_field->accessibleDescription();
    m_hint = hostHint.isEmpty() ? inputHint(set) : hostHint;
    describe();

    setName(listButton, QStringLiteral("Otevřít seznam"));
    if (window) {
        const QString list
            = name.isEmpty() ? QStringLiteral("Seznam") : name + QStringLiteral(" – seznam");
        setName(window, list);
        setName(window->table(), list);
    }
}

void FieldAccessibility::showError(const QString &message)
{
    m_error = message.simplified();
    describe();
    // The description alone is read only when asked for; the alert makes a screen reader
    // say it now.
    sendEvent(m_box, QAccessible::Alert);
}

void FieldAccessibility::clearError()
{
    if (m_error.isEmpty())
        return;
    m_error.clear();
    describe();
}

void FieldAccessibility::describe()
{
    const QString text = m_error.isEmpty() ? m_hint : m_error + QLatin1Char(' ') + m_hint;
    if (m_box->accessibleDescription() == text)
        return;
    m_box->setAccessibleDescription(text);
}

} // namespace detail

void VelmoraPrivate::refreshAccessibility()
{
    // A screen reader meets only shown fields; showing the field brings it up to date, so
    // building a form of many fields costs no search for labels.
    if (q->isVisible())
        access.update(set, cmdList, list.window);
}

} // namespace velmora
