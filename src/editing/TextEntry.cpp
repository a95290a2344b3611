// The alphanumeric and boolean entry rules and their deletion keys.

#include "KeyEngine.h"
#include "format/Text.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace velmora::detail {

// Without a string pattern the field shows its text as it is, and an edit need not
// render the whole text again.
bool KeyEngine::plainDisplay() const
{
    return m_s->display.format.isEmpty();
}

// A pattern of nothing but "<", ">" and "!" only maps the case of every character, one by
// one: a typed character is then mapped alone, and the rest of the text, mapped already,
// stays as it is. A long paste into such a field costs its length, not its square.
std::optional<bool> KeyEngine::caseOnlyUpper() const
{
    const QString &format = m_s->display.format;
    if (format.isEmpty())
        return std::nullopt;
    bool upper = false;
    for (const QChar c : format) {
        if (c == QLatin1Char('>'))
            upper = true;
        else if (c == QLatin1Char('<'))
            upper = false; // the last of the two wins
        else if (c != QLatin1Char('!'))
            return std::nullopt;
    }
    if (!format.contains(QLatin1Char('<')) && !format.contains(QLatin1Char('>')))
        return std::nullopt;
    return upper;
}

QString KeyEngine::shown(const QString &text) const
{
    return capped(displayText(text, m_s->display));
}

namespace {

// What a string pattern does, read once: the order of its places ("@", "&") and other
// characters, the case it maps to and the side its places fill from.
struct PatternShape
{
    enum Case { Keep, Lower, Upper } mapping = Keep;
    bool leftToRight = false;
    int places = 0;
    QString literals; // in the order of the pattern
    bool firstUpper = false; // "1>": the first character upper, the rest lower
};

PatternShape shapeOf(const QString &pattern)
{
    PatternShape p;
    if (pattern == QLatin1String("1>")) {
        p.firstUpper = true;
        return p;
    }
    for (const QChar c : pattern) {
        if (c == u'!')
            p.leftToRight = true;
        else if (c == u'<')
            p.mapping = PatternShape::Lower;
        else if (c == u'>')
            p.mapping = PatternShape::Upper;
        else if (c == u'@' || c == u'&')
            ++p.places;
        else
            p.literals += c;
    }
    return p;
}

// The number of whole characters of a text, as the pattern counts them: a surrogate
// pair is one.
int wholeCharacters(QStringView text)
{
    int pairs = 0;
    for (qsizetype i = 0; i + 1 < text.size(); ++i)
        if (text.at(i).isHighSurrogate() && text.at(i + 1).isLowSurrogate())
            ++pairs, ++i;
    return int(text.size()) - pairs;
}

} // namespace

// Notes that the box is the rendering of a text of at least `characters` whole
// characters, whose pattern part lies at from..to of the box, so that the next
// character of the same burst may be rendered in place.
void KeyEngine::rendered(int characters, int from, int to)
{
    m_renderedFrom = characters;
    m_renderedPart = {from, to};
    m_renderedVersion = m_holdBack || m_collapse ? m_box.version() : ~quint64(0);
}

// Where the pattern's part lies in a rendering: its places and own characters, at the
// end of the box, or at its start when the places fill from the left or there are none.
std::pair<int, int> KeyEngine::patternPart(int characters) const
{
    const PatternShape p = shapeOf(m_s->display.format);
    const QString &box = m_box.text();
    if (p.firstUpper)
        return {0, qMin(1, int(box.size()))};
    const int part = p.places + int(p.literals.size());
    if (characters < p.places)
        return {0, int(box.size())}; // places left blank: the whole box is the pattern's
    const bool atEnd = p.places > 0 && !p.leftToRight;
    int at = atEnd ? int(box.size()) : 0;
    for (int n = 0; n < part && at >= 0 && at <= box.size(); ++n) {
        if (atEnd)
            at -= at >= 2 && box.at(at - 1).isLowSurrogate() && box.at(at - 2).isHighSurrogate()
                ? 2
                : 1;
        else
            at += at + 1 < box.size() && box.at(at).isHighSurrogate()
                    && box.at(at + 1).isLowSurrogate()
                ? 2
                : 1;
    }
    at = qBound(0, at, int(box.size()));
    return atEnd ? std::pair {at, int(box.size())} : std::pair {0, at};
}

// Maps the case of the whole characters in from..to of the box (widened to whole
// characters, never below `floor`) as the pattern maps the whole text; false when a
// character's mapping is longer or shorter than the character.
bool KeyEngine::mapCase(int from, int to, bool upper, int floor)
{
    const QString &box = m_box.text();
    from = qBound(floor, from, int(box.size()));
    to = qBound(from, to, int(box.size()));
    if (from > floor && box.at(from).isLowSurrogate() && box.at(from - 1).isHighSurrogate())
        --from;
    if (to > from && to < box.size() && box.at(to).isLowSurrogate()
        && box.at(to - 1).isHighSurrogate())
        ++to;
    if (from == to)
        return true;
    const QStringView piece = QStringView(box).mid(from, to - from);
    const QString cased = upper ? piece.toString().toUpper() : piece.toString().toLower();
    if (cased.size() != piece.size())
        return false;
    if (cased != piece)
        m_box.replace(from, to - from, cased);
    return true;
}

// The box was the pattern's rendering of a text (rendered()), `removed` characters from
// `start` on are gone, and `key` comes in at `start`: the text to render is the box with
// the key. Rendering it changes only the pattern's part (its places take their
// characters again, between its own ones), the case of the characters the previous
// part held and of the key and its neighbours: every other character is in its case
// already and stays where it is. So only those are rendered, and a long burst costs its
// length. False, with the box untouched, when the text is too short to fill the places
// or the rendering would pass the length limit; the rest is rendered whole.
bool KeyEngine::renderInPlace(int start, int removed, char16_t key)
{
    const PatternShape p = shapeOf(m_s->display.format);
    const int own = int(p.literals.size());
    const int text = m_box.size() + 1; // the text to render: the box with the key
    // Whole characters of the text, at least: a surrogate may pair with its neighbour.
    const int characters = m_renderedFrom - removed + (QChar::isSurrogate(key) ? 0 : 1);
    if (text + own > MaxTextLength || (!p.firstUpper && characters < p.places))
        return false;
    // The previous part, in the box with the key.
    const auto shifted = [&](int at) {
        return at < start ? at : at >= start + removed ? at - removed + 1 : start;
    };
    const int partFrom = shifted(m_renderedPart.first);
    const int partTo = qMax(shifted(m_renderedPart.second), partFrom);

    m_box.insert(start, QChar(key));
    bool cased = true;
    if (p.firstUpper) {
        // The first unit alone goes up (half a pair stays as it is), the rest down.
        const QChar first = m_box.text().at(0);
        const QString up = QString(first).toUpper();
        cased
            = up.size() == 1 && mapCase(1, 3, false, 1) && mapCase(start - 1, start + 2, false, 1);
        if (cased && up.at(0) != first)
            m_box.put(0, up.at(0));
        if (cased)
            rendered(characters, 0, 1);
    } else if (p.mapping != PatternShape::Keep) {
        const bool upper = p.mapping == PatternShape::Upper;
        cased = mapCase(partFrom, partTo + 1, upper, 0) && mapCase(start - 1, start + 2, upper, 0);
    }
    if (cased && !p.firstUpper) {
        // The places take their characters again, between the pattern's own ones.
        const QString &box = m_box.text();
        QList<QStringView> taken;
        const bool atEnd = p.places > 0 && !p.leftToRight;
        int at = atEnd ? text : 0;
        while (taken.size() < p.places && (atEnd ? at > 0 : at < text)) {
            const bool pairBefore
                = at >= 2 && box.at(at - 1).isLowSurrogate() && box.at(at - 2).isHighSurrogate();
            const bool pairAfter
                = at + 1 < text && box.at(at).isHighSurrogate() && box.at(at + 1).isLowSurrogate();
            const int width = atEnd ? (pairBefore ? 2 : 1) : (pairAfter ? 2 : 1);
            if (atEnd) {
                at -= width;
                taken.prepend(QStringView(box).mid(at, width));
            } else {
                taken.append(QStringView(box).mid(at, width));
                at += width;
            }
        }
        if (taken.size() < p.places) {
            cased = false; // cannot happen: the text fills the places
        } else {
            QString part;
            qsizetype next = 0;
            for (const QChar c : m_s->display.format) {
                if (c == u'@' || c == u'&')
                    part += taken.at(next++);
                else if (c != u'!' && c != u'<' && c != u'>')
                    part += c;
            }
            const int from = atEnd ? at : 0;
            const int to = atEnd ? text : at;
            m_box.replace(from, to - from, part);
            rendered(characters, from, from + int(part.size()));
        }
    }
    if (!cased) {
        // A character whose case is longer or shorter than itself: the whole text.
        const QString typed = m_box.text();
        m_box.setText(shown(typed));
        rendered(wholeCharacters(typed), 0, 0);
        m_renderedPart = patternPart(m_renderedFrom);
    }
    return true;
}

bool KeyEngine::alfaNumKeyPress(char16_t key)
{
    if (key < 32 || landable()) {
        warningBeep();
        return false;
    }
    // The rule always inserts; overwrite mode works through the selected overwrite
    // caret, which the character replaces.
    const bool wasRendered = m_box.version() == m_renderedVersion;
    const Removed removed = deleteSelection();
    const int maxLength = m_s->maxLength;
    if (maxLength >= 1 && m_box.size() >= maxLength) {
        warningBeep();
        report(14, maxLength);
        return false; // the deleted selection stays deleted
    }
    if (m_box.size() >= MaxTextLength) {
        warningBeep(); // a full field refuses the character rather than drop one
        return false;
    }
    const int start = m_box.selStart();
    int caret = start + 1;
    const std::optional<bool> upper = caseOnlyUpper();
    if (plainDisplay()) {
        m_box.insert(start, QChar(key));
    } else if (upper && !QChar::isSurrogate(key)) {
        const QString one = QString(QChar(key));
        const QString cased = *upper ? one.toUpper() : one.toLower(); // "ß" becomes "SS"
        m_box.replace(start, 0, cased);
        caret = start + int(cased.size());
        if (m_box.size() > MaxTextLength) // as the whole text rendered and cut would be
            m_box.remove(MaxTextLength, m_box.size() - MaxTextLength);
    } else if (!(wasRendered && renderInPlace(start, int(removed.text.size()), key))) {
        const QString &text = m_box.text();
        const QString typed = text.left(start) + QChar(key) + text.mid(start);
        m_box.setText(shown(typed));
        rendered(wholeCharacters(typed), 0, 0);
        m_renderedPart = patternPart(m_renderedFrom);
    }
    m_box.setSelStart(caret);
    // The field moves on when the caret reaches the last place, not when the text does.
    if (m_box.selStart() == maxLength && m_s->autoTab)
        sendTab();
    return true;
}

void KeyEngine::alfaNumDelete(bool isDelete)
{
    const int start = m_box.selStart();
    if (isDelete) {
        if (m_box.selLength() > 0)
            deleteSelection();
        else if (start < m_box.size())
            m_box.remove(start, 1);
        if (!plainDisplay())
            m_box.setText(shown(m_box.text()));
        m_box.setSelStart(start);
        return;
    }
    // Backspace leaves a real selection alone.
    if (m_box.selLength() > 1 || (m_box.selLength() > 0 && !m_insMode) || start == 0)
        return;
    m_box.remove(start - 1, 1);
    if (!plainDisplay())
        m_box.setText(shown(m_box.text()));
    m_box.setSelStart(start - 1);
}

bool KeyEngine::boolKeyPress(char16_t key)
{
    if (changeable()) {
        const BoolFormat &format = m_s->format().boolFormat;
        const QChar typed = QChar(key).toUpper();
        // The true text is tested first: a letter that begins both gives true.
        if (!format.trueText.isEmpty() && format.trueText.at(0).toUpper() == typed) {
            m_box.setText(format.trueText);
            m_out.listIndex = 0;
            return true;
        }
        if (!format.falseText.isEmpty() && format.falseText.at(0).toUpper() == typed) {
            m_box.setText(format.falseText);
            m_out.listIndex = 1;
            return true;
        }
    }
    warningBeep();
    return false;
}

void KeyEngine::boolDelete()
{
    if (!m_s->enableEmpty) {
        warningBeep();
        return;
    }
    m_box.setText(QString());
    m_out.listIndex = 2; // the empty state of a boolean field
}

} // namespace velmora::detail
