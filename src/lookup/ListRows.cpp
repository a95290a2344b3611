#include "ListRows.h"
#include "format/Text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

#ifdef __linux__
#    include <sys/mman.h>
#endif

namespace velmora::detail {

namespace {

char16_t asciiUpper(char16_t c)
{
    return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c;
}

// The upper case of every UTF-16 unit as QString::toUpper maps it, where that is one
// unit for one; 0 for a unit that takes more (a surrogate, or "ß", which becomes "SS").
// Built once, a block of 256 units at a time through toUpper itself.
class UpperUnits
{
public:
    UpperUnits()
    {
        for (int block = 0; block < 256; ++block) {
            QString units(256, Qt::Uninitialized);
            for (int i = 0; i < 256; ++i) {
                const char16_t u = char16_t(block * 256 + i);
                units[i] = QChar::isSurrogate(u) ? QChar(u'a') : QChar(u);
            }
            const QString upper = units.toUpper();
            for (int i = 0; i < 256; ++i) {
                const char16_t u = char16_t(block * 256 + i);
                if (QChar::isSurrogate(u)) {
                    m_map[u] = 0;
                } else if (upper.size() == 256) {
                    m_map[u] = upper[i].unicode();
                } else {
                    const QString one = QString(QChar(u)).toUpper();
                    m_map[u] = one.size() == 1 ? one[0].unicode() : 0;
                }
            }
        }
    }
    char16_t operator[](char16_t u) const { return m_map[u]; }

private:
    char16_t m_map[0x10000];
};

const UpperUnits &upperUnits()
{
    static const UpperUnits table;
    return table;
}

// A key in comparable form: the trimmed text, mapped to upper case unit by unit as it is
// read (plain arithmetic for ASCII, a table for the rest); a text with a unit that does
// not map one for one is upper-cased whole (its upper case may be longer: "ß" becomes
// "SS").
class Key
{
public:
    Key(const Key &) = delete;
    Key &operator=(const Key &) = delete;
    explicit Key(QStringView text) : m_view(trimmedBlanks(text))
    {
        for (const QChar c : m_view) {
            if (c.unicode() < 0x80)
                continue;
            if (!m_table)
                m_table = &upperUnits();
            if ((*m_table)[c.unicode()] == 0) {
                m_upper = m_view.toString().toUpper();
                m_view = m_upper;
                m_table = nullptr;
                m_mapped = true;
                break;
            }
        }
    }
    qsizetype size() const { return m_view.size(); }
    char16_t at(qsizetype i) const
    {
        const char16_t c = m_view.at(i).unicode();
        if (m_mapped || c < 0x80)
            return m_mapped ? c : asciiUpper(c);
        return (*m_table)[c];
    }
    quint32 hash() const
    {
        // FNV-1a over the upper-case text, then a final mix for the top bits.
        quint64 h = 0xcbf29ce484222325ull;
        for (qsizetype i = 0; i < m_view.size(); ++i)
            h = (h ^ at(i)) * 0x100000001b3ull;
        h ^= h >> 29;
        h *= 0xbf58476d1ce4e5b9ull;
        h ^= h >> 32;
        return quint32(h);
    }
    bool operator==(const Key &other) const
    {
        if (size() != other.size())
            return false;
        for (qsizetype i = 0; i < size(); ++i)
            if (at(i) != other.at(i))
                return false;
        return true;
    }

private:
    QStringView m_view;
    QString m_upper;
    const UpperUnits *m_table = nullptr; // set once a unit is not ASCII
    bool m_mapped = false; // m_view is the upper-cased text
};

// An array of plain values that is allocated once. A large one is asked to sit on huge
// pages where the system grants them on request: a search reads it at random, and with
// small pages each read of a big index would also miss the address cache.
template<typename T>
class PagedArray
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    PagedArray() = default;
    PagedArray(size_t size, const T &fill) : m_size(size)
    {
        if (size == 0)
            return;
        constexpr size_t Huge = size_t(2) << 20;
        const size_t bytes = size * sizeof(T);
        if (bytes >= Huge) {
            const size_t rounded = (bytes + Huge - 1) / Huge * Huge;
            m_data = static_cast<T *>(std::aligned_alloc(Huge, rounded));
#ifdef MADV_HUGEPAGE
            if (m_data)
                madvise(m_data, rounded, MADV_HUGEPAGE); // a hint: refused is fine
#endif
        } else {
            m_data = static_cast<T *>(std::malloc(bytes));
        }
        if (!m_data)
            throw std::bad_alloc();
        std::uninitialized_fill_n(m_data, size, fill);
    }
    ~PagedArray()
    {
        std::free(m_data);
    }
    PagedArray(PagedArray &&other) noexcept
        : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0))
    { }
    PagedArray &operator=(PagedArray &&other) noexcept
    {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        return *this;
    }

    T &operator[](size_t i)
    {
        return m_data[i];
    }
    const T &operator[](size_t i) const
    {
        return m_data[i];
    }
    size_t size() const
    {
        return m_size;
    }

private:
    T *m_data = nullptr;
    size_t m_size = 0;
};

} // namespace

// The distinct keys of one column in an open-addressing table (linear probing, at
// most three quarters full). A slot holds a key's hash, the lowest row with that key
// and where that row's text lies, so that a search reads one slot and one text; the
// further rows of a key follow in ascending order through nextRow.
struct ListRows::ColumnIndex
{
    struct Slot
    {
        quint32 hash = 0;
        quint32 row = 0; // the row + 1; 0 = empty slot
        quint32 start = 0, length = 0; // the row's cell in m_text
    };
    quint32 mask = 0; // slots - 1
    PagedArray<Slot> table;
    PagedArray<qint32> nextRow; // the next row with the same key, -1 = none

    qsizetype bytes() const
    {
        return qsizetype(table.size() * sizeof(Slot) + nextRow.size() * sizeof(qint32));
    }
};

ListRows::ListRows(int columnCount) : m_columns(std::max(columnCount, 0)) { }

ListRows::~ListRows() = default;

// A moved-from table is empty: no rows, no columns, no offsets.
ListRows::ListRows(ListRows &&other) noexcept
    : m_columns(std::exchange(other.m_columns, 0)), m_rows(std::exchange(other.m_rows, 0)),
      m_text(std::move(other.m_text)), m_offsets(std::move(other.m_offsets)),
      m_indexes(std::move(other.m_indexes))
{
    other.m_text.clear();
    other.m_offsets.clear();
}

ListRows &ListRows::operator=(ListRows &&other) noexcept
{
    if (this != &other) {
        m_columns = std::exchange(other.m_columns, 0);
        m_rows = std::exchange(other.m_rows, 0);
        m_text = std::move(other.m_text);
        m_offsets = std::move(other.m_offsets);
        m_indexes = std::move(other.m_indexes);
        other.m_text.clear();
        other.m_offsets.clear();
        other.m_indexes.clear();
    }
    return *this;
}

ListRows::ListRows(const ListRows &other)
    : m_columns(other.m_columns), m_rows(other.m_rows), m_text(other.m_text),
      m_offsets(other.m_offsets)
{ }

ListRows &ListRows::operator=(const ListRows &other)
{
    if (this != &other) {
        m_columns = other.m_columns;
        m_rows = other.m_rows;
        m_text = other.m_text;
        m_offsets = other.m_offsets;
        dropIndexes();
    }
    return *this;
}

void ListRows::dropIndexes()
{
    m_indexes.clear();
}

QStringView ListRows::cell(int row, int column) const
{
    if (row < 0 || row >= m_rows || column < 0 || column >= m_columns)
        return {};
    const qsizetype i = qsizetype(row) * m_columns + column;
    const quint32 from = m_offsets[i];
    return QStringView(m_text).sliced(from, m_offsets[i + 1] - from);
}

void ListRows::setColumnCount(int columns)
{
    if (m_rows == 0) {
        m_columns = std::max(columns, 0);
        dropIndexes();
    }
}

void ListRows::appendCells(std::span<const QStringView> cells)
{
    qsizetype length = 0;
    for (int c = 0; c < m_columns && size_t(c) < cells.size(); ++c)
        length += cells[size_t(c)].size();
    if (m_rows == std::numeric_limits<int>::max()
        || m_text.size() + length > qsizetype(std::numeric_limits<quint32>::max()))
        throw std::length_error("ListRows: the list holds more rows or text than it can address");
    if (m_offsets.isEmpty())
        m_offsets.append(0); // where the first cell starts
    const QChar *text = m_text.constData();
    const bool inside = std::any_of(cells.begin(), cells.end(), [&](QStringView cell) {
        return cell.data() >= text && cell.data() < text + m_text.size();
    });
    if (inside) { // a cell of this table: appended one by one, each where it is now
        for (int c = 0; c < m_columns; ++c) {
            if (size_t(c) < cells.size())
                m_text.append(cells[size_t(c)]);
            m_offsets.append(quint32(m_text.size()));
        }
    } else { // the row's text and offsets in one step each (both grow geometrically)
        qsizetype at = m_text.size();
        m_text.resize(at + length);
        QChar *out = m_text.data();
        const qsizetype first = m_offsets.size();
        m_offsets.resize(first + m_columns);
        quint32 *offset = m_offsets.data() + first;
        for (int c = 0; c < m_columns; ++c) {
            if (size_t(c) < cells.size()) {
                const QStringView cell = cells[size_t(c)];
                std::copy(cell.begin(), cell.end(), out + at);
                at += cell.size();
            }
            offset[c] = quint32(at);
        }
    }
    ++m_rows;
}

void ListRows::appendRow(std::span<const QStringView> cells)
{
    dropIndexes();
    appendCells(cells);
}

void ListRows::prependRow(std::span<const QStringView> cells)
{
    dropIndexes();
    ListRows top(m_columns);
    top.appendCells(cells);
    const quint32 shift = quint32(top.m_text.size());
    if (m_text.size() + shift > qsizetype(std::numeric_limits<quint32>::max())
        || m_rows == std::numeric_limits<int>::max())
        throw std::length_error("ListRows: the list holds more rows or text than it can address");
    m_text.prepend(top.m_text);
    if (m_offsets.isEmpty())
        m_offsets.append(0);
    for (quint32 &o : m_offsets)
        o += shift;
    // The first offset (0) is shared: the top row's cells end where the old first begins.
    m_offsets.insert(0, top.m_offsets.size() - 1, 0);
    std::copy(top.m_offsets.cbegin(), top.m_offsets.cend() - 1, m_offsets.begin());
    ++m_rows;
}

void ListRows::clear()
{
    m_rows = 0;
    m_text.clear();
    m_text.squeeze();
    m_offsets.clear();
    m_offsets.squeeze();
    dropIndexes();
}

void ListRows::reserve(int rows, qsizetype characters)
{
    m_text.reserve(characters);
    m_offsets.reserve(qsizetype(rows) * m_columns + 1);
}

qsizetype ListRows::bytesUsed() const
{
    qsizetype bytes = m_text.capacity() * qsizetype(sizeof(QChar))
        + m_offsets.capacity() * qsizetype(sizeof(quint32));
    for (const auto &index : m_indexes)
        if (index)
            bytes += index->bytes();
    return bytes;
}

const ListRows::ColumnIndex &ListRows::indexOf(int column) const
{
    if (m_indexes.size() < size_t(m_columns))
        m_indexes.resize(size_t(m_columns));
    std::unique_ptr<ColumnIndex> &slot = m_indexes[size_t(column)];
    if (slot)
        return *slot;

    auto index = std::make_unique<ColumnIndex>();
    size_t size = 16;
    while (size * 3 < size_t(m_rows) * 4)
        size *= 2;
    index->mask = quint32(size - 1);
    index->table = PagedArray<ColumnIndex::Slot>(size, {});
    index->nextRow = PagedArray<qint32>(size_t(m_rows), -1);
    std::vector<qint32> lastRow(size, -1); // per slot: the last row of its key so far

    for (int r = 0; r < m_rows; ++r) {
        const qsizetype i = qsizetype(r) * m_columns + column;
        const quint32 start = m_offsets[i], length = m_offsets[i + 1] - start;
        const Key key(QStringView(m_text).sliced(start, length));
        const quint32 hash = key.hash();
        for (quint32 s = hash & index->mask;; s = (s + 1) & index->mask) {
            ColumnIndex::Slot &entry = index->table[s];
            if (entry.row == 0) { // a new key
                entry = {hash, quint32(r) + 1, start, length};
                lastRow[s] = r;
                break;
            }
            if (entry.hash == hash
                && Key(QStringView(m_text).sliced(entry.start, entry.length)) == key) {
                index->nextRow[size_t(lastRow[s])] = r; // one more row of the key
                lastRow[s] = r;
                break;
            }
        }
    }
    slot = std::move(index);
    return *slot;
}

int ListRows::findRow(int column, QStringView text, int firstRow) const
{
    if (column < 0 || column >= m_columns || m_rows == 0)
        return -1;
    firstRow = std::max(firstRow, 0);
    if (firstRow >= m_rows)
        return -1;
    const ColumnIndex &index = indexOf(column);
    const Key key(text);
    const quint32 hash = key.hash();
    for (quint32 s = hash & index.mask;; s = (s + 1) & index.mask) {
        const ColumnIndex::Slot &entry = index.table[s];
        if (entry.row == 0)
            return -1;
        if (entry.hash != hash
            || !(Key(QStringView(m_text).sliced(entry.start, entry.length)) == key))
            continue; // another key
        int row = int(entry.row) - 1;
        while (row >= 0 && row < firstRow)
            row = index.nextRow[size_t(row)];
        return row;
    }
}

int ListRows::findRowScan(int column, QStringView text, int firstRow) const
{
    if (column < 0 || column >= m_columns)
        return -1;
    const QString wanted = trimmedBlanks(text).toString().toUpper();
    for (int r = std::max(firstRow, 0); r < m_rows; ++r)
        if (trimmedBlanks(cell(r, column)).toString().toUpper() == wanted)
            return r;
    return -1;
}

} // namespace velmora::detail
