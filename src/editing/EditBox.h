#pragma once

// The edit box that the entry rules work on: a text with a caret and a selection,
// in UTF-16 positions counted from 0. The field adapts its QLineEdit to it; tests and
// the fuzzer use MemoryEditBox.

#include <QtCore/QString>

namespace velmora::detail {

class EditBox
{
public:
    virtual ~EditBox() = default;

    virtual QString text() const = 0;
    // Replaces the whole text; the caret goes to 0 and the selection is dropped.
    virtual void setText(const QString &text) = 0;
    virtual int selStart() const = 0;
    // Moves the caret (clamped to the text) and drops the selection.
    virtual void setSelStart(int start) = 0;
    virtual int selLength() const = 0;
    // Selects length characters from selStart() on (clamped to the text).
    virtual void setSelLength(int length) = 0;
    // Puts the selected text on the clipboard and removes it from the text.
    virtual void cut() = 0;
    virtual QString clipboardText() const = 0;

    QString selText() const { return text().mid(selStart(), selLength()); }
};

// An edit box held in memory, with its own clipboard.
class MemoryEditBox final : public EditBox
{
public:
    QString text() const override { return m_text; }
    void setText(const QString &text) override
    {
        m_text = text;
        m_start = 0;
        m_length = 0;
    }
    int selStart() const override { return m_start; }
    void setSelStart(int start) override
    {
        m_start = qBound(0, start, int(m_text.size()));
        m_length = 0;
    }
    int selLength() const override { return m_length; }
    void setSelLength(int length) override
    {
        m_length = qBound(0, length, int(m_text.size()) - m_start);
    }
    void cut() override
    {
        clipboard = selText();
        m_text.remove(m_start, m_length);
        m_length = 0;
    }
    QString clipboardText() const override { return clipboard; }

    QString clipboard;

private:
    QString m_text;
    int m_start = 0;
    int m_length = 0;
};

} // namespace velmora::detail
