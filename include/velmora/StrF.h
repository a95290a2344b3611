#pragma once

#include <velmora/Global.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace velmora {

// String utilities of the field, also usable by hosts. Positions are 1-based
// UTF-16 positions; comparisons are exact. Positions and counts are 16-bit: where
// they would overflow, std::overflow_error is thrown; a start position of 0 or less
// given to Filter or Pocet throws std::invalid_argument.
class VELMORA_EXPORT StrF
{
public:
    // Replaces every occurrence of sCo by sCim. With sPref, only where the character
    // before the occurrence is in sPref (the start of the text passes); with sPost,
    // only where the character at the occurrence's position + 1 is in sPost (the end
    // of the text passes) - and then sPref is not consulted at all.
    // Example: Nahrad("a,b,", ",", ";", "", "0123456789") == "a,b;"
    // sCo must not be empty (std::invalid_argument).
    QString Nahrad(const QString &sRet, const QString &sCo, const QString &sCim,
                   const QString &sPref = QString(), const QString &sPost = QString()) const;

    // Keeps the characters of sRet that occur in sMaska, from nStart on; a sStartZn
    // found before nStart moves the start to it. Filter("12-34-56", "0123456789", 6, "-")
    // == "3456".
    QString Filter(const QString &sRet, const QString &sMaska, qint16 nStart = 1,
                   const QString &sStartZn = QString()) const;

    // Returns the parts of a list separated by byOddel one per call. A call with
    // nStart > 0 (re)starts on sRet; nStart 0 continues where the previous call on
    // this instance stopped. Returns false when no part is left.
    bool VratCast(QString &sCast, const QString &sRet = QString(), QChar byOddel = QChar(),
                  qint16 nStart = 0);

    // Counts non-overlapping occurrences of sCo in sRet that start between nOd and
    // nDo (-1 means the first and the last position). The result holds a qint16.
    QVariant Pocet(const QString &sRet, const QString &sCo, qint16 nOd = -1, qint16 nDo = -1) const;

private:
    qint16 m_splitPosition = 0;
    QString m_splitText;
    QChar m_splitSeparator;
};

} // namespace velmora
