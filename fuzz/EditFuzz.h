#pragma once

// Random editing of a field, shared by the seeded fuzz test and the libFuzzer target:
// field setups, starting texts, operations chosen by a source of small numbers, and
// the checks that must hold after every operation whatever the keys were.

#include "FakeHost.h"
#include "format/Text.h"

#include <ctime>

namespace velmora::test::fuzz {

#if defined(__SANITIZE_ADDRESS__)
constexpr int Slowdown = 20; // a sanitized build runs the same work much slower
#else
constexpr int Slowdown = 1;
#endif

struct Op
{
    enum Kind {
        KeyDown,
        KeyPress,
        DoKeyPress,
        Commit,
        Paste,
        Cut,
        Select,
        InsMode,
        Undo,
        Redo,
        Enter
    };
    Kind kind = KeyDown;
    int a = 0, b = 0;
    QString text;

    QString describe() const
    {
        static const char *const names[]
            = {"keyDown", "keyPress", "doKeyPress", "commit", "paste",     "cut",
               "select",  "insMode",  "undo",       "redo",   "enterField"};
        QString s = QString::fromLatin1(names[kind]) + QStringLiteral("(%1,%2").arg(a).arg(b);
        for (const QChar c : QStringView(text).left(16))
            s += QStringLiteral(",U+%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        if (text.size() > 16)
            s += QStringLiteral(",... %1 in all").arg(text.size());
        return s + QLatin1Char(')');
    }
};

inline const QStringList &setups()
{
    static const QStringList all = {"A",
                                    "A max5",
                                    "A1> max5 at",
                                    "A> ins",
                                    "A fmt=@@@-@@@",
                                    "A fmt=>&&_@@ ins",
                                    "A fmt=!<@@/&&",
                                    "A fmt=x#",
                                    "A fmt=1>",
                                    "A dm1",
                                    "A ea2 aa3",
                                    "A dm3",
                                    "N4.2",
                                    "N4.2 cl0",
                                    "N4.2 cl1",
                                    "N4.2 cl2",
                                    "N4.0 at",
                                    "N2.2 ins ea2",
                                    "N",
                                    "N4.2 dm1",
                                    "N4.2 dot at",
                                    "N4.2 dm4",
                                    "Ddmy",
                                    "Dmdy at",
                                    "Dymd ea2",
                                    "Ddmy dm1",
                                    "Ddmy dm2 aa3",
                                    "B",
                                    "B ee ea2",
                                    "B dm1"};
    return all;
}

// Characters typed and pasted: digits, separators, signs, letters (Czech ones too),
// a no-break space, a surrogate pair and control characters.
inline const QString &alphabet()
{
    static const QString chars = QStringLiteral("0123456789012345,.-+ /")
        + QString::fromUtf8("aAnNjxZáčďéěíňóřšťúůýžÁČŘŠŽ") + QChar(0x00A0) + QChar(0x20AC)
        + QChar(0xD83D) + QChar(0xDE00) + QStringLiteral("\t\r\n\x01\x1b");
    return chars;
}

// Values a user might paste whole, and some that no field accepts whole.
inline const QStringList &pasteValues()
{
    static const QStringList all
        = {"24.12.2005", "2005-12-24", "29.2.2001", "31.02.2005", "1 234,50", "12.34",
           "-0,5",       "99999",      "1,2,3",     "ANO",        "ne",       "ab\r\ncd"};
    return all;
}

// A date text in the field's layout; digits of day, month and year (blanks allowed).
inline QString dateText(const FakeHost &host, const QString &d, const QString &m, const QString &y)
{
    QString text = host.parsed.emptyDateText;
    const DateLayout &l = host.parsed.dateLayout[0];
    text.replace(l.dayStart - 1, 2, d)
        .replace(l.monthStart - 1, 2, m)
        .replace(l.yearStart - 1, 4, y);
    return text;
}

inline QString initialText(const FakeHost &host, int choice)
{
    switch (host.type) {
    case itNum:
        return QStringList {"", "0", "12", "-12", "1234,56", "+0,5", "007", "12345,678"}.at(choice
                                                                                            % 8);
    case itDate:
        switch (choice % 4) {
        case 0:
            return host.parsed.emptyDateText;
        case 1:
            return dateText(host, "24", "12", "2005");
        case 2:
            return dateText(host, "29", "02", "2004");
        default:
            return dateText(host, "1 ", "0 ", "20  ");
        }
    case itBool:
        return QStringList {"", "ANO", "NE"}.at(choice % 3);
    default:
        return QStringList {"", "abc", "Praha", QString::fromUtf8("žluťoučký kůň"), "abcde"}.at(
            choice % 5);
    }
}

// pick(n) returns a number from 0 to n - 1.
// Texts no user means to type: lone surrogates, NUL, combining marks, right-to-left
// text and runs of thousands of characters.
template<class Pick>
QString hostileText(Pick &pick)
{
    static const char16_t pieces[][4] = {{0xD800, 0},
                                         {0xDC00, '\'', 0},
                                         {0, 0},
                                         {'e', 0x0301, 0x0302, 0},
                                         {0x05D0, 0x200F, '1', 0},
                                         {0x202E, 'a', 0}};
    QString text;
    for (int n = 1 + pick(4); n > 0; --n) {
        const int which = pick(int(std::size(pieces)) + 1);
        if (which == int(std::size(pieces)))
            text += QString(1 + pick(30000), alphabet().at(pick(int(alphabet().size()))));
        else if (which == 2)
            text += QChar(u'\0');
        else
            text += QString::fromUtf16(pieces[which]);
    }
    return text;
}

template<class Pick>
QString randomText(Pick &pick)
{
    if (pick(100) == 0)
        return hostileText(pick);
    if (pick(3) == 0)
        return pasteValues().at(pick(int(pasteValues().size())));
    QString text;
    for (int n = pick(8); n > 0; --n)
        text += alphabet().at(pick(int(alphabet().size())));
    return text;
}

template<class Pick>
int randomCharacter(Pick &pick)
{
    return pick(8) == 0 ? pick(32) : alphabet().at(pick(int(alphabet().size()))).unicode();
}

template<class Pick>
Op randomOp(Pick &pick, int textLength)
{
    static const int keys[]
        = {8, 13, 33, 34, 35, 36, 37, 38, 39, 40, 45, 46, 86, 88, 89, 90, 112, 9, 65};
    static const int shifts[] = {0, 0, 0, 0, 0, 1, 1, 2, 2, 3, 4, 6};
    Op op;
    const int r = pick(100);
    if (r < 30) {
        op.kind = Op::KeyPress;
        op.a = randomCharacter(pick);
    } else if (r < 38) {
        op.kind = Op::DoKeyPress;
        op.a = pick(20) == 0 ? (pick(2) ? -1 : 70000) : randomCharacter(pick);
    } else if (r < 66) {
        op.kind = Op::KeyDown;
        op.a = keys[pick(int(std::size(keys)))];
        op.b = shifts[pick(int(std::size(shifts)))];
    } else if (r < 70) {
        op.kind = Op::Commit;
        for (int n = 1 + pick(3); n > 0; --n)
            op.text += QChar(char16_t(randomCharacter(pick)));
    } else if (r < 78) {
        op.kind = Op::Paste;
        op.text = randomText(pick);
    } else if (r < 81) {
        op.kind = Op::Cut;
    } else if (r < 89) {
        op.kind = Op::Select;
        op.a = pick(textLength + 4) - 2;
        op.b = pick(textLength + 4) - 2;
    } else if (r < 92) {
        op.kind = Op::InsMode;
        op.a = pick(2);
    } else if (r < 95) {
        op.kind = Op::Undo;
    } else if (r < 97) {
        op.kind = Op::Redo;
    } else {
        op.kind = Op::Enter;
    }
    return op;
}

// One field under random editing and the checks after each operation.
class Runner
{
public:
    Runner(const QString &setup, int initialChoice, const QString &clipboard)
    {
        host.configure(setup);
        host.stored = initialText(host, initialChoice);
        host.clipboard = wellFormed(capped(clipboard)); // as the field reads its clipboard
        engine.enterField();
        const QString text = box.text();
        m_layoutHeld = sameLayout(text);
        m_placesHeld = placesFit(text);
        m_lengthHeld = host.maxLen <= 0 || text.size() <= host.maxLen;
    }

    // An empty text when every check holds, else what broke.
    QString apply(const Op &op)
    {
        // Processor time, so that a busy machine does not count against the field.
        const std::clock_t started = std::clock();
        std::optional<QString> typedOneByOne;
        const QString before = box.text();
        const int start = box.selStart(), length = box.selLength(), beeps = host.beeps;
        bool handledKey = true;
        switch (op.kind) {
        case Op::KeyDown: {
            int code = op.a, shift = op.b;
            engine.keyDown(code, shift);
            break;
        }
        case Op::KeyPress: {
            int k = asTyped(op.a);
            engine.keyPress(k);
            break;
        }
        case Op::DoKeyPress: {
            int k = asTyped(op.a);
            engine.doKeyPress(k);
            break;
        }
        case Op::Commit: {
            const QString text = wellFormed(op.text);
            typedOneByOne = oneByOne(text);
            engine.commitText(text);
            break;
        }
        default:
            handledKey = false;
            break;
        }
        switch (op.kind) {
        case Op::Paste:
            host.clipboard = wellFormed(capped(op.text));
            // A date or number pasted whole is not typed; any other paste is.
            if (wholeValueText(host.type, host.clipboard, host.parsed, host.regional()).isNull())
                typedOneByOne = oneByOne(host.clipboard);
            engine.pasteText();
            break;
        case Op::Cut:
            engine.cutText();
            break;
        case Op::Select:
            box.setSelStart(op.a);
            box.setSelLength(op.b);
            break;
        case Op::InsMode:
            engine.setInsMode(op.a != 0);
            break;
        case Op::Undo:
            engine.undo();
            break;
        case Op::Redo:
            engine.redo();
            break;
        case Op::Enter:
            engine.enterField();
            break;
        default:
            break;
        }

        const double ms = 1000.0 * double(std::clock() - started) / CLOCKS_PER_SEC;
        if (ms > 250 * Slowdown)
            return QStringLiteral("an operation took %1 ms").arg(ms);
        const QString text = box.text();
        const int s = box.selStart(), l = box.selLength();
        if (!isWellFormed(text) && isWellFormed(before))
            return QStringLiteral("the text is not well formed");
        const bool pasteStood = op.kind == Op::Paste && host.beeps == beeps && text != before;
        if (typedOneByOne && (op.kind == Op::Commit || pasteStood) && text != *typedOneByOne)
            return QStringLiteral("differs from typing one by one: ") + *typedOneByOne;
        if (s < 0 || l < 0 || s + l > text.size())
            return QStringLiteral("caret or selection outside the text");
        if (handledKey && host.stored != text)
            return QStringLiteral("stored text differs from the box");
        if (m_layoutHeld && !sameLayout(text))
            return QStringLiteral("date layout broken");
        if (m_placesHeld && !placesFit(text))
            return QStringLiteral("too many places");
        if (m_lengthHeld && host.maxLen > 0 && text.size() > host.maxLen)
            return QStringLiteral("longer than MaxLength");
        const BoolFormat &bf = host.parsed.boolFormat;
        if (host.type == itBool && !text.isEmpty() && text != bf.trueText && text != bf.falseText)
            return QStringLiteral("boolean text of neither state");

        const bool toned = host.beeps > beeps;
        const bool typed = op.kind == Op::KeyPress || op.kind == Op::DoKeyPress;
        if (toned && typed && (host.type == itNum || host.type == itDate) && text != before)
            return QStringLiteral("refused key changed the text");
        if (toned && typed && host.type == itNum) {
            // Only the overwrite caret of the finish step may appear.
            const bool caret = length == 0 && host.mode == dmChangeable && engine.insMode()
                && start < text.size();
            if (s != start || l != (caret ? 1 : length))
                return QStringLiteral("refused key moved the caret");
        }
        if (const QString disagree = formsDisagree(); !disagree.isEmpty())
            return QStringLiteral("the forms of the value disagree: ") + disagree;
        if (toned && op.kind == Op::Paste && (text != before || s != start || l != length))
            return QStringLiteral("refused paste changed the field");
        return {};
    }

    Rig rig;
    FakeHost &host = rig.host;
    EditBox &box = rig.box;
    Rig::Engine &engine = rig.engine;

private:
    // Value, varValue and SQLValue of the stored text, as the field makes them, must
    // tell the same story: a date is a calendar date in all three or in none, a number
    // is the same number, a text's literal is its Value with apostrophes doubled.
    QString formsDisagree() const
    {
        const EditSettings settings = host.settings();
        ValueFormat vf = settings.display;
        vf.regional = host.regional();
        const QString value = storedValue(host.stored, vf);
        const QVariant typed = storedTypedValue(host.stored, vf, false);
        const QString sql = sqlValue(host.stored, vf);
        switch (host.type) {
        case itDate: {
            const QDate date = calendarDate(host.stored, host.parsed, 0);
            const bool literal = !sql.isEmpty();
            if (date.isValid() != literal
                || date.isValid() != (typed.metaType().id() == QMetaType::QDate))
                return value + QStringLiteral(" / ") + sql;
            if (date.isValid()
                && (typed.toDate() != date
                    || sql
                        != QStringLiteral("%1/%2/%3")
                               .arg(date.month(), 2, 10, QLatin1Char('0'))
                               .arg(date.day(), 2, 10, QLatin1Char('0'))
                               .arg(date.year())))
                return value + QStringLiteral(" / ") + sql;
            return {};
        }
        case itNum: {
            const bool number = typed.metaType().id() == QMetaType::Double;
            if (number != !sql.isEmpty() || (number && sql.toDouble() != typed.toDouble()))
                return value + QStringLiteral(" / ") + sql;
            return {};
        }
        case itAlfaNum:
            return sql == QString(value).replace(QLatin1Char('\''), QStringLiteral("''"))
                ? QString()
                : sql;
        default:
            return {};
        }
    }

    // The field takes a lone surrogate unit as the replacement character.
    static int asTyped(int key)
    {
        return key >= 0 && key <= 0xFFFF && QChar::isSurrogate(char32_t(key)) ? 0xFFFD : key;
    }

    // The text that typing the characters one by one would give, on a twin of the field.
    // Only short texts of characters that are typed as they are: a paste handles line
    // breaks and whole values of its own.
    std::optional<QString> oneByOne(const QString &keys) const
    {
        if (keys.size() > 40 || host.type == itBool)
            return std::nullopt;
        for (const QChar c : keys)
            if (c.unicode() < 32 || c.isSurrogate()) // a pair is typed as one, not unit by unit
                return std::nullopt;
        Rig twin;
        twin.host = host;
        twin.box = box;
        twin.engine.setInsMode(engine.insMode());
        twin.box = box;
        for (const QChar c : keys) {
            int k = c.unicode();
            twin.engine.keyPress(k);
        }
        return twin.box.text();
    }

    bool sameLayout(const QString &text) const
    {
        if (host.type != itDate)
            return true;
        const QString &empty = host.parsed.emptyDateText;
        const QChar sep = host.parsed.dateSeparator;
        if (text.size() != empty.size())
            return false;
        for (qsizetype i = 0; i < text.size(); ++i) {
            if ((text.at(i) == sep) != (empty.at(i) == sep))
                return false;
        }
        return true;
    }

    // Digits before and after the decimal separator, counted independently of the rule.
    bool placesFit(const QString &text) const
    {
        if (host.type != itNum || host.control != clBoth)
            return true;
        const qsizetype point = text.indexOf(host.parsed.decimalSeparator);
        const auto digits = [](QStringView part) {
            return std::count_if(part.begin(), part.end(), [](QChar c) { return c.isDigit(); });
        };
        if (text.count(host.parsed.decimalSeparator) > 1)
            return false;
        const QStringView all(text);
        const auto integer = digits(point < 0 ? all : all.left(point));
        const auto decimal = point < 0 ? 0 : digits(all.mid(point + 1));
        return integer <= host.parsed.integerDigits && decimal <= host.parsed.decimalDigits;
    }

    bool m_layoutHeld = true;
    bool m_placesHeld = true;
    bool m_lengthHeld = true;
};

} // namespace velmora::test::fuzz
