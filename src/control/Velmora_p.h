#pragma once

// The private side of a field: its state, its inner controls, and the glue between
// the widget, the editing engine, the value conversions and the platform.

#include "LineEditBox.h"
#include "editing/KeyEngine.h"
#include "format/FormatParser.h"
#include "format/ParsedFormat.h"
#include "format/ValueConversion.h"

#include <velmora/FieldFont.h>
#include <velmora/Platform.h>
#include <velmora/Types.h>
#include <velmora/Velmora.h>

#include <QtCore/QPointer>
#include <QtCore/QVariant>

class QLabel;
class QLineEdit;
class QToolButton;
class QFrame;

namespace velmora {

// Positions in a field are 16-bit: texts are cut to 32767 characters where they enter.
inline QString capped(const QString &text)
{
    constexpr int MaxText = 32767;
    return text.size() > MaxText ? text.left(MaxText) : text;
}

class VelmoraPrivate final : public detail::EditHost
{
public:
    explicit VelmoraPrivate(Velmora *q);
    ~VelmoraPrivate() override;

    void setupControls();
    void layoutControls();
    void applyDisplayState();

    // --- state of one field --------------------------------------------------------
    InpType mInputType = itAlfaNum;
    QString mFormatStr;
    QChar mDesOddel, mTisOddel, mDatOddel;
    detail::ParsedFormat pf;
    QString mText, mBaseText, mExitText;
    qint16 mListIndex = -1, mBaseListIndex = -1, mNotifiedListIndex = -1;
    bool mChanged = false;
    qint16 mError = 0;
    bool mHasFocus = false;
    quint32 mOriBC = 0x80000005u;
    EntAction mEnterAction = eaTab;
    ArrAction mArrowAction = aaUpDownTab;
    DisplMode mDisplayMode = dmChangeable;
    ControlLengthConst mControlLength = clDecimalPart;
    qint16 mMaxLength = 0;
    bool mAutoTab = false;
    bool mSetList = false;
    QString mSQLList, mSQLConnect, mListFormatString, mHideCol;
    qint16 mValueCol = 0, mTextCol = 0, mMatchCol = -1, mGroup = 0;
    bool mEnableEmpty = true;
    QString mLabel;
    bool mMessages = true;
    AlfaNumTrim mAlfaNumTrim = atLeftRight;
    qint16 mRefreshInt = 0;
    bool mSelectText = true, mCheckValues = true, mCrrr = true, mListCheckValue = true;
    bool mVisibleByLbl = true, mNullable = false, mListAddNewItem = false;
    QString mListNewItemText;
    quint32 mListBackColor = 0x80000005u, mListForeColor = 0x80000008u;
    QVariant mLastValue;
    double mStoredNumber = 0;
    // Colours of the edit box as set, in the legacy encoding.
    quint32 backColor = 0x80000005u, foreColor = 0x80000008u;
    AlignConst alignment = vbLeftJustify;
    SpecialEffectConst specialEffect = fmSpecialEffectSunken;

    // --- inner controls ------------------------------------------------------------
    Velmora *q;
    QLineEdit *txtInput = nullptr;
    QLabel *lblVis = nullptr;
    QToolButton *cmdList = nullptr;
    QFrame *imgFrame = nullptr;
    QWidget *shpMriz = nullptr;
    FieldFont ownTextFont, ownListFont;
    QPointer<FieldFont> txtFont, lstFont;
    QMetaObject::Connection txtFontConnection;
    detail::LineEditBox box;
    detail::KeyEngine engine;
    bool inPassThrough = false;
    bool inKey = false; // a key or committed text is being handled

    // --- helpers -------------------------------------------------------------------
    bool runMode() const;
    RegionalSettings regional() const { return Platform::instance().regionalSettings(); }
    detail::ValueFormat fieldFormat() const;
    detail::ConfiguredSeparators configuredSeparators() const;
    // Parses mFormatStr for mInputType, reporting a bad format; returns the message number.
    int parseFormat();
    void assignFormat(bool isInputType, InpType newType, const QString &newFormat);
    void assignSeparator(QChar &member, const QString &text, InpType owner, const char *name);
    void notify(const char *name);

    QString valueGet() const;
    void valueLet(const QString &value);
    QString letValue(const QString &sRet);
    void clear();
    void valueChangedCheck();
    QVariant typedOf(const QString &text) const;
    bool changedGet();
    qint16 completeEntry();

    void reportError(int number, const QString &value) override;
    void warningBeep() override;
    void setBoxText(const QString &text);
    void refreshLabel();
    void setEditColors();
    static QColor toQColor(quint32 color, QPalette::ColorRole systemRole);

    // Focus of the edit box.
    void focusIn();
    void focusOut();
    void followTextFont(FieldFont *font);

    // --- the editing engine's view of the field -------------------------------------
    InpType inputType() const override { return mInputType; }
    DisplMode displayMode() const override { return mDisplayMode; }
    EntAction enterAction() const override { return mEnterAction; }
    ArrAction arrowAction() const override { return mArrowAction; }
    ControlLengthConst controlLength() const override { return mControlLength; }
    bool setList() const override { return mSetList; }
    bool selectText() const override { return mSelectText; }
    bool autoTab() const override { return mAutoTab; }
    qint16 maxLength() const override { return mMaxLength; }
    QString formatStr() const override { return mFormatStr; }
    const detail::ParsedFormat &parsedFormat() const override { return pf; }
    bool userMode() const override { return runMode(); }
    bool isSet(const QString &name) override;
    QString storedText() const override { return mText; }
    void setStoredText(const QString &text) override { mText = text; }
    qint16 listIndex() const override { return mListIndex; }
    void setListIndex(qint16 index) override { mListIndex = index; }
    QString displayText(const QString &value) override;
    void sendTab() override;
    void sendShiftTab() override;
    void dropDown() override;
    QString wholeValueText(const QString &pasted) override;
    bool insertToggled() const override { return Platform::instance().insertToggled(); }
    void setInsertToggled(bool on) override { Platform::instance().setInsertToggled(on); }
    void raiseKeyDown(int &keyCode, int &shift) override;
    void raiseKeyPress(int &keyAscii) override;
    void raiseKeyUp(int &keyCode, int &shift) override;
    void raiseArrowAction(int &arrow) override;
};

} // namespace velmora
