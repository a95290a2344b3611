// The compiled cell formatter against the display formatter: seeded random values of
// every shape through a table of patterns and configured separators, under Czech and
// English regional settings; the two must agree on every value.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "format/CellFormat.h"
#include "fuzz/FormatFuzz.h"

#include <random>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
namespace ff = velmora::test::formatfuzz;

namespace {

// A value in one of the shapes a list cell comes in, or a near miss of one.
QString randomValue(const ff::Pick &pick, const RegionalSettings &rs)
{
    bool exact = false;
    int decimals = 0;
    const RegionalSettings other = rs == RegionalSettings::english()
        ? RegionalSettings::czech(QLatin1Char(' '))
        : RegionalSettings::english();
    const QDate date = ff::randomDate(pick);
    switch (pick(9)) {
    case 0: // as the loader writes a double: huge, tiny, 15 digits, zero
        return numberToString(ff::randomNumber(pick, exact, decimals), rs);
    case 1: // signs at either end, grouping, exponents, blanks around
        return ff::writeNumber(pick, rs).text;
    case 2: // the other separators
        return ff::writeNumber(pick, other).text;
    case 3: { // plain digits, up to 18 significant ones, some far below 1e-300
        const QString zeros(pick(4) ? 0 : pick(330), u'0');
        return QString(pick(3) ? 0 : 1, u'-')
            + QString::fromStdString(ff::asciiDigits(pick, pick(19))) + rs.decimalSeparator + zeros
            + QString::fromStdString(ff::asciiDigits(pick, pick(19)));
    }
    case 4:
        return ff::textFrom(pick, u"0123456789,. -+eE/#\u00a0\u016fx", 12);
    case 5: // as the loader writes a date
        return dateToString(date, rs);
    case 6:
        return formatDate(date, ff::textFrom(pick, u"dmy/-.", 10), pick(2) ? rs : other);
    case 7: { // parts of any size, calendar dates or not
        QString text;
        for (int part = 0; part < 2 + pick(3); ++part)
            text += (part ? QString(ff::oneOf(pick, u"./- ")) : QString())
                + QString::number(pick(3) ? pick(40) : pick(20000));
        return text;
    }
    default:
        return QString(pick(3), u' ');
    }
}

} // namespace

class TestCellFormat : public QObject
{
    Q_OBJECT

private slots:
    void sameAsDisplayText_data()
    {
        columns<int, QString, QString, QString, QString>({"type", "format", "des", "tis", "dat"});
        const int n = itNum, d = itDate;
        row("negative section", n, "#,##0;(#,##0)", "", "", "");
        row("zero section", n, "0.0#;-0.0;\"nil\"", "", "", "");
        row("empty first section", n, ";0.0", "", "", "");
        row("percent", n, "0%", "", "", "");
        row("exponent letters", n, "0.00E+00", "", "", "");
        row("plain", n, "", "", "", "");
        row("point and comma configured", n, "#,##0.00", ".", ",", "");
        row("placeholder configured", n, "#,##0.0", "\u016f", "'", "");
        row("separators as literals", n, "#,##0.0\" ,,..\u016f\u016f\u00a0\u00a0\"0", ",", "#", "");
        row("short date", d, "d/m/yy", "", "", "");
        row("month first", d, "mm/dd/yyyy", "", "", "");
        row("regional, own separator", d, "", "", "", "-");
        row("slashes, own separator", d, "dd/mm/yy", "", "", ".");
    }
    void sameAsDisplayText()
    {
        QFETCH(int, type);
        QFETCH(QString, format);
        std::mt19937 random(20260601u);
        const ff::Pick pick = [&random](int n) {
            return int(random() % quint32(n));
        };
        for (const RegionalSettings &rs :
             {RegionalSettings::czech(), RegionalSettings::english()}) {
            const ConfiguredSeparators seps {separatorFromText(VFETCH(QString, des)),
                                             separatorFromText(VFETCH(QString, tis)),
                                             separatorFromText(VFETCH(QString, dat))};
            // The field's own date format gives the empty-date text the list pads to.
            ParsedFormat pf;
            QString parsed = type == itNum ? format : QStringLiteral("dd/mm/yyyy");
            type == itNum ? parseNumFormat(pf, parsed, rs, seps)
                          : parseDateFormat(pf, parsed, 0, rs, seps);
            const ValueFormat vf {type, format, &pf, {}, 1, atLeftRight, rs}; // a list's cell
            const CellFormat cell(vf);
            for (int i = 0; i < 4000; ++i) {
                const QString value = randomValue(pick, rs);
                const QString expected = displayText(value, vf);
                if (cell.format(value) != expected || cell.format(QStringView(value)) != expected)
                    QFAIL(qPrintable(QStringLiteral("%1 under %2: %3 instead of %4")
                                         .arg(ff::show(value), ff::show(rs),
                                              ff::show(cell.format(value)), ff::show(expected))));
            }
        }
    }
};

VELMORA_TEST(TestCellFormat)
#include "tst_cellformat.moc"
