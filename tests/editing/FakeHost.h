#pragma once

// A field for the editing engine with plain members. Every service that the engine
// asks for is written to `log` in a short form ("beep", "msg9(4)", "tab", "backtab",
// "drop", "arrow37", "list2", "ins1"), so a test compares one line.

#include "editing/KeyEngine.h"
#include "format/FormatParser.h"
#include "format/ValueConversion.h"

#include <QtCore/QStringList>

#include <functional>

namespace velmora::test {

using namespace velmora::detail;

// The field around the engine: its settings, its stored text and list state, and the
// services, each logged.
class FakeHost : public EditServices
{
public:
    InpType type = itAlfaNum;
    DisplMode mode = dmChangeable;
    EntAction enter = eaDefault;
    ArrAction arrows = aaNoneTab;
    ControlLengthConst control = clBoth;
    bool list = false, select = false, autoTabOn = false, run = true, enableEmpty = false;
    bool insert = false;
    qint16 maxLen = 0;
    QString format;
    ParsedFormat parsed;
    QString stored;
    qint16 index = -1;
    QString clipboard;
    QStringList log;
    int beeps = 0;

    FakeHost()
    {
        parsed.decimalSeparator = QLatin1Char(',');
        parsed.thousandsSeparator = QLatin1Char(' ');
        parsed.boolFormat = {QStringLiteral("ANO"), QStringLiteral("NE"), u'A'};
        setDateFormat(QStringLiteral("dd.mm.yyyy"), QLatin1Char('.'));
    }

    // The field's regional settings follow its separators.
    RegionalSettings regional() const
    {
        return {parsed.decimalSeparator, parsed.thousandsSeparator, parsed.dateSeparator,
                RegionalSettings::DayMonthYear};
    }

    void setDateFormat(QString pattern, QChar separator)
    {
        parseDateFormat(parsed, pattern, 0, regional(), {QChar(), QChar(), separator});
    }

    EditSettings settings() const
    {
        EditSettings s;
        s.type = type;
        s.mode = mode;
        s.enterAction = enter;
        s.arrowAction = arrows;
        s.controlLength = control;
        s.setList = list;
        s.selectText = select;
        s.autoTab = autoTabOn;
        s.enableEmpty = enableEmpty;
        s.runMode = run;
        s.maxLength = maxLen;
        s.display.type = type;
        s.display.format = format;
        s.display.parsed = &parsed;
        s.display.boolFormat = parsed.boolFormat;
        s.display.regional = regional();
        return s;
    }

    // Settings in a few words: a type ("A", "A>", "A1>", "N4.2" for four integer and two
    // decimal places, "N" for an empty format, "Ddmy", "Dmdy", "Dymd", "B"), then
    // options: cl0..cl3, dm1..dm4, ea1, ea2, aa1..aa3, max5, at (AutoTab), ins (Insert
    // toggled), list (SetList), sel (SelectText), ee (EnableEmpty), design, dot (decimal
    // "." and thousands ","), tf=Yes/No (the texts of a boolean field).
    void configure(const QString &settings)
    {
        for (const QString &word : settings.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const auto number = [&](int from) {
                return word.mid(from).toInt();
            };
            if (word.startsWith(QLatin1Char('A')) && word.size() <= 3) {
                type = itAlfaNum;
                format = word.mid(1);
            } else if (word.startsWith(QLatin1Char('N')) && word.size() <= 4) {
                type = itNum;
                format = word.size() > 1 ? QStringLiteral("#") : QString();
                parsed.integerDigits = qint16(word.mid(1, 1).toInt());
                parsed.decimalDigits = qint16(word.mid(3, 1).toInt());
            } else if (word == QLatin1String("Ddmy") || word == QLatin1String("Dmdy")
                       || word == QLatin1String("Dymd")) {
                type = itDate;
                format = word == QLatin1String("Ddmy") ? QStringLiteral("dd.mm.yyyy")
                    : word == QLatin1String("Dmdy")    ? QStringLiteral("mm/dd/yyyy")
                                                       : QStringLiteral("yyyy-mm-dd");
                setDateFormat(format, format.at(2).isLetter() ? format.at(4) : format.at(2));
            } else if (word == QLatin1String("B")) {
                type = itBool;
            } else if (word.startsWith(QLatin1String("fmt="))) {
                format = word.mid(4).replace(QLatin1Char('_'), QLatin1Char(' '));
            } else if (word.startsWith(QLatin1String("tf="))) {
                const QStringList texts = word.mid(3).split(QLatin1Char('/'));
                parsed.boolFormat.trueText = texts.value(0);
                parsed.boolFormat.falseText = texts.value(1);
            } else if (word.startsWith(QLatin1String("cl"))) {
                control = ControlLengthConst(number(2));
            } else if (word.startsWith(QLatin1String("dm"))) {
                mode = DisplMode(number(2));
            } else if (word.startsWith(QLatin1String("ea"))) {
                enter = EntAction(number(2));
            } else if (word.startsWith(QLatin1String("aa"))) {
                arrows = ArrAction(number(2));
            } else if (word.startsWith(QLatin1String("max"))) {
                maxLen = qint16(number(3));
            } else if (word == QLatin1String("dot")) {
                parsed.decimalSeparator = QLatin1Char('.');
                parsed.thousandsSeparator = QLatin1Char(',');
            } else {
                bool *flag = word == QLatin1String("at") ? &autoTabOn
                    : word == QLatin1String("ins")       ? &insert
                    : word == QLatin1String("list")      ? &list
                    : word == QLatin1String("sel")       ? &select
                    : word == QLatin1String("ee")        ? &enableEmpty
                                                         : nullptr;
                if (flag)
                    *flag = true;
                else if (word == QLatin1String("design"))
                    run = false;
                else
                    qFatal("unknown setting %s", qPrintable(word));
            }
        }
    }

    void warningBeep() override
    {
        ++beeps;
        log << QStringLiteral("beep");
    }
    bool insertToggled() const override { return insert; }
    void setInsertToggled(bool on) override
    {
        insert = on;
        log << QStringLiteral("ins%1").arg(int(on));
    }
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
        if (o.listIndex) {
            host.index = *o.listIndex;
            host.log << QStringLiteral("list%1").arg(*o.listIndex);
        }
        if (o.arrowKey)
            host.log << QStringLiteral("arrow%1").arg(*o.arrowKey);
        for (const Report &r : o.reports)
            host.log << QStringLiteral("msg%1(%2)").arg(r.number).arg(r.value);
        if (o.move != FocusMove::None)
            host.log << (o.move == FocusMove::Next ? QStringLiteral("tab")
                                                   : QStringLiteral("backtab"));
        if (o.dropDown)
            host.log << QStringLiteral("drop");
    }

    struct Engine
    {
        Rig &rig;
        EditOutcome run(EditOutcome o)
        {
            rig.apply(o);
            return o;
        }
        void keyDown(int &code, int &shift)
        {
            run(rig.core.keyDown(rig.host.settings(), rig.box.state(), code, shift));
        }
        // The field types one character (KeyPress raised) or feeds it (DoKeyPress).
        void keyPress(int &key)
        {
            run(rig.core.keyPress(rig.host.settings(), rig.box.state(), key));
            key = 0;
        }
        void doKeyPress(int &key)
        {
            run(rig.core.keyPress(rig.host.settings(), rig.box.state(), key));
        }
        void commitText(const QString &text)
        {
            run(rig.core.typeText(rig.host.settings(), rig.box.state(), text));
        }
        void pasteText() { run(rig.core.pasteText(rig.host.settings(), rig.box.state())); }
        void cutText() { run(rig.core.cutText(rig.host.settings(), rig.box.state())); }
        void undo() { run(rig.core.undo(rig.host.settings(), rig.box.state())); }
        void redo() { run(rig.core.redo(rig.host.settings(), rig.box.state())); }
        void enterField()
        {
            const EditOutcome o
                = rig.core.enterField(rig.host.settings(), rig.box.state(), rig.host.stored);
            rig.apply(o);
            rig.host.stored = o.stored;
        }
        void setInsMode(bool on)
        {
            run(rig.core.setInsMode(rig.host.settings(), rig.box.state(), on));
        }
        bool insMode() const { return rig.core.insMode(); }
        qint16 selAnchor() const { return rig.core.selAnchor(); }
    } engine {*this};
};

} // namespace velmora::test
