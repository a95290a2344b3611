#pragma once

// The edit box that the entry rules work on: a text with a caret and a selection, in
// UTF-16 positions counted from 0, held in memory. The engine edits it and hands the
// result to the field, which writes its QLineEdit once per edit. Insertions and
// removals work in place, so a long paste costs no more than its characters.

#include <QtCore/QString>

namespace velmora::detail {

// The edit box's state as the field hands it over and takes it back.
struct EditState
{
    QString text;
    int selStart = 0;
    int selLength = 0;

    friend bool operator==(const EditState &, const EditState &) = default;
};

class EditBox
{
public:
    const QString &text() const { return m_text; }
    // Replaces the whole text; the caret goes to 0 and the selection is dropped.
    void setText(const QString &text)
    {
        m_text = text;
        m_start = 0;
        m_length = 0;
        ++m_version;
    }
    int selStart() const { return m_start; }
    // Moves the caret (clamped to the text) and drops the selection.
    void setSelStart(int start)
    {
        m_start = qBound(0, start, size());
        m_length = 0;
    }
    int selLength() const { return m_length; }
    // Selects length characters from selStart() on (clamped to the text).
    void setSelLength(int length) { m_length = qBound(0, length, size() - m_start); }
    QString selText() const { return m_text.mid(m_start, m_length); }
    int size() const { return int(m_text.size()); }

    // In-place edits; the caret and selection are left for the caller to set.
    void insert(int position, QChar c)
    {
        m_text.insert(position, c);
        ++m_version;
    }
    void remove(int position, int length)
    {
        m_text.remove(position, length);
        ++m_version;
    }
    void replace(int position, int length, QStringView with)
    {
        m_text.replace(position, length, with.toString());
        ++m_version;
    }
    void put(int position, QChar c)
    {
        m_text[position] = c;
        ++m_version;
    }
    // Changes with every edit of the text: a rule may keep what it read off the text
    // as long as the version stands.
    quint64 version() const { return m_version; }

    EditState state() const { return {m_text, m_start, m_length}; }
    void load(const EditState &state)
    {
        setText(state.text);
        setSelStart(state.selStart);
        setSelLength(state.selLength);
    }

private:
    QString m_text;
    int m_start = 0;
    int m_length = 0;
    quint64 m_version = 0;
};

} // namespace velmora::detail
