#include "ListLoader.h"
#include "ConnectionString.h"
#include "ListFormat.h"

#include "format/Regional.h"
#include "format/Text.h"

#include <velmora/DatabaseError.h>

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlDriver>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>

namespace velmora::detail {

namespace {

// The query in a message: its first line, shortened.
QString shownQuery(const QString &sql)
{
    QString s = sql.simplified();
    if (s.size() > 200)
        s = s.left(200) + QStringLiteral("...");
    return s;
}

[[noreturn]] void fail(const QString &what, const QSqlError &error)
{
    const QString driverText = error.text().trimmed();
    throw velmora::DatabaseError(
        driverText.isEmpty() ? what : what + QStringLiteral(": ") + driverText, error);
}

// A database value as the text the list formats: numbers and dates as the regional
// settings write them (so that the display formatter reads them back), Null as "". A
// date with a time of day keeps the time, except in a date column.
QString valueText(const QVariant &v, const RegionalSettings &rs, bool dateColumn)
{
    if (v.isNull())
        return {};
    switch (v.typeId()) {
    case QMetaType::QString:
        return v.toString();
    case QMetaType::Double:
    case QMetaType::Float:
        return numberToString(v.toDouble(), rs);
    case QMetaType::QDate:
        return dateToString(v.toDate(), rs);
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        const QString date = dateToString(dt.date(), rs);
        return dateColumn || dt.time() == QTime(0, 0)
            ? date
            : date + u' ' + dt.time().toString(QStringLiteral("HH:mm:ss"));
    }
    case QMetaType::QTime:
        return v.toTime().toString(QStringLiteral("HH:mm:ss"));
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QByteArray:
        return QString::fromUtf8(v.toByteArray());
    default:
        return v.toString(); // the integer types, and whatever else converts
    }
}

// Remembers the formatted texts of a column's cells: dates, codes and prices repeat
// often, and the display formatter is the costly part of a load. A column whose cells
// rarely repeat stops remembering after a trial.
class FormatCache
{
public:
    const QString *find(const QString &raw)
    {
        if (!m_on)
            return nullptr;
        const auto it = m_texts.constFind(raw);
        ++m_lookups;
        if (it != m_texts.cend()) {
            ++m_hits;
            return &*it;
        }
        if (m_lookups == TrialLookups && m_hits * 10 < m_lookups) {
            m_on = false; // mostly distinct values: not worth a lookup per cell
            m_texts = {};
        }
        return nullptr;
    }
    void remember(const QString &raw, const QString &shown)
    {
        if (m_on && m_texts.size() < MaxEntries)
            m_texts.insert(raw, shown);
    }

private:
    static constexpr qsizetype TrialLookups = 4096;
    static constexpr qsizetype MaxEntries = 1 << 16;
    QHash<QString, QString> m_texts;
    qsizetype m_lookups = 0, m_hits = 0;
    bool m_on = true;
};

// The widths of a column's cells remembered by their shape, or that a shape is no wider
// than the column (which never narrows) once its bound said so. A text's digits are read as
// "0" when the font gives each digit the same advance beside every character found next
// to one (checked once per character with the measure itself: "x0".."x9" and
// "0x".."9x" alike, and the hundred digit pairs); amounts, dates and numbered names then
// come in a few shapes, each laid out once. A column whose shapes rarely repeat stops
// remembering after a trial, and its cells go to the bound and the measure as before.
class WidthMemo
{
public:
    struct Known
    {
        int width = -1; // none: the shape is not known
        bool exact = false; // else a bound that did not pass the column's width
    };
    // What is known of a text of this shape. The shape stays here for remember().
    Known find(QStringView text, const TextMeasure &measure)
    {
        if (!m_on)
            return {};
        const qsizetype n = text.size();
        const char16_t *units = reinterpret_cast<const char16_t *>(text.data());
        if (m_last.known.width >= 0 && n == m_key.size() && sameAsLast(units, n)) {
            ++m_lookups;
            ++m_hits;
            return m_last.known; // neighbouring cells are often of one shape
        }
        m_last = {};
        m_key.resize(n);
        char16_t *key = m_key.data();
        bool kept = true, digits = false;
        for (qsizetype i = 0; i < n; ++i) {
            const char16_t ch = units[i];
            if (!isDigit(ch)) {
                key[i] = ch;
                continue;
            }
            key[i] = u'0';
            digits = true;
            // The characters at either end of a run of digits.
            if (kept
                && ((i > 0 && !isDigit(units[i - 1]) && !besideDigitsAlike(units[i - 1], measure))
                    || (i + 1 < n && !isDigit(units[i + 1])
                        && !besideDigitsAlike(units[i + 1], measure))))
                kept = false;
        }
        if (digits && m_digitPairs <= 0 && !digitPairsAlike(measure))
            kept = false;
        if (!kept)
            std::copy(units, units + n, key);
        m_last.digitsAsZero = kept;
        m_hash = hashOf(m_key);
        ++m_lookups;
        if (!m_slots.empty()) {
            for (size_t s = m_hash & (m_slots.size() - 1);; s = (s + 1) & (m_slots.size() - 1)) {
                const Slot &slot = m_slots[s];
                if (slot.length < 0)
                    break;
                if (slot.hash == m_hash && slot.length == n
                    && std::equal(m_key.begin(), m_key.end(), m_shapes.begin() + slot.start)) {
                    ++m_hits;
                    m_last.known = slot.known;
                    return slot.known;
                }
            }
        }
        if (m_lookups >= TrialLookups && m_hits * 4 < m_lookups) {
            m_on = false; // mostly new shapes: not worth a lookup per cell
            m_slots = {};
            m_shapes = {};
        }
        return {};
    }
    // Remembers the shape the last find() did not know.
    void remember(Known known)
    {
        if (!m_on || m_count >= MaxEntries)
            return;
        if ((m_count + 1) * 2 > m_slots.size())
            grow();
        insert({m_hash, qsizetype(m_shapes.size()), m_key.size(), known});
        m_shapes.append(m_key.data(), m_key.size());
        ++m_count;
        m_last.known = known;
    }

private:
    struct Slot
    {
        quint64 hash = 0;
        qsizetype start = 0, length = -1; // in m_shapes; -1: an empty slot
        Known known;
    };

    static bool isDigit(char16_t ch) { return ch >= u'0' && ch <= u'9'; }
    // Whether the text has the shape of the last find(), which m_key still holds.
    bool sameAsLast(const char16_t *units, qsizetype n) const
    {
        const char16_t *key = m_key.data();
        if (!m_last.digitsAsZero)
            return std::equal(units, units + n, key);
        for (qsizetype i = 0; i < n; ++i)
            if ((isDigit(units[i]) ? u'0' : units[i]) != key[i])
                return false;
        return true;
    }
    static quint64 hashOf(const CellText &key)
    {
        // Four units at a time, then the rest.
        quint64 h = 0xcbf29ce484222325ull ^ quint64(key.size());
        qsizetype i = 0;
        for (; i + 4 <= key.size(); i += 4) {
            quint64 word;
            std::memcpy(&word, key.data() + i, sizeof word);
            h = (h ^ word) * 0x9e3779b97f4a7c15ull;
            h ^= h >> 29;
        }
        for (; i < key.size(); ++i)
            h = (h ^ key[i]) * 0x100000001b3ull;
        return h ^ (h >> 32);
    }
    void insert(const Slot &entry)
    {
        size_t s = entry.hash & (m_slots.size() - 1);
        while (m_slots[s].length >= 0)
            s = (s + 1) & (m_slots.size() - 1);
        m_slots[s] = entry;
    }
    void grow()
    {
        const size_t size = std::max<size_t>(m_slots.size() * 2, 64);
        const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(size));
        for (const Slot &slot : old)
            if (slot.length >= 0)
                insert(slot);
    }
    // Whether a digit next to ch may be read as "0": every digit beside it is as wide.
    bool besideDigitsAlike(char16_t ch, const TextMeasure &measure)
    {
        if (ch >= BesideTable)
            return false;
        if (m_beside[ch] > 0)
            return true;
        return checkBeside(ch, measure);
    }
    bool checkBeside(char16_t ch, const TextMeasure &measure)
    {
        if (QChar::isSurrogate(ch))
            return false;
        qint8 &known = m_beside[ch];
        if (known == 0) {
            char16_t before[2] = {ch, u'0'}, after[2] = {u'0', ch};
            const int w1 = measure.width(QStringView(before, 2));
            const int w2 = measure.width(QStringView(after, 2));
            bool alike = digitPairsAlike(measure);
            for (char16_t d = u'1'; alike && d <= u'9'; ++d) {
                before[1] = after[0] = d;
                alike = measure.width(QStringView(before, 2)) == w1
                    && measure.width(QStringView(after, 2)) == w2;
            }
            known = alike ? 1 : -1;
        }
        return known > 0;
    }
    // Every digit as wide as "0", alone (in a run of twelve) and in each of the hundred
    // pairs.
    bool digitPairsAlike(const TextMeasure &measure)
    {
        if (m_digitPairs == 0) {
            char16_t pair[2] = {u'0', u'0'};
            const int width = measure.width(QStringView(pair, 2));
            char16_t run[12];
            std::fill(std::begin(run), std::end(run), u'0');
            const int runWidth = measure.width(QStringView(run, 12));
            bool alike = true;
            for (char16_t a = u'1'; alike && a <= u'9'; ++a) {
                std::fill(std::begin(run), std::end(run), a);
                alike = measure.width(QStringView(run, 12)) == runWidth;
            }
            for (char16_t a = u'0'; alike && a <= u'9'; ++a)
                for (char16_t b = u'0'; alike && b <= u'9'; ++b) {
                    pair[0] = a;
                    pair[1] = b;
                    alike = measure.width(QStringView(pair, 2)) == width;
                }
            m_digitPairs = alike ? 1 : -1;
        }
        return m_digitPairs > 0;
    }

    static constexpr char16_t BesideTable = 0x3000;
    static constexpr qsizetype TrialLookups = 4096;
    static constexpr size_t MaxEntries = 1 << 14;
    std::vector<Slot> m_slots; // open addressing, at most half full
    CellText m_shapes; // the remembered shapes, one after the other
    size_t m_count = 0;
    CellText m_key; // the shape of the last find()
    struct
    {
        Known known; // what is known of m_key; none: not remembered
        bool digitsAsZero = false; // m_key reads digits as "0"
    } m_last;
    quint64 m_hash = 0;
    std::vector<qint8> m_beside = std::vector<qint8>(BesideTable, 0); // 1 alike, -1 not
    qsizetype m_lookups = 0, m_hits = 0;
    int m_digitPairs = 0; // 1 alike, -1 not, 0 not checked yet
    bool m_on = true;
};

// Collects the rows of one load: formats and measures each cell, appends the row,
// counts and checks the cancel flag.
class RowBuilder
{
public:
    RowBuilder(const ListLoadOptions &options, LoadedList &out, int columns)
        : m_options(options), m_out(out),
          m_formatter(out.columns, options.parsed, options.regional),
          m_columns(std::max(columns, 0)), m_views(size_t(m_columns)), m_scratch(size_t(m_columns)),
          m_texts(size_t(m_columns)), m_raw(size_t(m_columns)), m_widths(size_t(m_columns)),
          m_measured(size_t(m_columns)), m_caches(size_t(m_columns)), m_memos(size_t(m_columns)),
          m_measure(bool(options.measure.width))
    {
        m_out.rows = ListRows(m_columns);
        for (int c = 0; c < m_columns; ++c) {
            m_widths[size_t(c)] = out.columns.length(c);
            m_asIs.push_back(!options.formatCells || m_formatter.showsAsIs(c));
        }
    }

    bool isDateColumn(int c) const { return m_formatter.valueFormat(c).type == itDate; }

    // A cell whose text the caller keeps alive until endRow().
    void cell(int c, QStringView raw)
    {
        if (!m_options.formatCells)
            take(c, raw);
        else if (m_asIs[size_t(c)])
            take(c, trimmedBlanks(raw));
        else
            formatted(c, trimmedBlanks(raw));
    }
    // A cell given as a string: kept here until endRow().
    void cell(int c, QString raw)
    {
        m_scratch[size_t(c)] = std::move(raw);
        cell(c, QStringView(m_scratch[size_t(c)]));
    }
    // A number from the database: shown as its text would be, and formatted straight
    // from the number in a number column.
    void number(int c, double value)
    {
        if (m_options.formatCells && !m_asIs[size_t(c)]) {
            CellText &shown = m_texts[size_t(c)];
            if (m_formatter.formatFast(value, c, shown)) {
                take(c, QStringView(shown.data(), shown.size()));
                return;
            }
        }
        cell(c, numberToString(value, m_options.regional));
    }
    // An integer from the database, written in decimal.
    void integer(int c, qint64 value)
    {
        CellText &digits = m_raw[size_t(c)];
        digits.clear();
        char buf[24];
        const auto res = std::to_chars(buf, buf + sizeof buf, value);
        for (const char *p = buf; p < res.ptr; ++p)
            digits.append(char16_t(*p));
        cell(c, QStringView(digits.data(), digits.size()));
    }
    // A date from the database: shown as its text (dateToString) would be.
    void date(int c, QDate value)
    {
        if (!value.isValid() || value.year() < 1 || value.year() > 9999) {
            cell(c, dateToString(value, m_options.regional));
            return;
        }
        const int y = value.year(), m = value.month(), d = value.day();
        const char16_t day[2] = {char16_t(u'0' + d / 10), char16_t(u'0' + d % 10)};
        const char16_t month[2] = {char16_t(u'0' + m / 10), char16_t(u'0' + m % 10)};
        const char16_t year[4] = {char16_t(u'0' + y / 1000), char16_t(u'0' + y / 100 % 10),
                                  char16_t(u'0' + y / 10 % 10), char16_t(u'0' + y % 10)};
        const char16_t separator = m_options.regional.dateSeparator.unicode();
        CellText &text = m_raw[size_t(c)];
        text.clear();
        const auto part = [&text](const char16_t *digits, qsizetype n) {
            text.append(digits, n);
        };
        switch (m_options.regional.dateOrder) {
        case RegionalSettings::DayMonthYear:
            part(day, 2), text.append(separator), part(month, 2), text.append(separator);
            part(year, 4);
            break;
        case RegionalSettings::MonthDayYear:
            part(month, 2), text.append(separator), part(day, 2), text.append(separator);
            part(year, 4);
            break;
        case RegionalSettings::YearMonthDay:
            part(year, 4), text.append(separator), part(month, 2), text.append(separator);
            part(day, 2);
            break;
        }
        cell(c, QStringView(text.data(), text.size()));
    }
    // A text read as UTF-8, decoded into the builder's own buffer; false, with no cell
    // taken, when it is not well-formed UTF-8 (the caller has it converted otherwise).
    bool utf8(int c, const unsigned char *text, qsizetype length)
    {
        CellText &units = m_raw[size_t(c)];
        units.resize(length); // never more units than bytes
        char16_t *out = units.data();
        const unsigned char *p = text, *end = text + length;
        while (p < end) {
            const unsigned b = *p;
            if (b < 0x80) {
                *out++ = char16_t(b);
                ++p;
                continue;
            }
            const auto follows = [&](qsizetype i) {
                return p + i < end && (p[i] & 0xC0) == 0x80;
            };
            if (b >= 0xC2 && b < 0xE0 && follows(1)) {
                *out++ = char16_t((b & 0x1F) << 6 | (p[1] & 0x3F));
                p += 2;
            } else if (b >= 0xE0 && b < 0xF0 && follows(1) && follows(2)) {
                const unsigned u = (b & 0x0F) << 12 | (p[1] & 0x3F) << 6 | (p[2] & 0x3F);
                if (u < 0x800 || (u >= 0xD800 && u < 0xE000))
                    return false; // overlong, or a surrogate
                *out++ = char16_t(u);
                p += 3;
            } else if (b >= 0xF0 && b < 0xF5 && follows(1) && follows(2) && follows(3)) {
                const unsigned u
                    = (b & 0x07) << 18 | (p[1] & 0x3F) << 12 | (p[2] & 0x3F) << 6 | (p[3] & 0x3F);
                if (u < 0x10000 || u > 0x10FFFF)
                    return false;
                *out++ = char16_t(0xD800 + ((u - 0x10000) >> 10));
                *out++ = char16_t(0xDC00 + ((u - 0x10000) & 0x3FF));
                p += 4;
            } else {
                return false;
            }
        }
        units.resize(out - units.data());
        cell(c, QStringView(units.data(), units.size()));
        return true;
    }

    // Appends the row; false once the load is canceled.
    bool endRow()
    {
        m_out.rows.appendRow(m_views);
        ++m_out.sourceRows;
        if (m_out.sourceRows % std::max(m_options.checkEvery, 1) == 0) {
            if (m_options.progress)
                m_options.progress(m_out.sourceRows);
            if (m_options.cancel && m_options.cancel->load(std::memory_order_relaxed)) {
                m_out = LoadedList();
                m_out.canceled = true;
                return false;
            }
        }
        return true;
    }

    // Stores the widths and adds the new-item row.
    void finish()
    {
        if (m_out.canceled)
            return;
        if (m_options.progress && m_out.sourceRows % std::max(m_options.checkEvery, 1) != 0)
            m_options.progress(m_out.sourceRows);
        for (int c = 0; c < m_columns; ++c)
            if (m_widths[size_t(c)] > m_out.columns.length(c))
                m_out.columns.setLength(c, m_widths[size_t(c)]);
        if (m_options.newItemRow) {
            if (m_out.rows.columnCount() == 0)
                m_out.rows.setColumnCount(1);
            const QString text = *m_options.newItemRow;
            m_out.rows.prependRow({QStringView(text)});
            fitColumn(m_out.columns, 0, text, {m_options.measure.width, 0, {}});
        }
    }

private:
    // A trimmed cell of a column that formats its cells.
    void formatted(int c, QStringView trimmed)
    {
        CellText &text = m_texts[size_t(c)];
        if (m_formatter.formatFast(trimmed, c, text)) {
            take(c, QStringView(text.data(), text.size()));
            return;
        }
        // Left to the display formatter, whose results are remembered.
        const QString raw = trimmed.toString();
        QString &shown = m_scratch[size_t(c)];
        FormatCache &cache = m_caches[size_t(c)];
        if (const QString *known = cache.find(raw)) {
            shown = *known;
        } else {
            shown = m_formatter.format(raw, c);
            cache.remember(raw, shown);
        }
        take(c, shown);
    }

    void take(int c, QStringView text)
    {
        m_views[size_t(c)] = text;
        if (!m_measure || text.isEmpty())
            return;
        int &width = m_widths[size_t(c)];
        const TextMeasure &measure = m_options.measure;
        if (measure.maxCharWidth > 0 && qint64(text.size()) * measure.maxCharWidth <= width)
            return; // cannot be wider than the column already is
        // The first cells of a column are measured one by one; the shapes are worth
        // remembering only in a longer list.
        WidthMemo &memo = m_memos[size_t(c)];
        const bool remembering = ++m_measured[size_t(c)] > MeasuredAlone;
        if (remembering) {
            const WidthMemo::Known known = memo.find(text, measure);
            if (known.exact)
                width = std::max(width, known.width);
            if (known.width >= 0)
                return; // an exact width, or a bound that did not pass the column
        }
        if (measure.bound) {
            const int bound = measure.bound(text);
            if (bound <= width) {
                if (remembering)
                    memo.remember({bound, false});
                return;
            }
        }
        const int measured = measure.width(text);
        width = std::max(width, measured);
        if (remembering)
            memo.remember({measured, true});
    }

    static constexpr int MeasuredAlone = 64;

    const ListLoadOptions &m_options;
    LoadedList &m_out;
    ListCellFormatter m_formatter;
    int m_columns;
    std::vector<QStringView> m_views;
    std::vector<QString> m_scratch;
    std::vector<CellText> m_texts; // the formatted cells
    std::vector<CellText> m_raw; // the cells read into the builder's buffers
    std::vector<int> m_widths;
    std::vector<int> m_measured; // cells that reached the measuring, per column
    std::vector<bool> m_asIs;
    std::vector<FormatCache> m_caches;
    std::vector<WidthMemo> m_memos;
    bool m_measure;
};

// Reads a positioned or fresh query to its end.
void readQuery(QSqlQuery &query, const ListLoadOptions &options, LoadedList &out,
               const ColumnsReady &columnsReady, const QString &what)
{
    const int columns = query.record().count();
    if (columnsReady)
        columnsReady(out.columns, columns);
    RowBuilder rows(options, out, columns);
    std::vector<bool> dateColumn(size_t(std::max(columns, 0)));
    for (int c = 0; c < columns; ++c)
        dateColumn[size_t(c)] = rows.isDateColumn(c);
    bool onRow = query.isValid() || (query.at() == QSql::BeforeFirstRow && query.next());
    while (onRow) {
        for (int c = 0; c < columns; ++c) {
            const QVariant v = query.value(c);
            if (v.isNull()) {
                rows.cell(c, QStringView());
                continue;
            }
            switch (v.typeId()) {
            case QMetaType::QString:
                rows.cell(c, v.toString());
                break;
            case QMetaType::Double:
            case QMetaType::Float:
                rows.number(c, v.toDouble());
                break;
            case QMetaType::QDate:
                rows.date(c, v.toDate());
                break;
            default:
                rows.cell(c, valueText(v, options.regional, dateColumn[size_t(c)]));
                break;
            }
        }
        if (!rows.endRow())
            return;
        onRow = query.next();
    }
    // next() also answers false when the rows break off: the error tells.
    if (query.lastError().type() != QSqlError::NoError)
        fail(QStringLiteral("reading the rows of %1 failed").arg(what), query.lastError());
    rows.finish();
}

// The SQLite handle of an open QSQLITE connection; none for any other driver.
sqlite3 *sqliteHandle(const QSqlDatabase &db)
{
    if (db.driverName() != u"QSQLITE" || !db.driver())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

struct StatementDeleter
{
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};

// Reads the rows of a query straight from the SQLite handle under a QSQLITE
// connection, each cell as the driver gives it to a QSqlQuery (an integer, a real, a text,
// the bytes of a blob, or Null) and shown the same way, without a QVariant and a QString
// per cell. False, with nothing read, when the connection has no such handle or SQLite
// does not take the query as one statement: the query then runs through the driver,
// which reports what is wrong with it.
bool readSqlite(const QSqlDatabase &db, const QString &sql, const ListLoadOptions &options,
                LoadedList &out, const ColumnsReady &columnsReady, const QString &what)
{
    sqlite3 *handle = sqliteHandle(db);
    if (!handle)
        return false;
    sqlite3_stmt *prepared = nullptr;
    const void *tail = nullptr;
    const int rc = sqlite3_prepare16_v2(handle, sql.utf16(), int((sql.size() + 1) * sizeof(QChar)),
                                        &prepared, &tail);
    const std::unique_ptr<sqlite3_stmt, StatementDeleter> statement(prepared);
    if (rc != SQLITE_OK || !statement)
        return false;
    if (tail && !QStringView(static_cast<const char16_t *>(tail)).trimmed().isEmpty())
        return false; // more than one statement

    sqlite3_stmt *st = statement.get();
    const int columns = sqlite3_column_count(st);
    if (columnsReady)
        columnsReady(out.columns, columns);
    RowBuilder rows(options, out, columns);
    int step;
    while ((step = sqlite3_step(st)) == SQLITE_ROW) {
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(st, c)) {
            case SQLITE_NULL:
                rows.cell(c, QStringView());
                break;
            case SQLITE_INTEGER:
                rows.integer(c, sqlite3_column_int64(st, c));
                break;
            case SQLITE_FLOAT:
                rows.number(c, sqlite3_column_double(st, c));
                break;
            case SQLITE_BLOB: {
                const char *bytes = static_cast<const char *>(sqlite3_column_blob(st, c));
                rows.cell(c, QString::fromUtf8(bytes, sqlite3_column_bytes(st, c)));
                break;
            }
            default: {
                // Well-formed UTF-8 is decoded here, anything else SQLite converts
                // itself, as it does for the driver.
                const unsigned char *text = sqlite3_column_text(st, c);
                if (!rows.utf8(c, text, sqlite3_column_bytes(st, c))) {
                    const void *units = sqlite3_column_text16(st, c);
                    rows.cell(
                        c,
                        QStringView(static_cast<const char16_t *>(units),
                                    sqlite3_column_bytes16(st, c) / qsizetype(sizeof(QChar))));
                }
                break;
            }
            }
        }
        if (!rows.endRow())
            return true;
    }
    if (step != SQLITE_DONE)
        fail(QStringLiteral("reading the rows of %1 failed").arg(what),
             QSqlError(QStringLiteral("Unable to fetch row"),
                       QString::fromUtf8(sqlite3_errmsg(handle)), QSqlError::ConnectionError,
                       QString::number(step)));
    rows.finish();
    return true;
}

LoadedList runQuery(const QSqlDatabase &db, const QString &sql, const ListLoadOptions &options,
                    const ColumnsReady &columnsReady, const QString &where)
{
    const QString what = QStringLiteral("the list query \"%1\" on %2").arg(shownQuery(sql), where);
    LoadedList out;
    if (readSqlite(db, sql, options, out, columnsReady, what))
        return out;
    out = LoadedList();
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(sql))
        fail(QStringLiteral("running %1 failed").arg(what), query.lastError());
    readQuery(query, options, out, columnsReady, what);
    return out;
}

QString describe(const QSqlDatabase &db)
{
    ConnectionSettings cs;
    cs.driver = db.driverName();
    cs.databaseName = db.databaseName();
    cs.hostName = db.hostName();
    cs.port = db.port();
    cs.userName = db.userName();
    if (cs.driver == u"QODBC")
        return QStringLiteral("the QODBC connection \"%1\"").arg(db.connectionName());
    return cs.describe();
}

// A connection of the loader's own, removed when the load ends whichever way it ends.
class OwnConnection
{
public:
    OwnConnection()
    {
        static std::atomic<quint64> counter {0};
        m_name = QStringLiteral("velmora-list-%1").arg(++counter);
    }
    ~OwnConnection()
    {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            if (db.isValid())
                db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    OwnConnection(const OwnConnection &) = delete;
    OwnConnection &operator=(const OwnConnection &) = delete;
    const QString &name() const { return m_name; }

private:
    QString m_name;
};

// What every column's format starts from: the field's parsed format, the list's
// regional settings, and the date layout of the list's value column.
ValueFormat listValueFormat(const ParsedFormat *parsed, const RegionalSettings &regional)
{
    ValueFormat vf;
    vf.parsed = parsed;
    vf.regional = regional;
    vf.dateSlot = 1;
    return vf;
}

} // namespace

ListCellFormatter::ListCellFormatter(const ListColumns &columns, const ParsedFormat *parsed,
                                     const RegionalSettings &regional)
    : m_default(listValueFormat(parsed, regional))
{
    for (int c = 0; c <= columns.upperBound(); ++c) {
        ValueFormat vf = m_default.valueFormat();
        vf.type = columns.dataType(c);
        vf.format = columns.formatString(c);
        if (vf.type == itBool)
            vf.boolFormat = columns.boolFormat(leadingIndex(vf.format));
        m_asIs.push_back(vf.type == itAlfaNum && vf.format.isEmpty());
        // Each column's pattern is read here once, not again for every cell.
        m_formats.emplace_back(vf);
    }
}

const CellFormat &ListCellFormatter::cellFormat(int column) const
{
    return column >= 0 && size_t(column) < m_formats.size() ? m_formats[size_t(column)] : m_default;
}

const ValueFormat &ListCellFormatter::valueFormat(int column) const
{
    return cellFormat(column).valueFormat();
}

bool ListCellFormatter::showsAsIs(int column) const
{
    return column >= 0 && size_t(column) < m_asIs.size() ? m_asIs[size_t(column)] : true;
}

QString ListCellFormatter::format(const QString &cell, int column) const
{
    return cellFormat(column).format(trimBlanks(cell));
}

bool ListCellFormatter::formatFast(QStringView trimmed, int column, CellText &out) const
{
    return cellFormat(column).formatFast(trimmed, out);
}

bool ListCellFormatter::formatFast(double value, int column, CellText &out) const
{
    return cellFormat(column).formatFast(value, out);
}

void fitColumn(ListColumns &columns, int column, QStringView text, const TextMeasure &measure)
{
    if (!measure.width || text.isEmpty())
        return;
    const int length = columns.length(column);
    if (!measure.mayPass(text, length))
        return;
    const int width = measure.width(text);
    if (width > length)
        columns.setLength(column, width);
}

bool ListItems::add(const QString &line)
{
    const bool starting = !m_started;
    const QList<QStringView> cells = QStringView(line).split(u'\t');
    if (starting) {
        m_rows = ListRows(int(cells.size()));
        m_started = true;
    }
    m_rows.appendRow(std::span<const QStringView>(cells.data(), size_t(cells.size())));
    return starting;
}

void ListItems::reset()
{
    m_rows = ListRows();
    m_started = false;
}

ListLoader::ListLoader(ListLoadOptions options) : m_options(std::move(options)) { }

LoadedList ListLoader::fromConnection(const QString &connectionString, const QString &sql,
                                      const ColumnsReady &columnsReady) const
{
    const ConnectionSettings settings = parseConnectionString(connectionString);
    OwnConnection connection;
    QSqlDatabase db = QSqlDatabase::addDatabase(settings.driver, connection.name());
    settings.applyTo(db);
    if (!db.open())
        fail(QStringLiteral("cannot connect to %1").arg(settings.describe()), db.lastError());
    return runQuery(db, sql, m_options, columnsReady, settings.describe());
}

LoadedList ListLoader::fromDatabase(const QSqlDatabase &db, const QString &sql,
                                    const ColumnsReady &columnsReady) const
{
    if (!db.isValid())
        fail(QStringLiteral("there is no database connection to load the list from "
                            "(the application has no default connection)"),
             QSqlError(QString(), QString(), QSqlError::ConnectionError));
    if (!db.isOpen()) {
        QSqlDatabase opened = db;
        if (!opened.open())
            fail(QStringLiteral("cannot connect to %1").arg(describe(db)), opened.lastError());
    }
    return runQuery(db, sql, m_options, columnsReady, describe(db));
}

LoadedList ListLoader::fromQuery(QSqlQuery &query, const ColumnsReady &columnsReady) const
{
    if (!query.isActive())
        fail(QStringLiteral("the query given for the list has not been run (it is not active)"),
             query.lastError());
    LoadedList out;
    readQuery(
        query, m_options, out, columnsReady,
        QStringLiteral("the query \"%1\" given for the list").arg(shownQuery(query.lastQuery())));
    return out;
}

LoadedList ListLoader::fromItems(const ListRows &items, const ColumnsReady &columnsReady) const
{
    LoadedList out;
    const int columns = items.columnCount();
    if (columnsReady)
        columnsReady(out.columns, columns);
    RowBuilder rows(m_options, out, columns);
    for (int r = 0; r < items.rowCount(); ++r) {
        for (int c = 0; c < columns; ++c)
            rows.cell(c, items.cell(r, c));
        if (!rows.endRow())
            return out;
    }
    rows.finish();
    return out;
}

LoadedList ListLoader::fromBool(const BoolFormat &format, bool enableEmpty) const
{
    LoadedList out;
    out.columns.setUpperBound(0);
    out.rows = ListRows(1);
    out.rows.appendRow({QStringView(format.trueText)});
    out.rows.appendRow({QStringView(format.falseText)});
    if (enableEmpty)
        out.rows.appendRow({QStringView()});
    out.sourceRows = out.rows.rowCount();
    if (m_options.measure.width)
        out.columns.setLength(0,
                              std::max(m_options.measure.width(format.trueText),
                                       m_options.measure.width(format.falseText)));
    return out;
}

} // namespace velmora::detail
