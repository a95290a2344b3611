#include "Velmora_p.h"
#include "format/FormatParser.h"
#include "format/Regional.h"
#include "validation/Messages.h"

#include <velmora/StrF.h>

#include <QtCore/QTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

namespace velmora {

using namespace detail;

namespace {

QString trimBlanks(const QString &s)
{
    return trimSides(s, atLeftRight);
}

// Draws the cross line over a field shown crossed out.
class CrossLine final : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override;
};

} // namespace
} // namespace velmora

#include <QtGui/QPainter>

namespace velmora {
namespace {
void CrossLine::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setPen(QPen(palette().color(QPalette::WindowText), 1));
    p.drawLine(rect().topLeft(), rect().bottomRight());
    p.drawLine(rect().bottomLeft(), rect().topRight());
}
} // namespace

VelmoraPrivate::VelmoraPrivate(Velmora *field)
    : q(field), txtInput(new QLineEdit(field)), box(txtInput), engine(*this, box)
{ }

VelmoraPrivate::~VelmoraPrivate() = default;

void VelmoraPrivate::setupControls()
{
    imgFrame = new QFrame(q);
    imgFrame->setObjectName(QStringLiteral("imgFrame"));
    imgFrame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    imgFrame->lower();

    txtInput->setObjectName(QStringLiteral("txtInput"));
    txtInput->setFrame(false);
    txtInput->setDragEnabled(false);
    txtInput->setAcceptDrops(false);
    txtInput->setContextMenuPolicy(Qt::CustomContextMenu);
    txtInput->installEventFilter(q);
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

    shpMriz = new CrossLine(q);
    shpMriz->setObjectName(QStringLiteral("shpMriz"));
    shpMriz->setAttribute(Qt::WA_TransparentForMouseEvents);
    shpMriz->hide();

    ownTextFont.assign(txtInput->font());
    ownListFont.assign(lblVis->font());
    followTextFont(&ownTextFont);
    lstFont = &ownListFont;
    mOriBC = backColor;
    setEditColors();
}

void VelmoraPrivate::followTextFont(FieldFont *font)
{
    QObject::disconnect(txtFontConnection);
    txtFont = font ? font : &ownTextFont;
    txtInput->setFont(txtFont->toQFont(txtInput->font()));
    lblVis->setFont(txtFont->toQFont(lblVis->font()));
    txtFontConnection
        = QObject::connect(txtFont, &FieldFont::FontChanged, q, [this](const QString &attribute) {
              QFont f = txtInput->font();
              FieldFont::applyAttribute(*txtFont, f, attribute);
              txtInput->setFont(f);
              QFont l = lblVis->font();
              FieldFont::applyAttribute(*txtFont, l, attribute);
              lblVis->setFont(l);
          });
}

void VelmoraPrivate::layoutControls()
{
    const QRect r = q->rect();
    imgFrame->setGeometry(r);
    const int frame = specialEffect == fmSpecialEffectFlat ? 1 : 2;
    QRect inner = r.adjusted(frame, frame, -frame, -frame);
    if (mSetList) {
        const int w = qMin(inner.height() + 2, inner.width() / 2);
        cmdList->setGeometry(inner.right() - w + 1, inner.top(), w, inner.height());
        inner.setRight(inner.right() - w);
    }
    txtInput->setGeometry(inner);
    lblVis->setGeometry(inner);
    shpMriz->setGeometry(inner);
}

void VelmoraPrivate::applyDisplayState()
{
    // Changeable and landable fields edit in the box; a visible field shows its value,
    // in the label when VisibleByLbl is set; an invisible one shows nothing; a crossed
    // out one shows its value struck through.
    const bool editing = mDisplayMode == dmChangeable || mDisplayMode == dmLandable;
    const bool useLabel
        = (mDisplayMode == dmVisible || mDisplayMode == dmCrossline) && mVisibleByLbl;
    txtInput->setVisible(mDisplayMode != dmInvisible && !useLabel);
    txtInput->setReadOnly(!editing);
    lblVis->setVisible(useLabel);
    shpMriz->setVisible(mDisplayMode == dmCrossline);
    shpMriz->raise();
    cmdList->setVisible(mSetList && mDisplayMode != dmInvisible);
    cmdList->setEnabled(editing);
    imgFrame->setVisible(mDisplayMode != dmInvisible);
    switch (specialEffect) {
    case fmSpecialEffectFlat:
        imgFrame->setFrameStyle(QFrame::Box | QFrame::Plain);
        break;
    case fmSpecialEffectRaised:
        imgFrame->setFrameStyle(QFrame::Panel | QFrame::Raised);
        break;
    case fmSpecialEffectEtchel:
        imgFrame->setFrameStyle(QFrame::Box | QFrame::Sunken);
        break;
    case fmSpecialEffectBump:
        imgFrame->setFrameStyle(QFrame::Box | QFrame::Raised);
        break;
    default:
        imgFrame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        break;
    }
    const Qt::Alignment a = alignment == vbCenter ? Qt::AlignHCenter
        : alignment == vbRightJustify             ? Qt::AlignRight
                                                  : Qt::AlignLeft;
    txtInput->setAlignment(a | Qt::AlignVCenter);
    lblVis->setAlignment(a | Qt::AlignVCenter);
    layoutControls();
}

bool VelmoraPrivate::runMode() const
{
    for (const QObject *o = q; o; o = o->parent()) {
        const QVariant v = o->property("UserMode");
        if (v.isValid())
            return v.toBool();
    }
    return true;
}

ValueFormat VelmoraPrivate::fieldFormat() const
{
    ValueFormat vf;
    vf.type = mInputType;
    vf.format = mFormatStr;
    vf.parsed = &pf;
    vf.boolFormat = pf.boolFormat;
    vf.dateSlot = 0;
    vf.trim = mAlfaNumTrim;
    vf.regional = regional();
    return vf;
}

ConfiguredSeparators VelmoraPrivate::configuredSeparators() const
{
    return {mDesOddel, mTisOddel, mDatOddel};
}

void VelmoraPrivate::notify(const char *name)
{
    Q_EMIT q->PropertyChanged(QString::fromLatin1(name));
}

int VelmoraPrivate::parseFormat()
{
    int message = 0;
    const RegionalSettings rs = regional();
    switch (mInputType) {
    case itNum:
        message = parseNumFormat(pf, mFormatStr, rs, configuredSeparators());
        break;
    case itAlfaNum:
        message = checkAlfaNumFormat(mFormatStr);
        break;
    case itDate:
        message = parseDateFormat(pf, mFormatStr, 0, rs, configuredSeparators());
        break;
    case itBool:
        parseBoolFormat(pf.boolFormat, mFormatStr);
        // A lookup list built from the two texts follows the new format once lists exist.
        break;
    default:
        break; // an unknown type has no format: the field edits plain text
    }
    if (message)
        reportError(message, QString());
    return message;
}

void VelmoraPrivate::assignFormat(bool isInputType, InpType newType, const QString &newFormat)
{
    const QString kept = valueGet();
    const InpType oldType = mInputType;
    const QString oldFormatStr = mFormatStr;
    if (isInputType) {
        mInputType = newType;
        clear();
    } else {
        mFormatStr = capped(newFormat);
    }
    if (runMode()) {
        const ParsedFormat savedFormat = pf;
        mError = 0;
        if (isInputType)
            mFormatStr.clear(); // the new type starts from its default format
        parseFormat();
        if (mInputType == itDate) {
            setBoxText(pf.emptyDateText);
            mText = txtInput->text();
        }
        valueLet(kept);
        if (mError != 0) {
            // The value does not fit: the previous format stays in force.
            if (isInputType)
                mInputType = oldType;
            pf = savedFormat;
            mFormatStr = oldFormatStr;
            valueLet(kept);
        } else if (isInputType && mInputType == itDate) {
            engine.setInsMode(true);
        }
    }
    notify(isInputType ? "InputType" : "FormatStr");
    if (isInputType && oldType != newType) {
        mNullable = newType == itDate;
        notify("Nullable");
    }
}

void VelmoraPrivate::assignSeparator(QChar &member, const QString &text, InpType owner,
                                     const char *name)
{
    const QString kept = valueGet();
    const QChar old = member;
    member = separatorFromText(text);
    if (runMode() && mInputType == owner) {
        mError = 0;
        parseFormat();
        valueLet(kept);
        if (mError != 0) {
            member = old;
            parseFormat();
            valueLet(kept);
        }
    }
    notify(name);
}

// --- value -------------------------------------------------------------------------

QString VelmoraPrivate::valueGet() const
{
    // A string pattern is applied once, when the text is shown; the stored text is
    // already in that form and only the trimming applies.
    if (mInputType == itAlfaNum)
        return trimSides(mText, mAlfaNumTrim);
    return textToValue(mText, fieldFormat());
}

void VelmoraPrivate::valueLet(const QString &input)
{
    const QString v = capped(input);
    mLastValue = q->varValue();
    engine.clearHistory();

    if (mInputType == itBool) {
        if (v.isEmpty() && !isSet(QStringLiteral("EnableEmpty"))) {
            reportError(1, v);
            return;
        }
        const BoolDisplay shown = boolDisplayText(v, pf.boolFormat, regional(), false);
        mListIndex = qint16(shown.row);
        mText = shown.text;
        setBoxText(mText);
    } else {
        QString t = v;
        if (mSetList) {
            // Without a loaded list no row matches.
            mListIndex = -1;
            const bool empty = isSet(QStringLiteral("EnableEmpty")) && trimBlanks(v).isEmpty();
            if (isSet(QStringLiteral("ListCheckValue"))) {
                if (empty) {
                    clear();
                    valueChangedCheck();
                    return;
                }
                reportError(1, v);
                t = mText;
            } else {
                clear();
                if (empty)
                    return;
            }
        }
        mText = letValue(t);
    }
    refreshLabel();
    mExitText = mText;
    valueChangedCheck();
    notify("Value");
}

QString VelmoraPrivate::letValue(const QString &sRet)
{
    QString s = mInputType == itAlfaNum ? trimSides(capped(sRet), mAlfaNumTrim)
                                        : trimSides(capped(sRet), atLeftRight);
    const RegionalSettings rs = regional();
    if (!s.isEmpty()) {
        if (mInputType == itNum && !isNumeric(s, rs))
            reportError(6, s);
        else if (mInputType == itDate && !isDate(s, rs))
            reportError(7, s);
    }
    if (mInputType == itNum && !s.isEmpty())
        mStoredNumber = toNumber(s, rs).value_or(0);
    if (mInputType == itAlfaNum && mMaxLength > 0)
        s = s.left(mMaxLength);

    if (!s.isEmpty())
        setBoxText(displayText(s));
    else
        setBoxText(mInputType == itDate ? pf.emptyDateText : QString());

    QString result = txtInput->text();
    if (mInputType == itNum)
        result = StrF().Filter(result, QStringLiteral("-0123456789") + pf.decimalSeparator);
    return result;
}

void VelmoraPrivate::clear()
{
    setBoxText(mInputType == itDate ? pf.emptyDateText : QString());
    mText = txtInput->text();
    mExitText = mBaseText = mText;
    mListIndex = mBaseListIndex = mNotifiedListIndex = -1;
    engine.clearHistory();
    refreshLabel();
}

void VelmoraPrivate::valueChangedCheck()
{
    const QVariant now = q->varValue();
    const auto isEmpty = [](const QVariant &v) {
        return !v.isValid();
    };
    const auto isNull = [](const QVariant &v) {
        return v.isValid() && v.metaType() == QMetaType::fromType<std::nullptr_t>();
    };
    bool differ;
    if (isEmpty(now) != isEmpty(mLastValue) || isNull(now) != isNull(mLastValue))
        differ = true;
    else if (isEmpty(now) || isNull(now))
        differ = false;
    else
        differ = now != mLastValue;
    if (differ) {
        mLastValue = now;
        Q_EMIT q->ValueChanged();
    }
}

QVariant VelmoraPrivate::typedOf(const QString &text) const
{
    const ValueFormat vf = fieldFormat();
    return typedValue(textToValue(text, vf), vf, mNullable);
}

bool VelmoraPrivate::changedGet()
{
    if (!mChanged) {
        const QVariant base = typedOf(mBaseText);
        const QVariant now = typedOf(mText);
        if (base.isValid() != now.isValid() || (base.isValid() && base != now))
            mChanged = true;
        else
            mChanged = mBaseListIndex != mListIndex;
    }
    return mChanged;
}

qint16 VelmoraPrivate::completeEntry()
{
    const ValueFormat vf = fieldFormat();
    const QString text = txtInput->text();
    if (mInputType == itDate) {
        if (!trimBlanks(text).isEmpty() && text != pf.emptyDateText) {
            const auto done = completeDate(text, vf, Platform::instance().today());
            if (!done)
                return 1;
            setBoxText(*done);
        }
    } else if (mInputType == itNum) {
        if (isLoneNumericSign(text, pf.decimalSeparator)) {
            setBoxText(QString());
        } else if (!text.isEmpty()) {
            const QString shown = displayText(textToValue(text, vf));
            if (shown != text)
                setBoxText(shown);
        }
        return 0;
    }
    mText = txtInput->text();
    return 0;
}

// --- messages ----------------------------------------------------------------------

void VelmoraPrivate::reportError(int number, const QString &value)
{
    mError = qint16(number);
    qint16 n = mError;
    QString text = messageText(number, value);
    Q_EMIT q->Error(n, text);
    if (!mMessages)
        return;
    warningBeep();
    Platform::instance().messageBox(messageText(number, value), mLabel, q);
    if (q->isVisible() && (mDisplayMode == dmChangeable || mDisplayMode == dmLandable))
        txtInput->setFocus();
}

void VelmoraPrivate::warningBeep()
{
    if (mCrrr)
        Platform::instance().beep(400, 150);
}

bool VelmoraPrivate::isSet(const QString &name)
{
    const auto value = detail::isSet(name, {mCheckValues, mListCheckValue, mEnableEmpty});
    if (value)
        return *value;
    Platform::instance().messageBox(unknownSwitchText(name), mLabel, q);
    return false;
}

// --- the edit box ------------------------------------------------------------------

void VelmoraPrivate::setBoxText(const QString &text)
{
    box.setText(text);
}

void VelmoraPrivate::refreshLabel()
{
    lblVis->setText(txtInput->text());
}

QColor VelmoraPrivate::toQColor(quint32 color, QPalette::ColorRole systemRole)
{
    if (color & SystemColorBit) {
        // System colours map onto the palette roles that play the same part.
        switch (color & 0xFFu) {
        case 5:
            return QApplication::palette().color(QPalette::Base);
        case 8:
            return QApplication::palette().color(QPalette::Text);
        case 15:
            return QApplication::palette().color(QPalette::Button);
        case 18:
            return QApplication::palette().color(QPalette::ButtonText);
        case 13:
            return QApplication::palette().color(QPalette::Highlight);
        case 14:
            return QApplication::palette().color(QPalette::HighlightedText);
        case 17:
            return QApplication::palette().color(QPalette::PlaceholderText);
        default:
            return QApplication::palette().color(systemRole);
        }
    }
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}

void VelmoraPrivate::setEditColors()
{
    QPalette p = txtInput->palette();
    p.setColor(QPalette::Base, toQColor(backColor, QPalette::Base));
    p.setColor(QPalette::Text, toQColor(foreColor, QPalette::Text));
    txtInput->setPalette(p);
    QPalette l = lblVis->palette();
    l.setColor(QPalette::WindowText, toQColor(foreColor, QPalette::WindowText));
    lblVis->setPalette(l);
}

QString VelmoraPrivate::displayText(const QString &value)
{
    return detail::displayText(value, fieldFormat());
}

// --- focus -------------------------------------------------------------------------

void VelmoraPrivate::focusIn()
{
    if (mDisplayMode == dmChangeable) {
        backColor = FocusHighlightColor;
        setEditColors();
    }
    mHasFocus = true;
    mLastValue = q->varValue();
    engine.enterField();
}

void VelmoraPrivate::focusOut()
{
    if (!q->isVisible())
        return;
    completeEntry();
    valueChangedCheck();
    if (!mChanged)
        changedGet();
    mExitText = mText;
    mHasFocus = false;
    if (mDisplayMode == dmChangeable) {
        backColor = mOriBC;
        setEditColors();
    }
    refreshLabel();
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

void VelmoraPrivate::dropDown()
{
    // The drop-down list window is not built yet.
}

QString VelmoraPrivate::wholeValueText(const QString &pasted)
{
    return detail::wholeValueText(mInputType, pasted, pf, regional());
}

} // namespace velmora

namespace velmora {

// The field's key events carry 16-bit codes; what the host writes back is taken over.
void VelmoraPrivate::raiseKeyDown(int &keyCode, int &shift)
{
    qint16 k = qint16(keyCode), s = qint16(shift);
    Q_EMIT q->KeyDown(k, s);
    keyCode = k;
    shift = s;
}

void VelmoraPrivate::raiseKeyPress(int &keyAscii)
{
    qint16 k = qint16(keyAscii);
    Q_EMIT q->KeyPress(k);
    keyAscii = quint16(k);
}

void VelmoraPrivate::raiseKeyUp(int &keyCode, int &shift)
{
    qint16 k = qint16(keyCode), s = qint16(shift);
    Q_EMIT q->KeyUp(k, s);
    keyCode = k;
    shift = s;
}

void VelmoraPrivate::raiseArrowAction(int &arrow)
{
    qint16 a = qint16(arrow);
    Q_EMIT q->ArrowAction(a);
    arrow = a;
}

} // namespace velmora
