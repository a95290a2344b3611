// Cut and paste under the entry rules of the input type.

#include "KeyEngine.h"

namespace velmora::detail {

void KeyEngine::cutText()
{
    EditScope edit(*this);
    if (!changeable()) {
        warningBeep();
        return;
    }
    const int start = m_box.selStart();
    const int length = m_box.selLength();
    const QString text = m_box.text();
    const QString rest = text.left(start) + text.mid(qsizetype(start) + length);
    // An empty selection leaves the clipboard alone.
    const auto cutSelection = [this, length] {
        if (length > 0)
            m_box.cut();
    };
    const ParsedFormat &format = m_host.parsedFormat();
    switch (m_host.inputType()) {
    case itNum:
        if (checkNumDigits(rest) == 0)
            cutSelection();
        else
            warningBeep();
        break;
    case itBool:
        // A boolean text is cut only as a whole, and only where empty is allowed.
        if (rest.isEmpty() && m_host.isSet(QStringLiteral("EnableEmpty"))) {
            cutSelection();
            m_host.setListIndex(2);
        } else {
            warningBeep();
        }
        break;
    case itDate: {
        // The cut digit places become blank; the separators stay.
        const QString blanks
            = format.emptyDateText.mid(start, length).leftJustified(length, QLatin1Char(' '), true);
        cutSelection();
        m_box.setText(text.left(start) + blanks + text.mid(qsizetype(start) + length));
        m_box.setSelStart(start);
        skipDateSeparator(1);
        break;
    }
    default:
        cutSelection();
        m_box.setText(m_host.displayText(rest));
        m_box.setSelStart(start);
        break;
    }
    QString stored = m_box.text();
    if (m_host.inputType() == itNum) {
        // The stored number keeps only what a number is made of.
        const QChar separator = format.decimalSeparator;
        stored.removeIf([separator](QChar c) {
            return !(c == QLatin1Char('-') || (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
                     || (!separator.isNull() && c == separator));
        });
    }
    m_host.setStoredText(stored);
}

// A whole value stands only when it has the form typing could have given it.
bool KeyEngine::wholeValueFits(const QString &value) const
{
    const ParsedFormat &format = m_host.parsedFormat();
    if (m_host.inputType() == itDate) {
        const QString &empty = format.emptyDateText;
        if (value.size() != empty.size())
            return false;
        for (qsizetype i = 0; i < value.size(); ++i) {
            const QChar c = value.at(i);
            const bool separatorPlace = empty.at(i) == format.dateSeparator;
            const bool digitPlace
                = c == QLatin1Char(' ') || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
            if (separatorPlace ? c != format.dateSeparator : !digitPlace)
                return false;
        }
        return dateTextValid(value);
    }
    const QChar separator = format.decimalSeparator;
    bool separatorSeen = false;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            continue;
        if (!separator.isNull() && c == separator && !separatorSeen && decimalSeparatorAllowed()) {
            separatorSeen = true;
            continue;
        }
        if (i == 0 && (c == QLatin1Char('+') || c == QLatin1Char('-')))
            continue;
        return false;
    }
    const NumPlaces places = numPlaces(value);
    return places.decimal <= format.decimalDigits && places.integer <= format.integerDigits;
}

void KeyEngine::pasteText()
{
    EditScope edit(*this);
    if (!changeable()) {
        warningBeep();
        return;
    }
    QString pasted = m_box.clipboardText();
    pasted.removeIf([](QChar c) { return c.unicode() < 32; }); // line breaks, tabs
    if (pasted.isEmpty())
        return;

    const InpType type = m_host.inputType();
    const QString text = m_box.text();
    const bool empty
        = text.isEmpty() || (type == itDate && text == m_host.parsedFormat().emptyDateText);
    const bool allSelected = m_box.selLength() > 0 && m_box.selLength() >= text.size();
    if ((type == itDate || type == itNum) && (empty || allSelected)) {
        const QString whole = m_host.wholeValueText(pasted);
        if (!whole.isNull()) {
            if (!wholeValueFits(whole)) {
                warningBeep(); // the field stays exactly as it was
                return;
            }
            m_box.setText(whole);
            m_box.setSelStart(int(whole.size()));
            if (type == itDate)
                dateAutoTab();
            else if (numFull(numPlaces(whole)) && m_host.autoTab())
                sendTab();
            m_host.setStoredText(whole);
            return;
        }
    }
    pasteCharacters(pasted);
}

// The pasted characters go one by one through the entry rule, as typed, but as one
// edit: a single refused character restores the field and sounds one tone.
void KeyEngine::pasteCharacters(const QString &text)
{
    const Snapshot before = current();
    const qint16 listBefore = m_host.listIndex();
    const bool lastDecides = m_host.inputType() == itBool;
    bool accepted = true;
    bool tabAsked = false;
    m_holdBack = true;
    for (const QChar c : text) {
        m_heldTab = false;
        const bool ok = entryRule(nullptr, c.unicode());
        tabAsked = m_heldTab;
        if (lastDecides) {
            accepted = ok;
        } else if (!ok) {
            accepted = false;
            break;
        }
        showOverwriteCaret(); // as between typed keys: overwrite mode types over
    }
    m_holdBack = false;
    m_heldTab = false;
    if (!accepted) {
        restore(before);
        if (m_host.listIndex() != listBefore)
            m_host.setListIndex(listBefore);
        warningBeep();
        return;
    }
    // The focus moves on when the last character would have moved it when typed.
    if (tabAsked)
        m_host.sendTab();
    m_host.setStoredText(m_box.text());
}

} // namespace velmora::detail
