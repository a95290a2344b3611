// Cut, paste and characters that arrive together, under the entry rules of the input
// type.

#include "KeyEngine.h"
#include "format/Text.h"

namespace velmora::detail {

EditOutcome KeyEngine::cutText(const EditSettings &s, const EditState &box)
{
    begin(s, box);
    cut();
    // Cut from the menu, the stored number keeps only what a number is made of; a cut
    // key stores the text as every other key does.
    m_filterStored = s.type == itNum;
    return end();
}

EditOutcome KeyEngine::pasteText(const EditSettings &s, const EditState &box)
{
    begin(s, box);
    paste(m_services.clipboardText());
    return end();
}

void KeyEngine::cut()
{
    if (!changeable()) {
        warningBeep();
        return;
    }
    const int start = m_box.selStart();
    const int length = m_box.selLength();
    const QString &text = m_box.text();
    const QString rest = text.left(start) + text.mid(qsizetype(start) + length);
    // An empty selection leaves the clipboard alone.
    const auto toClipboard = [this, length] {
        if (length > 0)
            m_services.setClipboardText(m_box.selText());
    };
    switch (m_s->type) {
    case itNum:
        if (checkNumDigits(numPlaces(rest), start == m_box.size())) {
            toClipboard();
            m_box.setText(rest);
            m_box.setSelStart(start);
        } else {
            warningBeep();
        }
        break;
    case itBool:
        // A boolean text is cut only as a whole, and only where empty is allowed.
        if (rest.isEmpty() && m_s->enableEmpty) {
            toClipboard();
            m_box.setText(rest);
            m_out.listIndex = 2;
        } else {
            warningBeep();
        }
        break;
    case itDate: {
        // The cut digit places become blank; the separators stay.
        toClipboard();
        deleteSelection();
        skipDateSeparator(1);
        break;
    }
    default:
        toClipboard();
        m_box.setText(plainDisplay() ? rest : shown(rest));
        m_box.setSelStart(start);
        break;
    }
}

// A whole value stands only when it has the form typing could have given it.
bool KeyEngine::wholeValueFits(const QString &value)
{
    const ParsedFormat &format = m_s->format();
    if (m_s->type == itDate) {
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

void KeyEngine::paste(QString pasted)
{
    if (!changeable()) {
        warningBeep();
        return;
    }
    pasted.removeIf([](QChar c) { return c.unicode() < 32; }); // line breaks, tabs
    if (pasted.isEmpty())
        return;

    const InpType type = m_s->type;
    const QString &text = m_box.text();
    const bool empty = text.isEmpty() || (type == itDate && text == m_s->format().emptyDateText);
    const bool allSelected = m_box.selLength() > 0 && m_box.selLength() >= text.size();
    if ((type == itDate || type == itNum) && (empty || allSelected)) {
        const QString whole = wholeValueText(type, pasted, m_s->format(), m_s->display.regional);
        if (!whole.isNull()) {
            if (!wholeValueFits(whole)) {
                warningBeep(); // the field stays exactly as it was
                return;
            }
            m_box.setText(whole);
            m_box.setSelStart(int(whole.size()));
            if (type == itDate)
                dateAutoTab();
            else if (numFull(numPlaces(whole)) && m_s->autoTab)
                sendTab();
            return;
        }
    }
    pasteCharacters(pasted);
}

// The pasted characters go one by one through the entry rule, as typed, but as one
// edit: a single refused character restores the field and sounds one tone.
void KeyEngine::pasteCharacters(QStringView text)
{
    const EditState before = m_box.state();
    const std::optional<qint16> listBefore = m_out.listIndex;
    const bool lastDecides = m_s->type == itBool;
    bool accepted = true;
    bool tabAsked = false;
    m_holdBack = true;
    for (const QChar c : text) {
        m_heldTab = false;
        const bool ok = entryRule(c.unicode());
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
        m_box.load(before);
        m_out.listIndex = listBefore;
        warningBeep();
        return;
    }
    // The focus moves on when the last character would have moved it when typed.
    if (tabAsked)
        sendTab();
}

// Characters committed together go through the entry rule one by one, each standing
// on its own as a typed key would; the tone sounds once and each message is reported
// once, however many characters were refused.
void KeyEngine::typeCharacters(QStringView keys)
{
    m_collapse = true;
    for (const QChar c : keys) {
        entryRule(c.unicode());
        showOverwriteCaret();
    }
    m_collapse = false;
    if (m_toneHeld) {
        m_toneHeld = false;
        warningBeep();
    }
}

} // namespace velmora::detail
