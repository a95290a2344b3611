#pragma once

// Random inputs for the texts that describe a lookup list (ListFormatString, HideCol)
// and for connection strings, shared by the seeded test and the libFuzzer target. A
// check draws its inputs from pick(n) (0 to n - 1) and returns an empty text when
// every property holds, else what broke and the inputs that broke it.

#include "fuzz/FormatFuzz.h"
#include "lookup/ConnectionString.h"
#include "lookup/ListColumns.h"
#include "lookup/ListFormat.h"

#include <velmora/DatabaseError.h>

#include <QtSql/QSqlDatabase>

namespace velmora::test::listfuzz {

using namespace velmora::detail;
using formatfuzz::broke;
using formatfuzz::Pick;
using formatfuzz::show;
using namespace Qt::StringLiterals;

inline QString pieces(const Pick &pick, const QStringList &from, int most)
{
    QString text;
    for (int n = pick(most + 1); n > 0; --n)
        text += from.at(pick(int(from.size())));
    return text;
}

inline int typeCode(QStringView part)
{
    const char16_t c = part.isEmpty() ? 0 : part.at(0).unicode();
    return c == u'N' || c == u'A' || c == u'D' || c == u'B' ? int(c) : int(itAlfaNum);
}

// ListFormatString: each column as its part says, the text column as the field's, the
// boolean formats counted and parsed as the B parts say, and a second parse the same.
inline QString listFormats(const Pick &pick)
{
    static const QStringList from
        = {u"N"_s, u"A"_s, u"D"_s, u"B"_s,   u"X"_s,          u"n"_s,     u"|"_s, u"|"_s,
           u";"_s, u"#"_s, u"0"_s, u"."_s,   u","_s,          u"d"_s,     u"m"_s, u"y"_s,
           u"/"_s, u"é"_s, u" "_s, u"ANO"_s, u"\U0001F600"_s, u"\u00a0"_s};
    const QString text = pieces(pick, from, 16);
    ListFieldSettings s;
    s.textCol = pick(6) - 1;
    s.valueCol = pick(6) - 1;
    static const int types[] = {itAlfaNum, itNum, itDate, itBool, 0, 120};
    s.inputType = types[pick(6)];
    s.formatStr = pieces(pick, from, 4);
    s.regional = formatfuzz::randomSettings(pick);
    const int sized = pick(5) - 1;
    const QStringList inputs {show(text),
                              QString::number(s.textCol),
                              QString::number(s.valueCol),
                              QString::number(s.inputType),
                              show(s.formatStr),
                              QString::number(sized)};

    ListColumns c;
    c.setUpperBound(sized);
    ParsedFormat pf;
    const int message = parseListFormat(text, s, c, pf);

    // The parts as QString::split sees them, without the empty one after a final "|".
    QStringList parts = text.split(u'|');
    if (parts.last().isEmpty())
        parts.removeLast();
    const bool dateValue = s.valueCol >= 0 && c.dataType(s.valueCol) == itDate;
    if (message != 0 && (message != 5 || !dateValue))
        return broke("message without a date value column", inputs);
    int boolIndex = 0;
    int lastDescribed = -1;
    for (int i = 0; i < parts.size(); ++i) {
        const QString &part = parts.at(i);
        if (!part.isEmpty())
            lastDescribed = i;
        const bool pair = part.size() > 1 && part.at(0).isHighSurrogate();
        const QString rest = part.mid(pair ? 2 : 1);
        const int type = pair ? int(itAlfaNum) : typeCode(part);
        QString format = part.isEmpty() ? QString() : rest;
        if (type == itBool && !part.isEmpty()) {
            BoolFormat bf;
            QString boolText = rest;
            parseBoolFormat(bf, boolText);
            if (c.boolFormat(boolIndex) != bf)
                return broke("boolean format of a B column", inputs);
            format = QString::number(boolIndex++);
        }
        if (i == s.textCol)
            continue;
        if (c.dataType(i) != (part.isEmpty() ? int(itAlfaNum) : type)
            || c.formatString(i) != format)
            return broke("column not as its part says", inputs + QStringList {QString::number(i)});
    }
    if (c.boolFormatCount() != boolIndex)
        return broke("boolean formats not one per B part", inputs);
    if (s.textCol >= 0) {
        const int expected = typeCode(QString(QChar(s.inputType)));
        if (c.dataType(s.textCol) != expected || c.formatString(s.textCol) != s.formatStr)
            return broke("text column not the field's type and format", inputs);
    }
    const int expectedBound = std::max({sized, lastDescribed, s.textCol});
    if (c.upperBound() != expectedBound)
        return broke("columns grown wrongly", inputs);
    if (pf.dateLayout[1] != DateLayout() && !dateValue)
        return broke("date slot 1 laid out without a date value column", inputs);

    ListColumns again = c;
    ParsedFormat pf2 = pf;
    parseListFormat(text, s, again, pf2);
    if (!(again == c) || !(pf2 == pf))
        return broke("a second parse differs", inputs);
    return {};
}

// HideCol: marked exactly the columns that the items read before the limit name;
// leadingNumber reads a number with blanks in it and text after it.
inline QString hideCols(const Pick &pick)
{
    static const QStringList from
        = {u"1"_s,   u"2x"_s, u" 3 "_s, u""_s,    u"-1"_s,  u"&H2"_s,    u"1.5"_s,
           u"abc"_s, u"99"_s, u"0"_s,   u"\t4"_s, u"5e0"_s, u"\u00a06"_s};
    QStringList items;
    for (int n = pick(9); n >= 0; --n)
        items << from.at(pick(int(from.size())));
    const QString text = items.join(u';');
    const int lastIndex = pick(9) - 1;
    const QStringList inputs {show(text), QString::number(lastIndex)};

    const QList<bool> hidden = parseHideCol(text, lastIndex);
    if (hidden.size() != std::max(lastIndex + 1, 0))
        return broke("hidden flags not one per column", inputs);
    const QStringList read = items.mid(0, std::min<qsizetype>(items.size(), hidden.size() + 1));
    for (int i = 0; i < hidden.size(); ++i) {
        bool named = false;
        for (const QString &item : read) {
            QStringView t(item); // plain blanks only: a tab or a no-break space stays
            while (t.startsWith(u' '))
                t = t.sliced(1);
            while (t.endsWith(u' '))
                t.chop(1);
            named = named || (!t.isEmpty() && leadingIndex(t) == i);
        }
        if (hidden.at(i) != named)
            return broke("hidden flag not as the items say",
                         inputs + QStringList {QString::number(i)});
    }

    const qint64 n = qint64(pick(2000001)) - 1000000;
    QString number = QString::number(n);
    for (int k = pick(3); k > 0; --k)
        number.insert(1 + pick(int(number.size())), u' ');
    number += from.at(pick(int(from.size()))).startsWith(u'a') ? u"x"_s : u"z9"_s;
    if (leadingNumber(number) != double(n))
        return broke("leading number", {show(number)});
    return {};
}

// Connection strings: anything either parses or is a DatabaseError; a password shows
// in no message and no description; settings written out with braces come back.
inline QString connectionStrings(const Pick &pick)
{
    static const QStringList junk
        = {u"Driver="_s, u"Database="_s, u"Host="_s,   u"Port="_s,    u"User="_s,
           u"DSN="_s,    u"X="_s,        u"="_s,       u";"_s,        u";"_s,
           u"QSQLITE"_s, u"QPSQL"_s,     u"QODBC"_s,   u"a.db"_s,     u"5432"_s,
           u" "_s,       u"x.dsn"_s,     u"Server="_s, u"FILEDSN="_s, u"Data Source="_s};
    static const QStringList quoting = {u"{"_s, u"}"_s, u"'"_s, u"\""_s};

    // Any text, quotes and braces included.
    const QString any = pieces(pick, junk + quoting, 12);
    try {
        const ConnectionSettings cs = parseConnectionString(any);
        if (!QSqlDatabase::drivers().contains(cs.driver))
            return broke("driver not one of the system's", {show(any)});
        if (cs.port != -1 && (cs.port < 1 || cs.port > 65535))
            return broke("port out of range", {show(any)});
    } catch (const velmora::DatabaseError &) { }

    // Passwords among parts without quotes or braces, so that each is a password's value
    // (an unbraced one with ";" in it falls apart into parts of its own).
    static const QString secret = u"Zq9xKs3cr3t"_s;
    QString text;
    for (int n = pick(10); n > 0; --n) {
        if (pick(5) == 0) {
            text += pick(2) ? u";Password="_s : u";PWD="_s;
            switch (pick(4)) {
            case 0:
                text += secret;
                break;
            case 1:
                text += u'{' + secret + u"}}"_s.left(pick(3));
                break;
            case 2:
                text += u"ab;"_s + secret;
                break;
            default:
                text += u'\'' + secret + u'\'';
                break;
            }
        } else {
            text += junk.at(pick(int(junk.size())));
        }
    }
    try {
        if (parseConnectionString(text).describe().contains(secret))
            return broke("password in the description", {show(text)});
    } catch (const velmora::DatabaseError &e) {
        if (e.message().contains(secret))
            return broke("password in the message", {show(text), show(e.message())});
    }

    // Settings written out, braced, read back as they were.
    static const QStringList values
        = {u"a"_s, u"x y"_s, u"a;b"_s, u"}"_s, u"{"_s, u"'"_s, u"\""_s, u"č"_s, u"="_s, u" "_s};
    auto braced = [](const QString &v) {
        return u'{' + QString(v).replace(u"}"_s, u"}}"_s) + u'}';
    };
    const QString database = pieces(pick, values, 4) + u"x"_s;
    const QString user = pieces(pick, values, 4);
    const QString password = pieces(pick, values, 4);
    const int port = 1 + pick(65535);
    const QString written = u"Driver=QPSQL;Database=%1;User=%2;Password=%3;Port=%4;Host=h"_s.arg(
        braced(database), braced(user), braced(password), QString::number(port));
    try {
        const ConnectionSettings cs = parseConnectionString(written);
        if (cs.databaseName != database || cs.userName != user || cs.password != password
            || cs.port != port || cs.hostName != u"h")
            return broke("settings do not come back", {show(written)});
    } catch (const velmora::DatabaseError &e) {
        return broke("braced settings refused", {show(written), show(e.message())});
    }
    return {};
}

} // namespace velmora::test::listfuzz
