// Format strings: the places a number format counts, the code-page check of text
// formats and the limit of long formats.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "format/FormatParser.h"

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

class TestFormatParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numericFormat_data()
    {
        columns<QString, int, int>({"format", "integers", "decimals"});
        row("widest section wins", "#,##0.00;-#,##0.0", 4, 2);
        row("maxima from different sections", "###;#.####", 3, 4);
        row("second point changes nothing", "9.99.9", 1, 3);
        row("literal text is ignored", "Kč 0.0 \"x\"", 1, 1);
        // Positions are 16-bit: the places stop at the largest of them.
        row("40k places", QString(40000, u'#'), 32767, 0);
    }
    void numericFormat()
    {
        QFETCH(QString, format);
        ParsedFormat pf;
        QCOMPARE(parseNumFormat(pf, format, czechSpace(), {}), 0);
        QCOMPARE(int(pf.integerDigits), VFETCH(int, integers));
        QCOMPARE(int(pf.decimalDigits), VFETCH(int, decimals));
    }

    void alfaNumFormat_data()
    {
        columns<QString, int>({"format", "message"});
        row("character outside the code page", "\u6f22@", 4);
        // One search per character took seconds on a format this long.
        row("long format with a question mark", QString(32760, QChar(0x6F22)) + u'?', 0);
    }
    void alfaNumFormat()
    {
        QFETCH(QString, format);
        const QString before = format;
        const int message = VFETCH(int, message);
        QCOMPARE(checkAlfaNumFormat(format), message);
        QCOMPARE(format, message ? QString() : before);
    }
};

VELMORA_TEST(TestFormatParser)
#include "tst_formatparser.moc"
