#include "Text.h"

namespace velmora::detail {

namespace {
bool isRemovedControl(char16_t c)
{
    return (c < 0x20 && c != u'\t') || (c >= 0x7F && c <= 0x9F); // C0, DEL and C1
}
} // namespace

QString capped(const QString &text)
{
    return text.size() > MaxTextLength ? text.left(MaxTextLength) : text;
}

bool isWellFormed(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (isRemovedControl(c))
            return false;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= text.size() || !QChar::isLowSurrogate(text.at(i + 1).unicode()))
                return false;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return false;
        }
    }
    return true;
}

QString wellFormed(const QString &text)
{
    if (isWellFormed(text))
        return text; // the common case costs one scan and no copy
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (isRemovedControl(c))
            continue;
        if (QChar::isHighSurrogate(c) && i + 1 < text.size()
            && QChar::isLowSurrogate(text.at(i + 1).unicode())) {
            out += text.at(i);
            out += text.at(++i);
        } else if (QChar::isSurrogate(c)) {
            out += QChar(QChar::ReplacementCharacter);
        } else {
            out += text.at(i);
        }
    }
    return out;
}

QString trimBlanks(const QString &text, bool left, bool right)
{
    qsizetype b = 0, e = text.size();
    if (left)
        while (b < e && text.at(b) == QLatin1Char(' '))
            ++b;
    if (right)
        while (e > b && text.at(e - 1) == QLatin1Char(' '))
            --e;
    return b == 0 && e == text.size() ? text : text.mid(b, e - b);
}

QString twoDigits(int n)
{
    return QString::number(n).rightJustified(2, QLatin1Char('0'));
}

QStringView trimmedBlanks(QStringView text)
{
    qsizetype b = 0, e = text.size();
    while (b < e && text.at(b) == u' ')
        ++b;
    while (e > b && text.at(e - 1) == u' ')
        --e;
    return text.sliced(b, e - b);
}

} // namespace velmora::detail
