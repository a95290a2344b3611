#pragma once

// The field's QLineEdit seen as the edit box of the editing rules.

#include "editing/EditBox.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QLineEdit>

namespace velmora::detail {

class LineEditBox final : public EditBox
{
public:
    explicit LineEditBox(QLineEdit *edit) : m_edit(edit) { }

    QString text() const override { return m_edit->text(); }
    void setText(const QString &text) override
    {
        m_edit->setText(text);
        m_edit->setCursorPosition(0);
    }
    int selStart() const override
    {
        return m_edit->hasSelectedText() ? m_edit->selectionStart() : m_edit->cursorPosition();
    }
    void setSelStart(int start) override
    {
        m_edit->setCursorPosition(qBound(0, start, int(m_edit->text().size())));
    }
    int selLength() const override { return int(m_edit->selectionLength()); }
    void setSelLength(int length) override
    {
        const int start = selStart();
        length = qBound(0, length, int(m_edit->text().size()) - start);
        if (length == 0)
            m_edit->setCursorPosition(start);
        else
            m_edit->setSelection(start, length);
    }
    void cut() override
    {
        if (selLength() == 0)
            return;
        const int start = selStart();
        QGuiApplication::clipboard()->setText(selText());
        QString t = text();
        t.remove(start, selLength());
        m_edit->setText(t);
        m_edit->setCursorPosition(start);
    }
    QString clipboardText() const override { return QGuiApplication::clipboard()->text(); }

private:
    QLineEdit *m_edit;
};

} // namespace velmora::detail
