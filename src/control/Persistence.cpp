// A field's saved settings: what a new field on a form starts with, and the keys a form
// saves and loads. Loading writes the members directly: the setters' notifications and
// follow-ups (a value assigned again, Nullable following InputType) stay out of it.

#include "Velmora_p.h"
#include "format/FormatParser.h"
#include "format/Text.h"

#include <velmora/Platform.h>
#include <velmora/PropertyBag.h>

#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

namespace velmora {

using namespace detail;

namespace {

constexpr quint32 WindowColor = 0x80000005u;
constexpr quint32 WindowTextColor = 0x80000008u;

// Typed reads and writes of one bag, with the keys' defaults given by the caller.
struct Keys
{
    PropertyBag &bag;

    QVariant read(const char *key, const QVariant &def)
    {
        return bag.ReadProperty(QString::fromLatin1(key), def);
    }
    void write(const char *key, const QVariant &value, const QVariant &def)
    {
        bag.WriteProperty(QString::fromLatin1(key), value, def);
    }

    bool boolean(const char *key, bool def) { return read(key, def).toBool(); }
    int int32(const char *key, int def) { return read(key, def).toInt(); }
    qint16 int16(const char *key, qint16 def)
    {
        return read(key, QVariant::fromValue(def)).value<qint16>();
    }
    quint32 colour(const char *key, quint32 def)
    {
        return read(key, QVariant::fromValue(def)).value<quint32>();
    }
    // A stored text enters the field as every text does: well formed and cut to length.
    QString text(const char *key) { return wellFormed(capped(read(key, QString()).toString())); }
    QChar separator(const char *key) { return separatorFromText(text(key)); }
    // Not the default object itself: the bag's own font, or the default when it has none.
    const FieldFont &font(const char *key, FieldFont &def)
    {
        const FieldFont *f = read(key, QVariant::fromValue(&def)).value<FieldFont *>();
        return f ? *f : def;
    }

    void boolean(const char *key, bool value, bool def) { write(key, value, def); }
    void int32(const char *key, int value, int def) { write(key, value, def); }
    void int16(const char *key, qint16 value, qint16 def)
    {
        write(key, QVariant::fromValue(value), QVariant::fromValue(def));
    }
    void colour(const char *key, quint32 value, quint32 def)
    {
        write(key, QVariant::fromValue(value), QVariant::fromValue(def));
    }
    void text(const char *key, const QString &value) { write(key, value, QString()); }
    void font(const char *key, FieldFont *value, FieldFont &def)
    {
        write(key, QVariant::fromValue(value), QVariant::fromValue(&def));
    }
};

// The mode of the key engine, without the caret changes of the InsMode setter.
void setInsertMode(KeyEngine &engine, bool on)
{
    if (engine.insMode() != on)
        engine.changeInsertMode(itAlfaNum); // a text field's mode simply toggles
}

} // namespace

void Velmora::InitProperties()
{
    FieldFont boxFont(d->txtInput->font());
    boxFont.setCharset(d->look.textFont()->Charset()); // the box's font has no character set
    d->look.textFont()->copyFrom(boxFont);

    FieldSettings &s = d->set;
    s.arrowAction = aaUpDownTab;
    s.controlLength = clDecimalPart;
    s.listAddNewItem = false;
    setInsertMode(d->engine, false);
    s.enterAction = eaTab;
    s.switches.listCheckValue = true;
    s.inputType = itAlfaNum;
    s.nullable = false;

    d->look.oriBC = d->look.backColor;
    d->notify("OriBC");

    d->visibleByLbl = true;
    s.selectText = true;
    s.switches.checkValues = true;
    s.messages = true;
    s.crrr = true;

    d->look.applyDisplayState(s.displayMode, d->visibleByLbl, s.setList);

    s.matchCol = -1;
    s.listBackColor = WindowColor;
    s.listForeColor = WindowTextColor;
    d->applyListLook();
    d->refreshAccessibility();
}

void Velmora::ReadProperties(PropertyBag &PropBag)
{
    Keys k {PropBag};
    FieldSettings &s = d->set;
    Appearance &look = d->look;

    s.listNewItemText = k.text("ListNewItemText");
    s.listAddNewItem = k.boolean("ListAddNewItem", false);
    s.switches.checkValues = k.boolean("CheckValues", true);
    s.nullable = k.boolean("Nullable", false);
    setInsertMode(d->engine, k.boolean("InsMode", false));
    d->visibleByLbl = k.boolean("VisibleByLbl", false);
    s.switches.listCheckValue = k.boolean("ListCheckValue", true);

    // One value aligns the edit box and the label alike.
    look.alignment = AlignConst(k.int32("Alignment", vbLeftJustify));

    s.inputType = InpType(k.int32("InputType", itAlfaNum));
    s.enterAction = EntAction(k.int32("EnterAction", eaTab));
    s.arrowAction = ArrAction(k.int32("ArrowAction", aaUpDownTab));
    s.autoTab = k.boolean("AutoTab", false);
    s.maxLength = k.int16("MaxLength", 0);
    s.controlLength = ControlLengthConst(k.int32("ControlLength", clDecimalPart));
    s.setList = k.boolean("SetList", false);
    s.sqlList = k.text("SQLList");
    s.sqlConnect = k.text("SQLConnect");
    s.listFormatString = k.text("ListFormatString");
    s.group = k.int16("Group", 0);
    s.switches.enableEmpty = k.boolean("EnableEmpty", true);

    look.specialEffect = SpecialEffectConst(k.int32("SpecialEffect", fmSpecialEffectSunken));

    s.matchCol = k.int16("MatchCol", -1);
    s.hideCol = k.text("HideCol");
    s.valueCol = k.int16("ValueCol", 0);
    s.textCol = k.int16("TextCol", 0);
    s.crrr = k.boolean("Crrr", true);
    s.alfaNumTrim = velmora::AlfaNumTrim(k.int32("AlfaNumTrim", atLeftRight));
    s.refreshInt = k.int16("RefreshInt", 0);
    s.selectText = k.boolean("SelectText", true);

    look.layout(s.setList);

    s.desOddel = k.separator("FormatDesOddel");
    s.tisOddel = k.separator("FormatTisOddel");
    s.datOddel = k.separator("FormatDatOddel");

    {
        FieldFont buttonFont(d->cmdList->font());
        look.takeTextFont(k.font("Font", buttonFont));
        look.takeListFont(k.font("ListFont", buttonFont));
    }

    const quint32 shownBack = look.backColor, shownFore = look.foreColor;
    const quint32 listBack = s.listBackColor, listFore = s.listForeColor;
    look.backColor = k.colour("BackColor", WindowColor);
    look.oriBC = k.colour("OriBC", WindowColor);
    s.listBackColor = k.colour("ListBackColor", WindowColor);
    look.foreColor = k.colour("ForeColor", WindowTextColor);
    // The label takes the edit box's fore colour. Palettes are costly: only a change
    // is applied.
    if (look.backColor != shownBack || look.foreColor != shownFore)
        look.applyColors();
    s.listForeColor = k.colour("ListForeColor", WindowTextColor);
    if (s.listBackColor != listBack || s.listForeColor != listFore)
        d->applyListLook();

    s.label = k.text("Label");
    s.messages = k.boolean("Messages", true);
    s.displayMode = DisplMode(k.int32("DisplayMode", dmChangeable));

    s.formatStr = trimBlanks(k.text("FormatStr"));

    // The format of the loaded type, parsed without messages: a format a parser cannot
    // take falls back as the parser decides. A type code outside the four parses nothing.
    ++s.formatGeneration;
    const RegionalSettings rs = Platform::instance().regionalSettings();
    const ConfiguredSeparators configured {s.desOddel, s.tisOddel, s.datOddel};
    s.parsed.regional = rs;
    switch (s.inputType) {
    case itNum:
        parseNumFormat(s.parsed, s.formatStr, rs, configured);
        break;
    case itAlfaNum:
        checkAlfaNumFormat(s.formatStr);
        break;
    case itDate:
        parseDateFormat(s.parsed, s.formatStr, 0, rs, configured);
        break;
    case itBool:
        parseBoolFormat(s.parsed.boolFormat, s.formatStr);
        break;
    default:
        break;
    }

    // No value is loaded: the field shows its empty mask.
    FieldValue &v = d->val;
    const QString empty = s.inputType == itDate ? s.parsed.emptyDateText : QString();
    if (d->txtInput->text() != empty)
        d->txtInput->setText(empty);
    v.text = empty;
    ++v.generation;
    v.number.reset();
    d->engine.clearHistory();
    d->list.notifiedIndex = -1;

    look.applyDisplayState(s.displayMode, d->visibleByLbl, s.setList);
    d->lblVis->setText(d->txtInput->text());

    v.listIndex = v.baseListIndex = -1;
    v.baseText = v.text;
    v.changed = false;

    d->cmdList->setArrowType(s.setList ? Qt::DownArrow : Qt::NoArrow);
    d->access.clearError();
    d->refreshAccessibility();
}

void Velmora::WriteProperties(PropertyBag &PropBag)
{
    Keys k {PropBag};
    const FieldSettings &s = d->set;
    Appearance &look = d->look;

    k.text("ListNewItemText", s.listNewItemText);
    k.boolean("ListAddNewItem", s.listAddNewItem, false);
    k.boolean("CheckValues", s.switches.checkValues, true);
    k.boolean("Nullable", s.nullable, false);
    k.boolean("InsMode", d->engine.insMode(), false);
    k.boolean("VisibleByLbl", d->visibleByLbl, false);
    k.boolean("ListCheckValue", s.switches.listCheckValue, true);
    k.int32("Alignment", look.alignment, vbLeftJustify);
    k.int32("InputType", s.inputType, itAlfaNum);
    k.int32("EnterAction", s.enterAction, eaTab);
    k.int32("ArrowAction", s.arrowAction, aaUpDownTab);
    k.boolean("AutoTab", s.autoTab, false);
    k.int16("MaxLength", s.maxLength, 0);
    k.int32("ControlLength", s.controlLength, clDecimalPart);
    k.boolean("SetList", s.setList, false);
    k.text("SQLList", s.sqlList);
    k.int32("SpecialEffect", look.specialEffect, fmSpecialEffectSunken);
    k.text("SQLConnect", s.sqlConnect);
    k.int16("Group", s.group, 0);
    k.boolean("EnableEmpty", s.switches.enableEmpty, true);
    k.text("ListFormatString", s.listFormatString);
    k.int16("MatchCol", s.matchCol, -1);
    k.text("HideCol", s.hideCol);
    k.int16("ValueCol", s.valueCol, 0);
    k.int16("TextCol", s.textCol, 0);
    k.boolean("Crrr", s.crrr, true);
    k.text("Label", s.label);
    k.boolean("Messages", s.messages, true);
    k.int32("AlfaNumTrim", s.alfaNumTrim, atLeftRight);
    k.int16("RefreshInt", s.refreshInt, 0);
    k.boolean("SelectText", s.selectText, true);
    k.text("FormatDesOddel", separatorToText(s.desOddel));
    k.text("FormatTisOddel", separatorToText(s.tisOddel));
    k.text("FormatDatOddel", separatorToText(s.datOddel));
    FieldFont buttonFont(d->cmdList->font());
    k.font("Font", look.textFont(), buttonFont);
    k.font("ListFont", look.listFont(), buttonFont);
    k.colour("BackColor", look.backColor, WindowColor);
    k.colour("OriBC", look.oriBC, WindowColor);
    k.colour("ListBackColor", s.listBackColor, WindowColor);
    k.colour("ForeColor", look.foreColor, WindowTextColor);
    k.colour("ListForeColor", s.listForeColor, WindowTextColor);
    k.int32("DisplayMode", s.displayMode, dmChangeable);
    k.text("FormatStr", s.formatStr);
}

} // namespace velmora
