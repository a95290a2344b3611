// The field's own edit history: every handled key, cut or paste that changed the
// text is one step of undo.

#include "KeyEngine.h"

namespace velmora::detail {

namespace {
constexpr std::size_t HistoryLimit = 100;

template<class T>
void pushLimited(std::vector<T> &stack, T value)
{
    if (stack.size() >= HistoryLimit)
        stack.erase(stack.begin());
    stack.push_back(std::move(value));
}
} // namespace

KeyEngine::Snapshot KeyEngine::current() const
{
    return {m_box.text(), m_box.selStart(), m_box.selLength()};
}

void KeyEngine::restore(const Snapshot &snapshot)
{
    m_box.setText(snapshot.text);
    m_box.setSelStart(snapshot.selStart);
    m_box.setSelLength(snapshot.selLength);
}

void KeyEngine::beginEdit()
{
    if (m_editDepth++ == 0) {
        m_beforeEdit = current();
        m_historyMoved = false;
    }
}

void KeyEngine::endEdit()
{
    if (--m_editDepth > 0 || m_historyMoved)
        return;
    if (m_box.text() != m_beforeEdit.text) {
        pushLimited(m_undo, std::move(m_beforeEdit));
        m_redo.clear();
    }
    m_beforeEdit = {};
}

void KeyEngine::moveHistory(std::vector<Snapshot> &from, std::vector<Snapshot> &to)
{
    if (!changeable() || from.empty()) {
        warningBeep();
        return;
    }
    m_historyMoved = true; // a step through the history is not itself an edit
    pushLimited(to, current());
    const Snapshot snapshot = std::move(from.back());
    from.pop_back();
    restore(snapshot);
    m_host.setStoredText(snapshot.text);
    if (m_host.inputType() == itBool) {
        const BoolFormat &format = m_host.parsedFormat().boolFormat;
        const qint16 index = snapshot.text.isEmpty() ? 2
            : snapshot.text == format.trueText       ? 0
            : snapshot.text == format.falseText      ? 1
                                                     : 2;
        m_host.setListIndex(index);
    }
}

void KeyEngine::undo()
{
    moveHistory(m_undo, m_redo);
}

void KeyEngine::redo()
{
    moveHistory(m_redo, m_undo);
}

bool KeyEngine::canUndo() const
{
    return !m_undo.empty();
}

bool KeyEngine::canRedo() const
{
    return !m_redo.empty();
}

void KeyEngine::clearHistory()
{
    m_undo.clear();
    m_redo.clear();
}

} // namespace velmora::detail
