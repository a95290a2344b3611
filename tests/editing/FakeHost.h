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

class FakeHost : public EditHost
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
    QStringList log;
    int beeps = 0, keyPresses = 0, keyUps = 0;
    std::function<void(int &, int &)> onKeyDown;

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

    InpType inputType() const override { return type; }
    DisplMode displayMode() const override { return mode; }
    EntAction enterAction() const override { return enter; }
    ArrAction arrowAction() const override { return arrows; }
    ControlLengthConst controlLength() const override { return control; }
    bool setList() const override { return list; }
    bool selectText() const override { return select; }
    bool autoTab() const override { return autoTabOn; }
    qint16 maxLength() const override { return maxLen; }
    QString formatStr() const override { return format; }
    const ParsedFormat &parsedFormat() const override { return parsed; }
    bool userMode() const override { return run; }
    bool isSet(const QString &name) override
    {
        return name.compare(QLatin1String("EnableEmpty"), Qt::CaseInsensitive) == 0 && enableEmpty;
    }
    QString storedText() const override { return stored; }
    void setStoredText(const QString &text) override { stored = text; }
    qint16 listIndex() const override { return index; }
    void setListIndex(qint16 i) override
    {
        index = i;
        log << QStringLiteral("list%1").arg(i);
    }
    // "1>": first letter upper case, the rest lower case; ">": all upper case.
    QString displayText(const QString &value) override
    {
        if (type != itAlfaNum)
            return value;
        if (format == QLatin1String("1>"))
            return value.left(1).toUpper() + value.mid(1).toLower();
        return format == QLatin1String(">") ? value.toUpper() : value;
    }
    void warningBeep() override
    {
        ++beeps;
        log << QStringLiteral("beep");
    }
    void reportError(int number, const QString &value) override
    {
        log << QStringLiteral("msg%1(%2)").arg(number).arg(value);
    }
    void sendTab() override { log << QStringLiteral("tab"); }
    void sendShiftTab() override { log << QStringLiteral("backtab"); }
    void dropDown() override { log << QStringLiteral("drop"); }
    QString wholeValueText(const QString &pasted) override
    {
        return detail::wholeValueText(type, pasted, parsed, regional());
    }
    bool insertToggled() const override { return insert; }
    void setInsertToggled(bool on) override
    {
        insert = on;
        log << QStringLiteral("ins%1").arg(int(on));
    }
    void raiseKeyDown(int &keyCode, int &shift) override
    {
        if (onKeyDown)
            onKeyDown(keyCode, shift);
    }
    void raiseKeyPress(int &) override { ++keyPresses; }
    void raiseKeyUp(int &, int &) override { ++keyUps; }
    void raiseArrowAction(int &arrow) override
    {
        log << QStringLiteral("arrow%1").arg(arrow);
        arrow = 0; // must not change the decision
    }
};

} // namespace velmora::test
