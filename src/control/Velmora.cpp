// The public face of a field: every member forwards to the private side.

#include "Velmora_p.h"
#include "format/FormatParser.h"
#include "format/Regional.h"
#include "format/Text.h"

#include <velmora/Platform.h>

#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

#include <utility>

namespace velmora {

using namespace detail;

namespace {

Velmora::CreationHook &creationHook()
{
    static Velmora::CreationHook hook;
    return hook;
}

} // namespace

Velmora::CreationHook Velmora::setCreationHook(CreationHook hook)
{
    return std::exchange(creationHook(), std::move(hook));
}

Velmora::Velmora(QWidget *parent) : QWidget(parent), d(std::make_unique<VelmoraPrivate>(this))
{
    if (const CreationHook &hook = creationHook())
        hook(this);
    Q_EMIT Initialize();
    QObject::connect(d->cmdList, &QToolButton::clicked, this, [this] {
        QPointer<Velmora> alive(this);
        Q_EMIT ButtonClick();
        if (alive)
            d->openList();
    });
    QObject::connect(d->txtInput, &QLineEdit::customContextMenuRequested, this,
                     [this](const QPoint &pos) { d->contextMenu(pos); });
    // A new field parses its (default) format so that it is ready for a value.
    if (d->runMode())
        d->parseFormat();
    d->clear();
    d->look.applyDisplayState(d->set.displayMode, true, false);
}

Velmora::~Velmora()
{
    // The list is released before Terminate, so that a handler of it finds none.
    delete d->list.window;
    d->list.model = nullptr;
    d->list.rows.clear();
    d->list.columns = {};
    Q_EMIT Terminate();
}

QSize Velmora::sizeHint() const
{
    const QSize edit = d->txtInput->sizeHint();
    return {edit.width() + (d->set.setList ? edit.height() : 0) + 4, edit.height() + 4};
}

// --- value ---------------------------------------------------------------------------

QString Velmora::Value() const
{
    return d->valueGet();
}

void Velmora::setValue(const QString &value)
{
    d->valueLet(value);
}

QVariant Velmora::varValue() const
{
    // A value taken from the list is typed by the list's value column.
    if (d->listsValue() && d->chosenValueCell())
        return typedValue(d->valueGet(), d->columnFormat(d->set.valueCol), d->set.nullable);
    return storedTypedValue(d->val.text, d->fieldFormat(), d->set.nullable);
}

void Velmora::setvarValue(const QVariant &value)
{
    d->valueLet(variantText(value, d->set.inputType, d->set.parsed.regional));
}

QString Velmora::FormValue() const
{
    return d->txtInput->text();
}

QString Velmora::SQLValue() const
{
    // With a list, the value column's cell of the matching row, or nothing.
    if (d->listsValue()) {
        const std::optional<QString> cell = d->chosenValueCell();
        return cell ? sqlValue(*cell, d->columnFormat(d->set.valueCol)) : QString();
    }
    return sqlValue(d->val.text, d->fieldFormat());
}

QString Velmora::PrecValue() const
{
    if (d->listsValue()) {
        if (d->list.columns.dataType(d->set.valueCol) != itNum || !d->chosenValueCell())
            return QString();
        const auto n = toNumber(d->valueGet(), d->set.parsed.regional);
        return n ? plainNumber(*n) : QString();
    }
    if (d->set.inputType != itNum || d->set.setList || trimBlanks(d->val.text).isEmpty()
        || !d->val.number)
        return QString();
    return plainNumber(*d->val.number);
}

QVariant Velmora::LetValue(const QString &sRet)
{
    if (!d->letValue(sRet))
        return QVariant();
    return d->val.text;
}

void Velmora::Clear()
{
    d->clear();
}

bool Velmora::Changed()
{
    return d->changedGet();
}

void Velmora::setChanged(bool changed)
{
    d->val.changed = changed;
    if (!changed) {
        d->val.baseText = d->val.text;
        d->val.baseListIndex = d->val.listIndex;
    }
    d->notify("Changed");
}

// --- format --------------------------------------------------------------------------

InpType Velmora::InputType() const
{
    return d->set.inputType;
}

void Velmora::setInputType(InpType type)
{
    d->assignFormat(true, type, QString());
}

QString Velmora::FormatStr() const
{
    return d->set.formatStr;
}

void Velmora::setFormatStr(const QString &format)
{
    d->assignFormat(false, d->set.inputType, format);
}

QString Velmora::FormatDesOddel() const
{
    return separatorToText(d->set.desOddel);
}

void Velmora::setFormatDesOddel(const QString &separator)
{
    d->assignSeparator(d->set.desOddel, separator, itNum, "FormatDesOddel");
}

QString Velmora::FormatTisOddel() const
{
    return separatorToText(d->set.tisOddel);
}

void Velmora::setFormatTisOddel(const QString &separator)
{
    d->assignSeparator(d->set.tisOddel, separator, itNum, "FormatTisOddel");
}

QString Velmora::FormatDatOddel() const
{
    return separatorToText(d->set.datOddel);
}

void Velmora::setFormatDatOddel(const QString &separator)
{
    d->assignSeparator(d->set.datOddel, separator, itDate, "FormatDatOddel");
}

ControlLengthConst Velmora::ControlLength() const
{
    return d->set.controlLength;
}

void Velmora::setControlLength(ControlLengthConst length)
{
    const QString kept = d->valueGet();
    d->set.controlLength = length;
    if (d->runMode() && !d->valueLet(kept))
        return;
    d->notify("ControlLength");
}

#define VELMORA_PLAIN_PROPERTY(Type, Name, member)                                                 \
    Type Velmora::Name() const                                                                     \
    {                                                                                              \
        return d->member;                                                                          \
    }                                                                                              \
    void Velmora::set##Name(Type value)                                                            \
    {                                                                                              \
        d->member = value;                                                                         \
        d->notify(#Name);                                                                          \
    }

#define VELMORA_TEXT_PROPERTY(Name, member)                                                        \
    QString Velmora::Name() const                                                                  \
    {                                                                                              \
        return d->member;                                                                          \
    }                                                                                              \
    void Velmora::set##Name(const QString &value)                                                  \
    {                                                                                              \
        d->member = wellFormed(capped(value));                                                     \
        d->notify(#Name);                                                                          \
    }

VELMORA_PLAIN_PROPERTY(qint16, MaxLength, set.maxLength)
VELMORA_PLAIN_PROPERTY(velmora::AlfaNumTrim, AlfaNumTrim, set.alfaNumTrim)
VELMORA_PLAIN_PROPERTY(bool, Nullable, set.nullable)
VELMORA_PLAIN_PROPERTY(velmora::EntAction, EnterAction, set.enterAction)
VELMORA_PLAIN_PROPERTY(velmora::ArrAction, ArrowAction, set.arrowAction)
VELMORA_PLAIN_PROPERTY(bool, AutoTab, set.autoTab)
VELMORA_PLAIN_PROPERTY(bool, SelectText, set.selectText)
VELMORA_PLAIN_PROPERTY(qint16, RefreshInt, set.refreshInt)
VELMORA_PLAIN_PROPERTY(qint16, Group, set.group)
VELMORA_PLAIN_PROPERTY(bool, CheckValues, set.switches.checkValues)
VELMORA_PLAIN_PROPERTY(bool, ListCheckValue, set.switches.listCheckValue)
VELMORA_PLAIN_PROPERTY(bool, EnableEmpty, set.switches.enableEmpty)
VELMORA_PLAIN_PROPERTY(bool, Messages, set.messages)
VELMORA_PLAIN_PROPERTY(bool, Crrr, set.crrr)
VELMORA_PLAIN_PROPERTY(qint16, ValueCol, set.valueCol)
VELMORA_PLAIN_PROPERTY(qint16, TextCol, set.textCol)
VELMORA_PLAIN_PROPERTY(qint16, MatchCol, set.matchCol)
VELMORA_PLAIN_PROPERTY(bool, ListAddNewItem, set.listAddNewItem)

VELMORA_TEXT_PROPERTY(Label, set.label)
VELMORA_TEXT_PROPERTY(SQLConnect, set.sqlConnect)
VELMORA_TEXT_PROPERTY(SQLList, set.sqlList)
VELMORA_TEXT_PROPERTY(ListFormatString, set.listFormatString)
VELMORA_TEXT_PROPERTY(HideCol, set.hideCol)
VELMORA_TEXT_PROPERTY(ListNewItemText, set.listNewItemText)

#undef VELMORA_PLAIN_PROPERTY
#undef VELMORA_TEXT_PROPERTY

DisplMode Velmora::DisplayMode() const
{
    return d->set.displayMode;
}

void Velmora::setDisplayMode(DisplMode mode)
{
    d->set.displayMode = mode;
    d->look.applyDisplayState(mode, VisibleByLbl(), d->set.setList);
    d->lblVis->setText(d->txtInput->text());
    d->notify("DisplayMode");
}

// The label shows the value of a visible field; the rest of the look is the
// Appearance's.
#define VELMORA_LOOK_PROPERTY(Type, Name, member)                                                  \
    Type Velmora::Name() const                                                                     \
    {                                                                                              \
        return d->look.member;                                                                     \
    }                                                                                              \
    void Velmora::set##Name(Type value)                                                            \
    {                                                                                              \
        d->look.member = value;                                                                    \
        d->look.applyDisplayState(d->set.displayMode, VisibleByLbl(), d->set.setList);             \
        d->notify(#Name);                                                                          \
    }

VELMORA_LOOK_PROPERTY(velmora::AlignConst, Alignment, alignment)
VELMORA_LOOK_PROPERTY(velmora::SpecialEffectConst, SpecialEffect, specialEffect)

#undef VELMORA_LOOK_PROPERTY

bool Velmora::VisibleByLbl() const
{
    return d->visibleByLbl;
}

void Velmora::setVisibleByLbl(bool on)
{
    d->visibleByLbl = on;
    d->look.applyDisplayState(d->set.displayMode, on, d->set.setList);
    d->lblVis->setText(d->txtInput->text());
    d->notify("VisibleByLbl");
}

// --- behaviour -----------------------------------------------------------------------

bool Velmora::InsMode() const
{
    return d->engine.insMode();
}

void Velmora::setInsMode(bool on)
{
    if (!d->apply(d->engine.setInsMode(d->editSettings(), d->viewState(), on)))
        return;
    d->notify("InsMode");
}

bool Velmora::SetList() const
{
    return d->set.setList;
}

void Velmora::setSetList(bool on)
{
    d->set.setList = on;
    d->cmdList->setArrowType(on ? Qt::DownArrow : Qt::NoArrow);
    d->look.applyDisplayState(d->set.displayMode, VisibleByLbl(), on);
    d->notify("SetList");
}

// --- editing -------------------------------------------------------------------------

QString Velmora::SelText() const
{
    return d->txtInput->selectedText();
}

qint16 Velmora::SelStart() const
{
    return qint16(d->viewState().selStart);
}

void Velmora::setSelStart(qint16 start)
{
    d->txtInput->setCursorPosition(qBound(0, int(start), int(d->txtInput->text().size())));
}

qint16 Velmora::SelLength() const
{
    return qint16(d->txtInput->selectionLength());
}

void Velmora::setSelLength(qint16 length)
{
    const int start = d->viewState().selStart;
    const int n = qBound(0, int(length), int(d->txtInput->text().size()) - start);
    if (n == 0)
        d->txtInput->setCursorPosition(start);
    else
        d->txtInput->setSelection(start, n);
}

void Velmora::DoKeyPress(qint16 &KeyAscii)
{
    // A lone surrogate is no character of a well-formed text.
    const char16_t key = QChar::isSurrogate(quint16(KeyAscii))
        ? char16_t(QChar::ReplacementCharacter)
        : char16_t(quint16(KeyAscii));
    d->apply(d->engine.keyPress(d->editSettings(), d->viewState(), key));
}

void Velmora::ChangeInsertMode()
{
    d->engine.changeInsertMode(d->set.inputType);
}

// --- checks and messages -------------------------------------------------------------

qint16 Velmora::Error() const
{
    return d->val.error;
}

void Velmora::setError(qint16 number)
{
    d->val.error = number;
}

void Velmora::Msg(QString &sText)
{
    if (!window()->isVisible())
        return;
    QPointer<Velmora> alive(this);
    d->warningBeep();
    Platform::instance().messageBox(sText, d->set.label, this);
    if (alive) // the host may close the form while the box is open
        setFocus();
}

// --- lookup list ---------------------------------------------------------------------

quint32 Velmora::ListBackColor() const
{
    return d->set.listBackColor;
}

void Velmora::setListBackColor(quint32 color)
{
    d->set.listBackColor = color;
    d->applyListLook();
    d->notify("ListBackColor");
}

quint32 Velmora::ListForeColor() const
{
    return d->set.listForeColor;
}

void Velmora::setListForeColor(quint32 color)
{
    d->set.listForeColor = color;
    d->applyListLook();
    d->notify("ListForeColor");
}

qint32 Velmora::ListCount() const
{
    return d->list.window ? d->list.rows.rowCount() : 0;
}

bool Velmora::ListVisible() const
{
    return d->list.window && d->list.window->isVisible();
}

bool Velmora::ListItemSelected() const
{
    if (d->set.inputType == itBool)
        return false;
    return d->set.setList
        && (d->val.listIndex >= 1 || (d->val.listIndex == 0 && !d->set.listAddNewItem));
}

bool Velmora::ListOK() const
{
    return !d->set.setList || d->val.listIndex != -1;
}

QString Velmora::GetSelectedElem(qint16 nSl) const
{
    if (!d->list.window || d->val.listIndex < 0)
        return QString();
    return d->list.rows.cell(d->val.listIndex, nSl).toString();
}

void Velmora::InitList(QSqlQuery *Rs)
{
    d->initList(Rs);
}

void Velmora::AddItem(QString &sRet)
{
    d->addItem(sRet);
}

// --- appearance ----------------------------------------------------------------------

FieldFont *Velmora::Font() const
{
    return d->look.textFont();
}

void Velmora::setFont(FieldFont *font)
{
    d->look.followTextFont(font);
    d->notify("Font");
}

FieldFont *Velmora::ListFont() const
{
    return d->look.listFont();
}

void Velmora::setListFont(FieldFont *font)
{
    d->look.followListFont(font);
    d->look.listFontChanged();
    d->notify("ListFont");
}

quint32 Velmora::BackColor() const
{
    return d->look.backColor;
}

void Velmora::setBackColor(quint32 color)
{
    d->look.backColor = color;
    d->look.oriBC = color;
    d->look.applyColors();
    d->notify("OriBC");
    d->notify("BackColor");
}

quint32 Velmora::ForeColor() const
{
    return d->look.foreColor;
}

void Velmora::setForeColor(quint32 color)
{
    d->look.foreColor = color;
    d->look.applyColors();
    d->notify("ForeColor");
}

qint32 Velmora::hwnd() const
{
    return qint32(quintptr(effectiveWinId()));
}

void Velmora::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    d->look.layout(d->set.setList);
}

void Velmora::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    d->createShortcutButtons();
    d->refreshAccessibility(); // the form has its labels by now
    Q_EMIT Show();
}

void Velmora::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    Q_EMIT Hide();
}

} // namespace velmora
