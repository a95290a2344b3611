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

// The character in the case the pattern maps to, when that is one character, the same
// the whole text's mapping gives it; nothing for a character the mapping lengthens.
std::optional<QChar> mapped(QChar c, PatternShape::Case mapping)
{
    if (c.isSurrogate())
        return std::nullopt;
    if (mapping == PatternShape::Keep)
        return c;
    const QString whole
        = mapping == PatternShape::Upper ? QString(c).toUpper() : QString(c).toLower();
    if (whole.size() != 1)
        return std::nullopt;
    return whole.at(0);
}

} // namespace

// Notes that the box is the rendering of a text of `characters` characters, so that the
// next character of the same burst may be rendered in place.
void KeyEngine::rendered(int characters)
{
    m_renderedFrom = characters;
    m_renderedVersion = ~quint64(0);
    const QString &text = m_box.text();
    if ((m_holdBack || m_collapse)
        && std::none_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); }))
        m_renderedVersion = m_box.version();
}

// The box was the pattern's rendering of a text (rendered()), the characters from
// `start` on to `removed` more are gone, and `key` comes in at `start`: the text to render
// is the box with the key in it. Rendering it changes only the pattern's places and
// other characters (at the end of the box, or at its start when the places fill from the
// left), the key, and the case of the characters that were the pattern's own: every
// other character is already in its case and stays. So only those are rendered, and a
// long burst costs its length. False, with the box untouched, where that does not hold
// (a text shorter than the places, a character whose case mapping is longer than
// itself, a rendering over the length limit).
bool KeyEngine::renderInPlace(int start, int removed, char16_t key)
{
    const PatternShape p = shapeOf(m_s->display.format);
    const int before = m_box.size() + removed; // the rendering the key went into
    const int text = m_box.size() + 1; // the text to render: the box with the key
    const QString &box = m_box.text();
    // Positions in the box with the key, from positions in the rendering it went into.
    const auto begin = [&](int at) {
        return at < start ? at : at >= start + removed ? at - removed + 1 : start;
    };
    const auto end = [&](int at) {
        return at <= start ? at : qMax(start + 1, at - removed + 1);
    };
    // The characters to map: the key, and those in from..to of the box with the key.
    int from = 0, to = 0;
    PatternShape::Case mapping = p.mapping;
    if (p.firstUpper) {
        if (text > MaxTextLength)
            return false;
        mapping = PatternShape::Lower;
        to = start == 0 ? qMin(2, text) : 0; // the former first character goes down
    } else {
        const int own = int(p.literals.size());
        if (m_renderedFrom < p.places || text < p.places || text + own > MaxTextLength)
            return false;
        const int part = p.places + own;
        if (p.places == 0) {
            to = end(own);
        } else if (p.leftToRight) {
            to = end(part);
        } else {
            from = begin(before - part);
            to = text;
        }
    }
    const std::optional<QChar> typed
        = mapped(QChar(key), p.firstUpper && start == 0 ? PatternShape::Upper : mapping);
    if (!typed)
        return false;
    std::vector<QChar> cases;
    for (int i = from; i < to; ++i) {
        if (i == start)
            continue;
        const std::optional<QChar> c = mapped(box.at(i < start ? i : i - 1), mapping);
        if (!c)
            return false;
        cases.push_back(*c);
    }
    for (const QChar c : p.literals)
        if (!mapped(c, mapping))
            return false;

    m_box.insert(start, *typed);
    for (int i = from, k = 0; i < to; ++i)
        if (i != start)
            m_box.put(i, cases[size_t(k++)]);
    if (!p.firstUpper) {
        // The places take their characters, between the pattern's own ones.
        const int placesAt = p.places == 0 || p.leftToRight ? 0 : text - p.places;
        const QString taken = m_box.text().mid(placesAt, p.places);
        QString part;
        int next = 0;
        for (const QChar c : m_s->display.format) {
            if (c != u'!' && c != u'<' && c != u'>')
                part += c == u'@' || c == u'&' ? taken.at(next++) : c;
        }
        m_box.replace(placesAt, p.places, part);
    }
    rendered(text);
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
    const std::optional<bool> upper = caseOnlyUpper();
    if (plainDisplay()) {
        m_box.insert(start, QChar(key));
    } else if (upper && !QChar::isSurrogate(key)) {
        const QString one = QString(QChar(key));
        m_box.replace(start, 0, *upper ? one.toUpper() : one.toLower());
        if (m_box.size() > MaxTextLength) // as the whole text rendered and cut would be
            m_box.remove(MaxTextLength, m_box.size() - MaxTextLength);
    } else if (!(wasRendered && renderInPlace(start, int(removed.text.size()), key))) {
        const QString &text = m_box.text();
        const QString typed = text.left(start) + QChar(key) + text.mid(start);
        m_box.setText(shown(typed));
        rendered(int(typed.size()));
    }
    m_box.setSelStart(start + 1);
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
