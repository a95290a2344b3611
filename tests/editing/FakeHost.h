#pragma once

// The editing engine on a field with plain members. Every service the engine asks for
// is logged in a short form ("beep", "msg9(4)", "tab", "backtab", "drop", "arrow37",
// "list2", "ins1"), so a test compares one line.

#include "editing/KeyEngine.h"
#include "format/FormatParser.h"
#include "format/ValueConversion.h"

#include <QtCore/QStringList>

namespace velmora::test {

using namespace velmora::detail;
using namespace Qt::StringLiterals;

class FakeHost : public EditServices
{
public:
    InpType type = itAlfaNum;
    DisplMode mode = dmChangeable;
    ControlLengthConst control = clBoth;
    qint16 maxLen = 0;
    EditSettings rest; // the other settings; settings() adds the above and the display

    bool insert = false;
    QString format, stored, clipboard;
    ParsedFormat parsed;
    QStringList log;
    int beeps = 0;

    FakeHost()
    {
        rest.enterAction = eaDefault;
        rest.arrowAction = aaNoneTab;
        rest.selectText = rest.enableEmpty = false;
        parsed.decimalSeparator = u',';
        parsed.thousandsSeparator = u' ';
        parsed.boolFormat = {u"ANO"_s, u"NE"_s, u'A'};
        setDateFormat(u"dd.mm.yyyy"_s);
    }

    // The field's regional settings follow its separators.
    RegionalSettings regional() const
    {
        return {parsed.decimalSeparator, parsed.thousandsSeparator, parsed.dateSeparator,
                RegionalSettings::DayMonthYear};
    }

    void setDateFormat(QString pattern) // dd.mm.yyyy, mm/dd/yyyy or yyyy-mm-dd
    {
        const QChar separator = pattern.at(pattern.at(2).isLetter() ? 4 : 2);
        parseDateFormat(parsed, pattern, 0, regional(), {QChar(), QChar(), separator});
    }

    EditSettings settings() const
    {
        EditSettings s = rest;
        s.type = type;
        s.mode = mode;
        s.controlLength = control;
        s.maxLength = maxLen;
        s.display = {type, format, &parsed, parsed.boolFormat, 0, atLeftRight, regional()};
        return s;
    }

    // Settings in a few words: a type ("A", "A>", "A1>", "N4.2" for four integer and two
    // decimal places, "N" for an empty format, "Ddmy", "Dmdy", "Dymd", "B"), then
    // options: cl0..cl3, dm1..dm4, ea1, ea2, aa1..aa3, max5, at (AutoTab), ins (Insert
    // toggled), list (SetList), sel (SelectText), ee (EnableEmpty), dot (decimal
    // "." and thousands ","), tf=Yes/No (the texts of a boolean field), fmt=PATTERN (a
    // string pattern, "_" for a blank).
    void configure(const QString &settings)
    {
        for (const QString &word : settings.split(u' ', Qt::SkipEmptyParts)) {
            const int n = word.mid(2).toInt();
            if (word.startsWith(u'A') && word.size() <= 3) {
                type = itAlfaNum;
                format = word.mid(1);
            } else if (word.startsWith(u'N') && word.size() <= 4) {
                type = itNum;
                format = word.size() > 1 ? u"#"_s : QString();
                parsed.integerDigits = qint16(word.mid(1, 1).toInt());
                parsed.decimalDigits = qint16(word.mid(3, 1).toInt());
            } else if (word.startsWith(u'D')) {
                type = itDate;
                format = word == u"Dmdy" ? u"mm/dd/yyyy"_s
                    : word == u"Dymd"    ? u"yyyy-mm-dd"_s
                                         : u"dd.mm.yyyy"_s;
                setDateFormat(format);
            } else if (word == u"B") {
                type = itBool;
            } else if (word.startsWith(u"fmt=")) {
                format = word.mid(4).replace(u'_', u' ');
            } else if (word.startsWith(u"tf=")) {
                const QStringList texts = word.mid(3).split(u'/');
                parsed.boolFormat.trueText = texts.value(0);
                parsed.boolFormat.falseText = texts.value(1);
            } else if (word.startsWith(u"max")) {
                maxLen = qint16(word.mid(3).toInt());
            } else if (word == u"dot") {
                parsed.decimalSeparator = u'.';
                parsed.thousandsSeparator = u',';
            } else if (word.startsWith(u"cl")) {
                control = ControlLengthConst(n);
            } else if (word.startsWith(u"dm")) {
                mode = DisplMode(n);
            } else if (word.startsWith(u"ea")) {
                rest.enterAction = EntAction(n);
            } else if (word.startsWith(u"aa")) {
                rest.arrowAction = ArrAction(n);
            } else {
                const QStringList names {"at", "ins", "list", "sel", "ee"};
                bool *const flags[] {&rest.autoTab, &insert, &rest.setList, &rest.selectText,
                                     &rest.enableEmpty};
                if (!names.contains(word))
                    qFatal("unknown setting %s", qPrintable(word));
                *flags[names.indexOf(word)] = true;
            }
        }
    }

    void warningBeep() override { ++beeps, log << u"beep"_s; }
    bool insertToggled() const override { return insert; }
    void setInsertToggled(bool on) override { log << u"ins%1"_s.arg(int(insert = on)); }
    QString clipboardText() const override { return clipboard; }
    void setClipboardText(const QString &text) override { clipboard = text; }
};

// The engine on a field: every edit starts from the box and ends in its outcome, which
// is applied here as the field applies it, with what the field is asked to do logged.
struct Rig
{
    FakeHost host;
    EditBox box;
    KeyEngine core {host};

    void apply(const EditOutcome &o)
    {
        box.load(o.box);
        host.stored = o.stored;
        if (o.listIndex)
            host.log << u"list%1"_s.arg(*o.listIndex);
        if (o.arrowKey)
            host.log << u"arrow%1"_s.arg(*o.arrowKey);
        for (const Report &r : o.reports)
            host.log << u"msg%1(%2)"_s.arg(r.number).arg(r.value);
        if (o.move != FocusMove::None)
            host.log << (o.move == FocusMove::Next ? u"tab"_s : u"backtab"_s);
        if (o.dropDown)
            host.log << u"drop"_s;
    }

    // The field's calls into the engine, each on the current settings and box.
    struct Engine
    {
        Rig &rig;
        template<typename Call, typename... A>
        void run(Call call, A &&...args)
        {
            rig.apply((rig.core.*call)(rig.host.settings(), rig.box.state(), args...));
        }
        void keyDown(int &code, int &shift) { run(&KeyEngine::keyDown, code, shift); }
        void keyPress(int &key) { run(&KeyEngine::keyPress, key); }
        void doKeyPress(int &key) { run(&KeyEngine::keyPress, key); }
        void commitText(const QString &text) { run(&KeyEngine::typeText, QStringView(text)); }
        void pasteText() { run(&KeyEngine::pasteText); }
        void cutText() { run(&KeyEngine::cutText); }
        void undo() { run(&KeyEngine::undo); }
        void redo() { run(&KeyEngine::redo); }
        void enterField() { run(&KeyEngine::enterField, rig.host.stored); }
        void setInsMode(bool on) { run(&KeyEngine::setInsMode, on); }
        bool insMode() const { return rig.core.insMode(); }
    } engine {*this};
};

} // namespace velmora::test
