// The field's own edit history: every handled key, cut or paste that changed the
// text is one step of undo (recorded where an edit ends).

#include "KeyEngine.h"

namespace velmora::detail {

void KeyEngine::moveHistory(std::vector<EditState> &from, std::vector<EditState> &to)
{
    if (!changeable() || from.empty()) {
        warningBeep();
        return;
    }
    m_historyMoved = true; // a step through the history is not itself an edit
    if (to.size() >= 100)
        to.erase(to.begin());
    to.push_back(m_box.state());
    const EditState snapshot = std::move(from.back());
    from.pop_back();
    m_box.load(snapshot);
    if (m_s->type == itBool) {
        const BoolFormat &format = m_s->format().boolFormat;
        m_out.listIndex = snapshot.text.isEmpty() ? 2
            : snapshot.text == format.trueText    ? 0
            : snapshot.text == format.falseText   ? 1
                                                  : 2;
    }
}

EditOutcome KeyEngine::undo(const EditSettings &s, const EditState &box)
{
    begin(s, box);
    moveHistory(m_undo, m_redo);
    return end();
}

EditOutcome KeyEngine::redo(const EditSettings &s, const EditState &box)
{
    begin(s, box);
    moveHistory(m_redo, m_undo);
    return end();
}

void KeyEngine::clearHistory()
{
    m_undo.clear();
    m_redo.clear();
}

} // namespace velmora::detail
