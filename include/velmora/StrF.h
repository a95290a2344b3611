#pragma once

#include <velmora/Global.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

/// @file
/// String utilities of the field.

namespace velmora {

/// String utilities of the field, also usable by hosts. Positions are 1-based
/// UTF-16 positions; comparisons are exact. Positions and counts are 16-bit: where
/// they would overflow, std::overflow_error is thrown; a start position of 0 or less
/// given to Filter or Pocet throws std::invalid_argument.
///
/// Nahrad, Filter and Pocet keep no state; VratCast remembers where it stopped, per
/// instance.
class VELMORA_EXPORT StrF
{
public:
    /// Replaces every occurrence of @p sCo in @p sRet by @p sCim and returns the result.
    /// With @p sPref, only where the character before the occurrence is in sPref (the
    /// start of the text passes); with @p sPost, only where the character at the
    /// occurrence's position + 1 is in sPost (the end of the text passes) - and then
    /// sPref is not consulted at all.
    /// Example: `Nahrad("a,b,", ",", ";", "", "0123456789") == "a,b;"`.
    /// sCo must not be empty (std::invalid_argument).
    QString Nahrad(const QString &sRet, const QString &sCo, const QString &sCim,
                   const QString &sPref = QString(), const QString &sPost = QString()) const;

    /// Keeps the characters of @p sRet that occur in @p sMaska, from position @p nStart
    /// on; a @p sStartZn found before nStart moves the start to it.
    /// `Filter("12-34-56", "0123456789", 6, "-") == "3456"`.
    QString Filter(const QString &sRet, const QString &sMaska, qint16 nStart = 1,
                   const QString &sStartZn = QString()) const;

    /// Returns the parts of a list separated by @p byOddel one per call, in @p sCast.
    /// A call with @p nStart > 0 (re)starts on @p sRet at that position; nStart 0
    /// continues where the previous call on this instance stopped (sRet and byOddel are
    /// then not read). Returns false, with sCast emptied, when no part is left.
    bool VratCast(QString &sCast, const QString &sRet = QString(), QChar byOddel = QChar(),
                  qint16 nStart = 0);

    /// Counts non-overlapping occurrences of @p sCo in @p sRet that start between
    /// positions @p nOd and @p nDo (-1 means the first and the last position). The
    /// result holds a qint16.
    QVariant Pocet(const QString &sRet, const QString &sCo, qint16 nOd = -1, qint16 nDo = -1) const;

private:
    qint16 m_splitPosition = 0;
    QString m_splitText;
    QChar m_splitSeparator;
};

} // namespace velmora
