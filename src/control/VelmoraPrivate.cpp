#include "Velmora_p.h"
#include "format/FormatParser.h"
#include "format/Regional.h"
#include "format/Text.h"

#include <velmora/Platform.h>

#include <QtCore/QHash>
#include <QtCore/QMetaProperty>
#include <QtCore/QTimer>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

namespace velmora {

using namespace detail;

namespace {

quint64 nextSerial()
{
    static quint64 created = 0; // fields live on the GUI thread only
    return ++created;
}

} // namespace

VelmoraPrivate::VelmoraPrivate(Velmora *field)
    : q(field), serial(nextSerial()), txtInput(new QLineEdit(field)), events(*this)
{
    txtInput->setObjectName(QStringLiteral("txtInput"));
    txtInput->setFrame(false);
    txtInput->setDragEnabled(false);
    txtInput->setAcceptDrops(false);
    txtInput->setContextMenuPolicy(Qt::CustomContextMenu);
    // The box fills its whole rectangle with its base colour, so Qt knows it is opaque
    // and a key repaints the box alone, not the frame, the field and the form behind it.
    txtInput->setBackgroundRole(QPalette::Base);
    txtInput->setAutoFillBackground(true);
    txtInput->installEventFilter(&events);
    q->setFocusProxy(txtInput);
    q->setFocusPolicy(Qt::StrongFocus);

    lblVis = new QLabel(q);
    lblVis->setObjectName(QStringLiteral("lblVis"));
    lblVis->setTextFormat(Qt::PlainText);
    lblVis->hide();

    cmdList = new QToolButton(q);
    cmdList->setObjectName(QStringLiteral("cmdList"));
    cmdList->setFocusPolicy(Qt::NoFocus);
    cmdList->setArrowType(Qt::NoArrow);
    cmdList->hide();

    look.setup(q, txtInput, lblVis, cmdList);
    look.listFontChanged = [this] {
        applyListLook();
    };
    // The separators of a field never parsed (designed forms) are the regional ones.
    set.parsed.regional = Platform::instance().regionalSettings();
}

VelmoraPrivate::~VelmoraPrivate()
{
    txtInput->removeEventFilter(&events);
}

bool VelmoraPrivate::runMode() const
{
    // Asked on every key: the declared properties of each class are looked up once
    // (QObject::property() compares the name with every property of the hierarchy), and
    // the dynamic ones only on objects that have any.
    static const QByteArray name = QByteArrayLiteral("UserMode");
    static QHash<const QMetaObject *, int> declared;
    for (const QObject *o = q; o; o = o->parent()) {
        const QMetaObject *meta = o->metaObject();
        auto it = declared.constFind(meta);
        if (it == declared.constEnd())
            it = declared.insert(meta, meta->indexOfProperty(name.constData()));
        if (*it >= 0)
            return meta->property(*it).read(o).toBool();
        if (!o->dynamicPropertyNames().isEmpty()) {
            const QVariant v = o->property(name.constData());
            if (v.isValid())
                return v.toBool();
        }
    }
    return true;
}

ValueFormat VelmoraPrivate::fieldFormat() const
{
    ValueFormat vf;
    vf.type = set.inputType;
    vf.format = set.formatStr;
    vf.parsed = &set.parsed;
    vf.boolFormat = set.parsed.boolFormat;
    vf.trim = set.alfaNumTrim;
    vf.regional = set.parsed.regional;
    return vf;
}

FieldValueSettings VelmoraPrivate::valueSettings() const
{
    FieldValueSettings s;
    s.format = fieldFormat();
    s.maxLength = set.maxLength;
    s.setList = set.setList;
    s.listCheck = switchOn(Switch::ListCheckValue);
    s.enableEmpty = switchOn(Switch::EnableEmpty);
    return s;
}

EditSettings VelmoraPrivate::editSettings() const
{
    EditSettings s;
    s.type = set.inputType;
    s.mode = set.displayMode;
    s.enterAction = set.enterAction;
    s.arrowAction = set.arrowAction;
    s.controlLength = set.controlLength;
    s.setList = set.setList;
    s.selectText = set.selectText;
    s.autoTab = set.autoTab;
    s.enableEmpty = switchOn(Switch::EnableEmpty);
    s.runMode = runMode();
    s.maxLength = set.maxLength;
    s.display = fieldFormat();
    return s;
}

EditState VelmoraPrivate::viewState() const
{
    const bool selected = txtInput->hasSelectedText();
    return {txtInput->text(),
            selected ? int(txtInput->selectionStart()) : int(txtInput->cursorPosition()),
            int(txtInput->selectionLength())};
}

void VelmoraPrivate::notify(const char *name)
{
    if (affectsAccessibility(name))
        refreshAccessibility();
    Q_EMIT q->PropertyChanged(QString::fromLatin1(name));
}

// --- the one exit of an edit ---------------------------------------------------------

bool VelmoraPrivate::writeText(const QString &shown, const QString &stored, Origin origin,
                               bool notifyValue, std::optional<EditState> caret)
{
    const QString before = txtInput->text();
    const bool changed = before != shown;
    if (changed)
        replaceBoxText(before, shown);
    const auto caretMoves = [&] {
        const EditState now = viewState();
        return now.selStart != caret->selStart || now.selLength != caret->selLength;
    };
    if (caret) {
        // Each move of the box's caret costs a layout pass: only a caret that is not
        // already where the edit left it is moved.
        if (caretMoves() && caret->selLength > 0)
            txtInput->setSelection(caret->selStart, caret->selLength);
        else if (caretMoves())
            txtInput->setCursorPosition(caret->selStart);
    } else if (changed) {
        txtInput->setCursorPosition(0);
    }
    val.text = stored;
    ++val.generation;
    if (changed)
        access.clearError();
    if (origin == Origin::Typed && set.inputType == itNum)
        val.number = toNumber(textToValue(stored, fieldFormat()), set.parsed.regional);
    if (origin == Origin::Assigned)
        engine.clearHistory();
    if (changed && lblVis->isVisibleTo(q)) // a hidden label takes the text when shown
        lblVis->setText(shown);
    if (!changed)
        return true;
    QPointer<Velmora> alive(q);
    Q_EMIT q->Change();
    if (alive && notifyValue)
        notify("Value");
    return alive;
}

// A key changes a few characters: the box replaces just those, as it does when it edits
// by itself, instead of laying the whole text out anew.
void VelmoraPrivate::replaceBoxText(const QString &before, const QString &after)
{
    qsizetype head = 0;
    const qsizetype shorter = qMin(before.size(), after.size());
    while (head < shorter && before.at(head) == after.at(head))
        ++head;
    qsizetype tail = 0;
    while (tail < shorter - head
           && before.at(before.size() - 1 - tail) == after.at(after.size() - 1 - tail))
        ++tail;
    const qsizetype removed = before.size() - head - tail;
    const qsizetype added = after.size() - head - tail;
    constexpr qsizetype SmallEdit = 64;
    if (txtInput->isReadOnly() || removed > SmallEdit || added > SmallEdit) {
        txtInput->setText(after);
        return;
    }
    // Typing puts the caret (or the overwrite caret's selection) just where the change
    // goes: then the box is already set up for it.
    const EditState now = viewState();
    if (now.selStart != head || now.selLength != removed)
        txtInput->setSelection(int(head), int(removed));
    txtInput->insert(after.mid(head, added));
    if (txtInput->text() != after) // the box refused part of it (it never should)
        txtInput->setText(after);
}

bool VelmoraPrivate::apply(const EditOutcome &o, Origin origin)
{
    if (o.listIndex)
        val.listIndex = *o.listIndex;
    const quint64 generation = val.generation + 1;
    // After every edit the stored text is what the box shows (a menu cut of a number
    // keeps only its digits); the number is read again only when the text changed.
    if (!writeText(o.box.text, o.stored, o.textChanged ? origin : Origin::Shown, true, o.box))
        return false;
    // A handler of Change that set a value or a format has the last word.
    if (val.generation != generation)
        return true;
    if (o.listIndex && !notifyListChanged())
        return false;
    QPointer<Velmora> alive(q);
    if (o.arrowKey) {
        qint16 arrow = qint16(*o.arrowKey);
        Q_EMIT q->ArrowAction(arrow);
        if (!alive)
            return false;
    }
    for (const Report &r : o.reports)
        if (!report(r.number, r.value))
            return false;
    if (o.move == FocusMove::Next)
        sendTab();
    else if (o.move == FocusMove::Previous)
        sendShiftTab();
    if (o.dropDown)
        dropDown();
    return true;
}

bool VelmoraPrivate::report(int number, const QString &value)
{
    QPointer<Velmora> alive(q);
    val.error = qint16(number);
    qint16 n = val.error;
    QString text = messageText(number, value);
    Q_EMIT q->Error(n, text);
    if (!alive)
        return false;
    access.showError(text);
    if (!set.messages)
        return true;
    warningBeep();
    Platform::instance().messageBox(messageText(number, value), set.label, q);
    if (!alive)
        return false; // the host closed the form while the box was open
    if (q->isVisible() && (set.displayMode == dmChangeable || set.displayMode == dmLandable))
        txtInput->setFocus();
    return true;
}

// --- value ---------------------------------------------------------------------------

QString VelmoraPrivate::valueGet() const
{
    // A field whose value is a row of its list gives the row's value, not its text.
    if (const std::optional<QString> cell = listsValue() ? chosenValueCell() : std::nullopt)
        return textToValue(*cell, columnFormat(set.valueCol), true);
    return storedValue(val.text, fieldFormat());
}

bool VelmoraPrivate::valueLet(const QString &input)
{
    val.lastValue = q->varValue();
    const QString value = wellFormed(capped(input));
    FieldValueSettings settings = valueSettings();
    if (listsValue()) {
        settings.listRow = valueRow(value);
        if (settings.listRow >= 0) {
            const QString text = list.rows.cell(settings.listRow, set.textCol).toString();
            settings.listText = textToValue(text, columnFormat(set.textCol), true);
        }
        settings.valueColumnNumeric = list.columns.dataType(set.valueCol) == itNum;
    }
    const Assignment a = assignValue(value, settings, val.text);
    if (a.clearFirst && !a.show && !clear())
        return false;
    if (a.show) {
        if (a.clearFirst) {
            // Cleared and shown in one write: the baseline of Changed starts again.
            val.baseListIndex = -1;
        }
        val.listIndex = a.listIndex;
        if (set.inputType == itNum)
            val.number = a.show->number;
        if (!writeText(a.show->shown, a.show->stored, Origin::Assigned, false))
            return false;
        if (!notifyListChanged())
            return false;
        if (a.clearFirst)
            val.baseText = val.text;
    }
    for (const Report &r : a.reports)
        if (!report(r.number, r.value))
            return false;
    if (a.checkValueChanged && !valueChangedCheck())
        return false;
    if (a.notifyValue) {
        QPointer<Velmora> alive(q);
        notify("Value");
        return alive;
    }
    return true;
}

bool VelmoraPrivate::letValue(const QString &text)
{
    const ShownValue shown = showValue(wellFormed(capped(text)), valueSettings());
    if (set.inputType == itNum)
        val.number = shown.number;
    if (!writeText(shown.shown, shown.stored, Origin::Assigned))
        return false;
    return !shown.report || report(shown.report->number, shown.report->value);
}

bool VelmoraPrivate::clear()
{
    const QString empty = set.inputType == itDate ? set.parsed.emptyDateText : QString();
    val.listIndex = val.baseListIndex = list.notifiedIndex = -1;
    val.number.reset();
    if (!writeText(empty, empty, Origin::Assigned))
        return false;
    val.baseText = val.text;
    return true;
}

bool VelmoraPrivate::valueChangedCheck()
{
    const QVariant now = q->varValue();
    const auto isEmpty = [](const QVariant &v) {
        return !v.isValid();
    };
    const auto isNull = [](const QVariant &v) {
        return v.isValid() && v.metaType() == QMetaType::fromType<std::nullptr_t>();
    };
    bool differ;
    if (isEmpty(now) != isEmpty(val.lastValue) || isNull(now) != isNull(val.lastValue))
        differ = true;
    else if (isEmpty(now) || isNull(now))
        differ = false;
    else
        differ = now != val.lastValue;
    if (!differ)
        return true;
    val.lastValue = now;
    QPointer<Velmora> alive(q);
    Q_EMIT q->ValueChanged();
    return alive;
}

QVariant VelmoraPrivate::typedOf(const QString &text) const
{
    return storedTypedValue(text, fieldFormat(), set.nullable);
}

bool VelmoraPrivate::changedGet()
{
    if (!val.changed) {
        const QVariant base = typedOf(val.baseText);
        const QVariant now = typedOf(val.text);
        if (base.isValid() != now.isValid() || (base.isValid() && base != now))
            val.changed = true;
        else
            val.changed = val.baseListIndex != val.listIndex;
    }
    return val.changed;
}

// --- formats -------------------------------------------------------------------------

bool VelmoraPrivate::parseFormat()
{
    int message = 0;
    const RegionalSettings rs = Platform::instance().regionalSettings();
    const ConfiguredSeparators configured {set.desOddel, set.tisOddel, set.datOddel};
    set.parsed.regional = rs;
    switch (set.inputType) {
    case itNum:
        message = parseNumFormat(set.parsed, set.formatStr, rs, configured);
        break;
    case itAlfaNum:
        message = checkAlfaNumFormat(set.formatStr);
        break;
    case itDate:
        message = parseDateFormat(set.parsed, set.formatStr, 0, rs, configured);
        break;
    case itBool:
        parseBoolFormat(set.parsed.boolFormat, set.formatStr);
        // A lookup list built from the two texts follows the new format once lists exist.
        break;
    default:
        break; // an unknown type has no format: the field edits plain text
    }
    return message == 0 || report(message, QString());
}

bool VelmoraPrivate::assignFormat(bool isInputType, InpType newType, const QString &newFormat)
{
    const quint64 generation = ++set.formatGeneration;
    const QString kept = valueGet();
    const InpType oldType = set.inputType;
    const QString oldFormatStr = set.formatStr;
    const ParsedFormat oldFormat = set.parsed;
    if (isInputType) {
        set.inputType = newType;
        if (!clear())
            return false;
    } else {
        set.formatStr = wellFormed(capped(newFormat));
    }
    // A handler that assigned another format meanwhile has the last word.
    const auto overtaken = [&] {
        return set.formatGeneration != generation;
    };
    if (runMode()) {
        val.error = 0;
        if (isInputType)
            set.formatStr.clear(); // the new type starts from its default format
        if (!parseFormat())
            return false;
        if (overtaken())
            return true;
        // A half-typed date keeps what was typed in the new layout.
        const QString value = set.inputType == itDate && oldType == itDate
            ? moveDateParts(kept, oldFormat, set.parsed)
            : kept;
        if (!valueLet(value))
            return false;
        if (overtaken())
            return true;
        if (val.error != 0) {
            // The value does not fit: the previous format stays in force.
            set.inputType = oldType;
            set.parsed = oldFormat;
            set.formatStr = oldFormatStr;
            if (!valueLet(kept))
                return false;
        } else if (isInputType && set.inputType == itDate
                   && !apply(engine.setInsMode(editSettings(), viewState(), true))) {
            return false;
        }
    }
    notify(isInputType ? "InputType" : "FormatStr");
    if (isInputType && oldType != newType) {
        set.nullable = newType == itDate;
        notify("Nullable");
    }
    return true;
}

bool VelmoraPrivate::assignSeparator(QChar &member, const QString &text, InpType owner,
                                     const char *name)
{
    const quint64 generation = ++set.formatGeneration;
    const QString kept = valueGet();
    const QChar old = member;
    const ParsedFormat oldFormat = set.parsed;
    member = separatorFromText(text);
    if (runMode() && set.inputType == owner) {
        val.error = 0;
        if (!parseFormat())
            return false;
        const QString value = owner == itDate ? moveDateParts(kept, oldFormat, set.parsed) : kept;
        if (set.formatGeneration == generation && !valueLet(value))
            return false;
        if (set.formatGeneration == generation && val.error != 0) {
            member = old;
            if (!parseFormat() || !valueLet(kept))
                return false;
        }
    }
    notify(name);
    return true;
}

// --- services ------------------------------------------------------------------------

void VelmoraPrivate::warningBeep()
{
    if (set.crrr)
        Platform::instance().beep(400, 150);
}

bool VelmoraPrivate::insertToggled() const
{
    return Platform::instance().insertToggled();
}

void VelmoraPrivate::setInsertToggled(bool on)
{
    Platform::instance().setInsertToggled(on);
}

QString VelmoraPrivate::clipboardText() const
{
    // Whatever the clipboard holds enters the field well formed and cut to length.
    return wellFormed(capped(QGuiApplication::clipboard()->text()));
}

void VelmoraPrivate::setClipboardText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

// Focus moves are the form's own Tab order: a Tab key posted to the edit box takes
// effect after the key that caused it, exactly as the user's own Tab would.
void VelmoraPrivate::sendTab()
{
    QCoreApplication::postEvent(txtInput,
                                new QKeyEvent(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier));
}

void VelmoraPrivate::sendShiftTab()
{
    QCoreApplication::postEvent(
        txtInput, new QKeyEvent(QEvent::KeyPress, Qt::Key_Backtab, Qt::ShiftModifier));
}

} // namespace velmora
