#include "KeyMapping.h"
#include "Velmora_p.h"
#include "format/FormatParser.h"
#include "format/Regional.h"

#include <velmora/Velmora.h>

#include <QtCore/QScopedValueRollback>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolButton>

namespace velmora {

using namespace detail;

namespace {

// Keys that QLineEdit may handle itself: they move, select or copy, never edit.
bool leavesTextAlone(const QKeyEvent &e)
{
    static const QKeySequence::StandardKey editing[] = {
        QKeySequence::Undo,
        QKeySequence::Redo,
        QKeySequence::Cut,
        QKeySequence::Paste,
        QKeySequence::Delete,
        QKeySequence::Backspace,
        QKeySequence::DeleteStartOfWord,
        QKeySequence::DeleteEndOfWord,
        QKeySequence::DeleteEndOfLine,
        QKeySequence::DeleteCompleteLine,
        QKeySequence::InsertParagraphSeparator,
        QKeySequence::InsertLineSeparator,
    };
    for (auto key : editing)
        if (e.matches(key))
            return false;
    return true;
}

bool isTypedText(const QKeyEvent &e)
{
    const QString text = e.text();
    if (text.isEmpty() || !text.at(0).isPrint())
        return false;
    const Qt::KeyboardModifiers mods = e.modifiers();
    const bool ctrl = mods & Qt::ControlModifier;
    const bool alt = mods & Qt::AltModifier;
    return ctrl == alt; // plain, or Ctrl+Alt standing for AltGr
}

} // namespace

Velmora::Velmora(QWidget *parent) : QWidget(parent), d(std::make_unique<VelmoraPrivate>(this))
{
    d->setupControls();
    Q_EMIT Initialize();
    QObject::connect(d->txtInput, &QLineEdit::textChanged, this, [this] {
        // While a key is being handled the value follows the box at once, so that a
        // host reading Value in Change sees the key it was raised for.
        if (d->inKey)
            d->mText = d->txtInput->text();
        Q_EMIT Change();
        Q_EMIT PropertyChanged(QStringLiteral("Value"));
    });
    QObject::connect(d->cmdList, &QToolButton::clicked, this, [this] {
        Q_EMIT ButtonClick();
        d->dropDown();
    });
    QObject::connect(
        d->txtInput, &QLineEdit::customContextMenuRequested, this, [this](const QPoint &pos) {
            // The box's own menu would edit past the rules; this one goes
            // through them.
            QMenu menu(d->txtInput);
            const bool editable = d->mDisplayMode == dmChangeable;
            menu.addAction(tr("Zpět"), this, [this] { d->engine.undo(); })
                ->setEnabled(editable && d->engine.canUndo());
            menu.addAction(tr("Znovu"), this, [this] { d->engine.redo(); })
                ->setEnabled(editable && d->engine.canRedo());
            menu.addSeparator();
            const bool selected = d->txtInput->hasSelectedText();
            menu.addAction(tr("Vyjmout"), this, [this] { d->engine.cutText(); })
                ->setEnabled(editable && selected);
            menu.addAction(tr("Kopírovat"), d->txtInput, &QLineEdit::copy)->setEnabled(selected);
            menu.addAction(tr("Vložit"), this, [this] { d->engine.pasteText(); })
                ->setEnabled(editable);
            menu.addSeparator();
            menu.addAction(tr("Vybrat vše"), d->txtInput, &QLineEdit::selectAll);
            menu.exec(d->txtInput->mapToGlobal(pos));
            d->mText = d->txtInput->text();
        });
    // A new field parses its (default) format so that it is ready for a value.
    if (d->runMode())
        d->parseFormat();
    d->clear();
    d->applyDisplayState();
}

Velmora::~Velmora()
{
    d->txtInput->removeEventFilter(this);
    Q_EMIT Terminate();
}

QSize Velmora::sizeHint() const
{
    const QSize edit = d->txtInput->sizeHint();
    return {edit.width() + (d->mSetList ? edit.height() : 0) + 4, edit.height() + 4};
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
    const ValueFormat vf = d->fieldFormat();
    return typedValue(d->valueGet(), vf, d->mNullable);
}

void Velmora::setvarValue(const QVariant &value)
{
    const RegionalSettings rs = d->regional();
    QString text;
    if (!value.isValid() || value.isNull()) {
        text.clear();
    } else {
        switch (value.metaType().id()) {
        case QMetaType::Bool:
            if (d->mInputType == itBool)
                text = value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
            else
                text = value.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
            break;
        case QMetaType::Double:
        case QMetaType::Float:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Long:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            text = numberToString(value.toDouble(), rs);
            break;
        case QMetaType::QDate:
            text = dateToString(value.toDate(), rs);
            break;
        case QMetaType::QDateTime:
            text = dateToString(value.toDateTime().date(), rs);
            break;
        default:
            text = value.toString();
            break;
        }
    }
    d->valueLet(text);
}

QString Velmora::FormValue() const
{
    return d->txtInput->text();
}

QString Velmora::SQLValue() const
{
    return sqlValue(d->mText, d->fieldFormat(), !d->mSetList);
}

QString Velmora::PrecValue() const
{
    if (d->mInputType != itNum || d->mSetList)
        return QString();
    // Computed from the value as it stands, so that typing is reflected at once.
    const auto n = toNumber(d->valueGet(), d->regional());
    return n ? plainNumber(*n) : QString();
}

QVariant Velmora::LetValue(const QString &sRet)
{
    d->mText = d->letValue(sRet);
    d->refreshLabel();
    return d->mText;
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
    d->mChanged = changed;
    if (!changed) {
        d->mBaseText = d->mText;
        d->mBaseListIndex = d->mListIndex;
    }
    d->notify("Changed");
}

// --- format --------------------------------------------------------------------------

InpType Velmora::InputType() const
{
    return d->mInputType;
}

void Velmora::setInputType(InpType type)
{
    d->assignFormat(true, type, QString());
}

QString Velmora::FormatStr() const
{
    return d->mFormatStr;
}

void Velmora::setFormatStr(const QString &format)
{
    d->assignFormat(false, d->mInputType, format);
}

QString Velmora::FormatDesOddel() const
{
    return separatorToText(d->mDesOddel);
}

void Velmora::setFormatDesOddel(const QString &separator)
{
    d->assignSeparator(d->mDesOddel, separator, itNum, "FormatDesOddel");
}

QString Velmora::FormatTisOddel() const
{
    return separatorToText(d->mTisOddel);
}

void Velmora::setFormatTisOddel(const QString &separator)
{
    d->assignSeparator(d->mTisOddel, separator, itNum, "FormatTisOddel");
}

QString Velmora::FormatDatOddel() const
{
    return separatorToText(d->mDatOddel);
}

void Velmora::setFormatDatOddel(const QString &separator)
{
    d->assignSeparator(d->mDatOddel, separator, itDate, "FormatDatOddel");
}

ControlLengthConst Velmora::ControlLength() const
{
    return d->mControlLength;
}

void Velmora::setControlLength(ControlLengthConst length)
{
    const QString kept = d->valueGet();
    d->mControlLength = length;
    if (d->runMode())
        d->valueLet(kept);
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
        d->member = capped(value);                                                                 \
        d->notify(#Name);                                                                          \
    }

VELMORA_PLAIN_PROPERTY(qint16, MaxLength, mMaxLength)
VELMORA_PLAIN_PROPERTY(velmora::AlfaNumTrim, AlfaNumTrim, mAlfaNumTrim)
VELMORA_PLAIN_PROPERTY(bool, Nullable, mNullable)
VELMORA_PLAIN_PROPERTY(velmora::EntAction, EnterAction, mEnterAction)
VELMORA_PLAIN_PROPERTY(velmora::ArrAction, ArrowAction, mArrowAction)
VELMORA_PLAIN_PROPERTY(bool, AutoTab, mAutoTab)
VELMORA_PLAIN_PROPERTY(bool, SelectText, mSelectText)
VELMORA_PLAIN_PROPERTY(qint16, RefreshInt, mRefreshInt)
VELMORA_PLAIN_PROPERTY(qint16, Group, mGroup)
VELMORA_PLAIN_PROPERTY(bool, CheckValues, mCheckValues)
VELMORA_PLAIN_PROPERTY(bool, ListCheckValue, mListCheckValue)
VELMORA_PLAIN_PROPERTY(bool, EnableEmpty, mEnableEmpty)
VELMORA_PLAIN_PROPERTY(bool, Messages, mMessages)
VELMORA_PLAIN_PROPERTY(bool, Crrr, mCrrr)
VELMORA_PLAIN_PROPERTY(qint16, ValueCol, mValueCol)
VELMORA_PLAIN_PROPERTY(qint16, TextCol, mTextCol)
VELMORA_PLAIN_PROPERTY(qint16, MatchCol, mMatchCol)
VELMORA_PLAIN_PROPERTY(bool, ListAddNewItem, mListAddNewItem)
VELMORA_PLAIN_PROPERTY(quint32, ListBackColor, mListBackColor)
VELMORA_PLAIN_PROPERTY(quint32, ListForeColor, mListForeColor)
VELMORA_TEXT_PROPERTY(Label, mLabel)
VELMORA_TEXT_PROPERTY(SQLConnect, mSQLConnect)
VELMORA_TEXT_PROPERTY(SQLList, mSQLList)
VELMORA_TEXT_PROPERTY(ListFormatString, mListFormatString)
VELMORA_TEXT_PROPERTY(HideCol, mHideCol)
VELMORA_TEXT_PROPERTY(ListNewItemText, mListNewItemText)

// Properties that the layout and the display state read.
#define VELMORA_LAYOUT_PROPERTY(Type, Name, member)                                                \
    Type Velmora::Name() const                                                                     \
    {                                                                                              \
        return d->member;                                                                          \
    }                                                                                              \
    void Velmora::set##Name(Type value)                                                            \
    {                                                                                              \
        d->member = value;                                                                         \
        d->applyDisplayState();                                                                    \
        d->notify(#Name);                                                                          \
    }

VELMORA_LAYOUT_PROPERTY(velmora::DisplMode, DisplayMode, mDisplayMode)
VELMORA_LAYOUT_PROPERTY(bool, VisibleByLbl, mVisibleByLbl)
VELMORA_LAYOUT_PROPERTY(velmora::AlignConst, Alignment, alignment)
VELMORA_LAYOUT_PROPERTY(velmora::SpecialEffectConst, SpecialEffect, specialEffect)

#undef VELMORA_LAYOUT_PROPERTY
#undef VELMORA_PLAIN_PROPERTY
#undef VELMORA_TEXT_PROPERTY

// --- behaviour -----------------------------------------------------------------------

bool Velmora::InsMode() const
{
    return d->engine.insMode();
}

void Velmora::setInsMode(bool on)
{
    d->engine.setInsMode(on);
    d->notify("InsMode");
}

bool Velmora::SetList() const
{
    return d->mSetList;
}

void Velmora::setSetList(bool on)
{
    d->mSetList = on;
    d->cmdList->setArrowType(on ? Qt::DownArrow : Qt::NoArrow);
    d->applyDisplayState();
    d->notify("SetList");
}

// --- editing -------------------------------------------------------------------------

QString Velmora::SelText() const
{
    return d->box.selText();
}

qint16 Velmora::SelStart() const
{
    return qint16(d->box.selStart());
}

void Velmora::setSelStart(qint16 start)
{
    d->box.setSelStart(qMax<int>(0, start));
}

qint16 Velmora::SelLength() const
{
    return qint16(d->box.selLength());
}

void Velmora::setSelLength(qint16 length)
{
    d->box.setSelLength(qMax<int>(0, length));
}

void Velmora::DoKeyPress(qint16 &KeyAscii)
{
    int key = quint16(KeyAscii);
    const QScopedValueRollback<bool> handling(d->inKey, true);
    d->engine.doKeyPress(key);
    KeyAscii = qint16(key);
}

void Velmora::ChangeInsertMode()
{
    d->engine.changeInsertMode();
}

// --- checks and messages -------------------------------------------------------------

qint16 Velmora::Error() const
{
    return d->mError;
}

void Velmora::setError(qint16 number)
{
    d->mError = number;
}

void Velmora::Msg(QString &sText)
{
    if (!window()->isVisible())
        return;
    d->warningBeep();
    Platform::instance().messageBox(sText, d->mLabel, this);
    setFocus();
}

bool Velmora::DoValidate()
{
    return true;
}

qint16 Velmora::VystupniKontrola(const QString &)
{
    return 0;
}

void Velmora::VystupniKontrolaMsg(qint16 &, QString &) { }

bool Velmora::DoValidateAll()
{
    return true;
}

QVariant Velmora::ControlAll()
{
    return QVariant();
}

void Velmora::ClearAll() { }

void Velmora::ChangeConnectAll(QString &) { }

void Velmora::InitListAll() { }

void Velmora::setFormCheckValues(bool) { }

bool Velmora::FormChanged()
{
    return Changed();
}

void Velmora::setFormChanged(bool changed)
{
    setChanged(changed);
}

// --- lookup list ---------------------------------------------------------------------

qint32 Velmora::ListCount() const
{
    return 0;
}

bool Velmora::ListVisible() const
{
    return false;
}

bool Velmora::ListItemSelected() const
{
    if (d->mInputType == itBool)
        return false;
    return d->mSetList && (d->mListIndex >= 1 || (d->mListIndex == 0 && !d->mListAddNewItem));
}

bool Velmora::ListOK() const
{
    return !d->mSetList;
}

QString Velmora::GetSelectedElem(qint16) const
{
    return QString();
}

void Velmora::InitList(QSqlQuery *) { }

void Velmora::AddItem(QString &) { }

// --- appearance ----------------------------------------------------------------------

FieldFont *Velmora::Font() const
{
    return d->txtFont;
}

void Velmora::setFont(FieldFont *font)
{
    d->followTextFont(font);
    d->notify("Font");
}

FieldFont *Velmora::ListFont() const
{
    return d->lstFont;
}

void Velmora::setListFont(FieldFont *font)
{
    d->lstFont = font ? font : &d->ownListFont;
    d->notify("ListFont");
}

quint32 Velmora::BackColor() const
{
    return d->backColor;
}

void Velmora::setBackColor(quint32 color)
{
    d->backColor = color;
    d->mOriBC = color;
    d->setEditColors();
    d->notify("OriBC");
    d->notify("BackColor");
}

quint32 Velmora::ForeColor() const
{
    return d->foreColor;
}

void Velmora::setForeColor(quint32 color)
{
    d->foreColor = color;
    d->setEditColors();
    d->notify("ForeColor");
}

qint32 Velmora::hwnd() const
{
    return qint32(quintptr(effectiveWinId()));
}

// --- events of the edit box ----------------------------------------------------------

bool Velmora::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->txtInput || d->inPassThrough)
        return QWidget::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::KeyPress: {
        auto *e = static_cast<QKeyEvent *>(event);
        if (e->key() == Qt::Key_Tab || e->key() == Qt::Key_Backtab || e->key() == Qt::Key_Escape)
            return false; // the form's own keys
        int code = legacyKeyCode(*e);
        int shift = legacyShift(e->modifiers());
        const QScopedValueRollback<bool> handling(d->inKey, true);
        d->engine.keyDown(code, shift);
        if (code == 0)
            return true;
        if (isTypedText(*e)) {
            for (QChar c : e->text()) {
                int k = c.unicode();
                d->engine.keyPress(k);
            }
            return true;
        }
        if (!leavesTextAlone(*e))
            return true;
        // Movement and selection keys are the box's own; its text must not change.
        const QString before = d->txtInput->text();
        d->inPassThrough = true;
        static_cast<QObject *>(d->txtInput)->event(e);
        d->inPassThrough = false;
        if (d->txtInput->text() != before)
            d->box.setText(before);
        // A key the box ignored (F1 at design time, say) goes on to the form: Qt gives
        // it to the box once more (not to this filter), which ignores it again, and then
        // to the parent.
        return e->isAccepted();
    }
    case QEvent::KeyRelease: {
        auto *e = static_cast<QKeyEvent *>(event);
        int code = legacyKeyCode(*e);
        int shift = legacyShift(e->modifiers());
        d->engine.keyUp(code, shift);
        return false;
    }
    case QEvent::InputMethod: {
        auto *e = static_cast<QInputMethodEvent *>(event);
        if (!e->commitString().isEmpty()) {
            const QString committed = e->commitString();
            e->setCommitString(QString());
            d->inPassThrough = true;
            static_cast<QObject *>(d->txtInput)->event(e);
            d->inPassThrough = false;
            const QScopedValueRollback<bool> handling(d->inKey, true);
            d->engine.commitText(committed);
            return true;
        }
        return false;
    }
    case QEvent::FocusIn: {
        d->inPassThrough = true;
        static_cast<QObject *>(d->txtInput)->event(event);
        d->inPassThrough = false;
        d->focusIn();
        return true;
    }
    case QEvent::FocusOut: {
        auto *e = static_cast<QFocusEvent *>(event);
        d->inPassThrough = true;
        static_cast<QObject *>(d->txtInput)->event(event);
        d->inPassThrough = false;
        // A message box or a popup of the field is not leaving it.
        if (e->reason() != Qt::PopupFocusReason && e->reason() != Qt::ActiveWindowFocusReason)
            d->focusOut();
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove: {
        auto *e = static_cast<QMouseEvent *>(event);
        qint16 button = qint16((e->buttons() | e->button()) & 7);
        qint16 shift = qint16(legacyShift(e->modifiers()));
        float x = float(e->position().x()), y = float(e->position().y());
        if (event->type() == QEvent::MouseButtonPress) {
            Q_EMIT MouseDown(button, shift, x, y);
            if (e->button() == Qt::MiddleButton)
                return true; // pasting the selection would pass the rules by
        } else if (event->type() == QEvent::MouseButtonRelease) {
            Q_EMIT MouseUp(button, shift, x, y);
            if (e->button() == Qt::LeftButton
                && d->txtInput->rect().contains(e->position().toPoint()))
                Q_EMIT TxtBoxClick();
        } else {
            Q_EMIT MouseMove(button, shift, x, y);
            if (d->mDisplayMode == dmChangeable && d->engine.insMode() && d->box.selLength() == 0
                && !(e->buttons() & Qt::LeftButton))
                d->box.setSelLength(1);
        }
        return false;
    }
    case QEvent::MouseButtonDblClick: {
        bool cancel = false;
        Q_EMIT TxtBoxDblClick(cancel);
        return cancel;
    }
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

void Velmora::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    d->layoutControls();
}

void Velmora::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    Q_EMIT Show();
}

void Velmora::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    Q_EMIT Hide();
}

} // namespace velmora
