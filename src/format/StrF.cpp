#include <velmora/StrF.h>

#include <limits>
#include <stdexcept>

namespace velmora {

namespace {

constexpr int MaxPosition = std::numeric_limits<qint16>::max();

// Positions are 16-bit: a text whose positions do not fit cannot be walked.
void checkLength(const QString &text, const char *who)
{
    if (text.size() > MaxPosition)
        throw std::overflow_error(std::string(who)
                                  + ": text longer than 32767 characters overflows a position");
}

void checkStart(int start, const char *who)
{
    if (start <= 0)
        throw std::invalid_argument(std::string(who) + ": start position must be 1 or more");
}

// 1-based search of needle in hay from position from; 0 when not found.
int find(const QString &hay, const QString &needle, int from)
{
    if (from > hay.size() + 1)
        return 0;
    const qsizetype i = hay.indexOf(needle, from - 1);
    return i < 0 ? 0 : int(i) + 1;
}

// The character at 1-based position p, or the empty text outside the string.
QString charAt(const QString &s, int p)
{
    return (p >= 1 && p <= s.size()) ? QString(s.at(p - 1)) : QString();
}

bool occursIn(const QString &set, const QString &ch)
{
    return ch.isEmpty() || set.contains(ch);
}

} // namespace

QString StrF::Nahrad(const QString &sRet, const QString &sCo, const QString &sCim,
                     const QString &sPref, const QString &sPost) const
{
    if (sCo.isEmpty())
        throw std::invalid_argument("Nahrad: the text to replace must not be empty");
    checkLength(sRet, "Nahrad");

    QString result;
    result.reserve(sRet.size());
    int pos = 1;
    for (;;) {
        const int p = find(sRet, sCo, pos);
        if (p == 0) {
            if (pos <= sRet.size())
                result += QStringView(sRet).mid(pos - 1);
            return result;
        }
        bool replace = true;
        if (!sPref.isEmpty())
            replace = occursIn(sPref, p >= 2 ? charAt(sRet, p - 1) : QString());
        // With a suffix set the prefix answer is discarded; the following character
        // is taken at p + 1 even for a longer sCo.
        if (!sPost.isEmpty())
            replace = occursIn(sPost, p < sRet.size() ? charAt(sRet, p + 1) : QString());
        result += QStringView(sRet).mid(pos - 1, p - pos);
        result += replace ? sCim : sCo;
        pos = p + int(sCo.size());
    }
}

QString StrF::Filter(const QString &sRet, const QString &sMaska, qint16 nStart,
                     const QString &sStartZn) const
{
    checkLength(sRet, "Filter");
    int start = nStart;
    if (!sStartZn.isEmpty()) {
        const int q = find(sRet, sStartZn, 1);
        if (q != 0 && q <= nStart)
            start = q;
    }
    checkStart(start, "Filter");

    QString result;
    for (int i = start; i <= sRet.size(); ++i) {
        const QChar c = sRet.at(i - 1);
        if (sMaska.contains(c))
            result += c;
    }
    return result;
}

bool StrF::VratCast(QString &sCast, const QString &sRet, QChar byOddel, qint16 nStart)
{
    if (nStart > 0) {
        checkLength(sRet, "VratCast");
        m_splitPosition = nStart;
        m_splitText = sRet;
        m_splitSeparator = byOddel;
    }
    if (m_splitPosition > m_splitText.size() || m_splitPosition < 1) {
        sCast.clear();
        return false;
    }
    const qsizetype i = m_splitText.indexOf(m_splitSeparator, m_splitPosition - 1);
    if (i >= 0) {
        sCast = m_splitText.mid(m_splitPosition - 1, i - (m_splitPosition - 1));
        m_splitPosition = qint16(i + 2);
    } else {
        sCast = m_splitText.mid(m_splitPosition - 1);
        m_splitPosition = qint16(m_splitText.size() + 1);
    }
    return true;
}

QVariant StrF::Pocet(const QString &sRet, const QString &sCo, qint16 nOd, qint16 nDo) const
{
    checkLength(sRet, "Pocet");
    const int from = nOd == -1 ? 1 : nOd;
    const int to = nDo == -1 ? int(sRet.size()) : nDo;
    checkStart(from, "Pocet");

    int count = 0;
    int pos = from;
    for (;;) {
        const int p = find(sRet, sCo, pos);
        if (p == 0 || p > to)
            break;
        if (count == MaxPosition)
            throw std::overflow_error("Pocet: the count passes 32767");
        ++count;
        pos = p + int(sCo.size());
    }
    return QVariant::fromValue(qint16(count));
}

} // namespace velmora
