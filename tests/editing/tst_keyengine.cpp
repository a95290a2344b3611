// The editing engine on an in-memory edit box. Each row sets up a field, puts the
// caret, presses keys and compares the edit box and what the field was asked to do.
//
// Box states are written with the caret as "|" and a selection in brackets:
// "a[bc]d" selects bc. Keys: "'abc" types characters, "sp" a space, and key names (BS
// Del Enter Ins Home End PgUp PgDn Left Right Up Down V X Y Z) with modifiers S- C- are
// key-downs; a key-down that the engine leaves to the box logs "pass<code>". Mode1 and
// Mode0 are the host setting InsMode.

#include "FakeHost.h"
#include "common/DataRows.h"
#include "common/TestRegistry.h"

using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Without a caret mark the state is the one the field entry leaves.
void enter(Rig &rig, const QString &marked)
{
    const qsizetype caret = marked.indexOf(u'|'), open = marked.indexOf(u'[');
    rig.host.stored = QString(marked).remove(u'|').remove(u'[').remove(u']');
    rig.engine.enterField();
    if (caret >= 0 || open >= 0) {
        rig.box.setSelStart(int(caret >= 0 ? caret : open));
        rig.box.setSelLength(caret >= 0 ? 0 : int(marked.indexOf(u']') - open - 1));
    }
}

QString marked(const EditBox &box)
{
    QString text = box.text();
    if (box.selLength() == 0)
        return text.insert(box.selStart(), u'|');
    return text.insert(box.selStart() + box.selLength(), u']').insert(box.selStart(), u'[');
}

void press(Rig &rig, const QString &keys)
{
    static const QHash<QString, int> codes
        = {{"BS", 8},    {"Enter", 13}, {"PgUp", 33},  {"PgDn", 34}, {"End", 35}, {"Home", 36},
           {"Left", 37}, {"Up", 38},    {"Right", 39}, {"Down", 40}, {"Ins", 45}, {"Del", 46},
           {"V", 86},    {"X", 88},     {"Y", 89},     {"Z", 90}};
    for (QString word : keys.split(u' ', Qt::SkipEmptyParts)) {
        if (word.startsWith(u'\'') || word == u"sp") {
            for (int k : (word == u"sp" ? u" "_s : word.mid(1)).toUcs4())
                rig.engine.keyPress(k);
        } else if (word.startsWith(u"Mode")) {
            rig.engine.setInsMode(word.endsWith(u'1'));
        } else {
            int shift = 0;
            for (; word.size() > 2 && word.at(1) == u'-'; word.remove(0, 2))
                shift |= word.at(0) == u'S' ? 1 : 2;
            int code = codes.value(word, -1);
            QVERIFY2(code > 0, qPrintable(word));
            rig.engine.keyDown(code, shift);
            if (code != 0)
                rig.host.log << u"pass%1"_s.arg(code);
        }
    }
}

// clip: the clipboard before the keys, logged as clip=... when they change it.
void row(const char *name, const char *settings, const char *start, const char *keys,
         const char *result, const char *log, const char *clip = "")
{
    velmora::test::row(name, settings, start, keys, clip, result, log);
}

void check()
{
    Rig rig;
    rig.host.configure(VFETCH(QString, settings));
    enter(rig, VFETCH(QString, start));
    QFETCH(QString, clip);
    rig.host.clipboard = clip;
    rig.host.log.clear();
    press(rig, VFETCH(QString, keys));
    if (rig.host.clipboard != clip)
        rig.host.log << u"clip="_s + rig.host.clipboard;
    QTEST(marked(rig.box), "result");
    QTEST(rig.host.log.join(u' '), "log");
}

} // namespace

class TestKeyEngine : public QObject
{
    Q_OBJECT

private slots:
    void keys_data();
    void keys() { check(); }
};

void TestKeyEngine::keys_data()
{
    columns<QString, QString, QString, QString, QString, QString>(
        {"settings", "start", "keys", "clip", "result", "log"});
    // Keys of every type: Ctrl+Y, Insert, the caret and selection keys, Enter, the list.
    row("Ctrl+Y restores the empty date", "Ddmy", "12.05.20[0]5", "C-Y", "[ ] .  .    ", "");
    row("Ctrl+Y on a boolean needs EnableEmpty", "B", "ANO|", "C-Y", "ANO|", "beep");
    row("Ctrl+Y on a landable field passes", "A dm1", "ab|", "C-Y", "ab|", "pass89");
    row("entry reads the Insert toggle", "A ins", "abc", "", "[a]bc", "");
    row("entry selects all with SelectText", "A sel", "abc", "", "[abc]", "");
    row("Insert twice hides it again", "A", "a|bc", "Ins Ins", "a|bc", "ins1 pass45 ins0 pass45");
    row("the host sets InsMode", "A", "abc", "Mode1", "[a]bc", "");
    row("the host clears InsMode", "A", "abc", "Mode1 Mode0", "|abc", "");
    row("Insert: date in overwrite", "Ddmy", "[1]2.05.2005", "Ins", "[1]2.05.2005", "ins1 pass45");
    row("Home", "A", "ab|c", "Home", "|abc", "");
    row("Shift+Home goes to the box", "A", "ab|c", "S-Home", "ab|c", "pass36");
    row("Left over the overwrite caret at 0", "A ins", "[a]b", "Left", "[a]b", "arrow37");
    row("Left collapses one selected at 0", "A", "[a]b", "Left", "|ab", "");
    row("Left from a real selection", "A", "ab[cd]", "Left", "a|bcd", "");
    row("Shift+Right to the anchor", "A", "abc|d", "Up S-Left S-Left S-Right S-Right S-Right",
        "abc[d]", "arrow38");
    row("Shift+Left to the anchor", "A", "a|bcd", "Up S-Right S-Right S-Left", "a[b]cd", "arrow38");
    row("Right at the end is an arrow action", "A aa1", "ab|", "Right", "ab|", "arrow39 tab");
    row("Right with all selected goes to the box", "A", "[ab]", "Right", "[ab]", "pass39");
    row("Up, Down: aaUpDownTab", "A aa2", "a|b", "Up Down", "a|b", "arrow38 backtab arrow40 tab");
    row("Up and Down with aaLeftRightTab", "A aa1", "a|b", "Up Down", "a|b", "arrow38 arrow40");
    row("Shift+Up goes to the box", "A aa3", "a|b", "S-Up", "a|b", "pass38");
    row("Enter with eaDefault is swallowed", "A", "a|b", "Enter", "a|b", "");
    row("Enter with eaTab", "A ea1", "a|b", "Enter", "a|b", "tab");
    row("Enter clears the rest", "A ea2", "a|bc", "Enter", "|a", "tab");
    row("Enter clear-rest on a landable field", "A ea2 dm1", "a|bc", "Enter", "a|bc", "tab");
    row("Enter clear-rest keeps a boolean", "B ea2", "ANO|", "Enter", "ANO|", "tab");
    row("Page Down drops the list", "A list", "a|", "PgDn", "a|", "drop");
    row("Shift+Page Up on a landable field", "A list dm1", "a|", "S-PgUp", "a|", "drop");
    row("Page Up on a visible-only field", "A list dm2", "a|", "PgUp", "a|", "");
    // Numbers: the entry rule, the control of length, AutoTab, deletion, leading zeros.
    row("sign at the front", "N4.2", "|12", "'-", "-|12", "");
    row("sign not at the front", "N4.2", "1|2", "'-", "1|2", "beep");
    row("second sign", "N4.2", "|-12", "'+", "|-12", "beep");
    row("digit in front of the sign", "N4.2", "|-12", "'5", "|-12", "beep");
    row("no separator without decimal places", "N4.0", "12|", "',", "12|", "beep");
    row("separator with an empty format", "N", "|", "',", ",|", "");
    row("integer places, message 9", "N4.2", "1234|", "'5", "1234|", "beep msg9(4)");
    row("the decimal message comes first", "N2.2", "123,456|", "'7", "123,456|", "beep msg8(2)");
    row("a digit replaces the selection", "N4.2", "1[23]4", "'5", "15|4", "");
    row("clNone sets no limit", "N2.0 cl0", "12|", "'3", "123|", "");
    row("clIntegerPart leaves decimals free", "N2.1 cl1", "1,2|", "'3", "1,23|", "");
    row("clIntegerPart limits integers", "N2.1 cl1", "12|", "'3", "12|", "beep msg9(2)");
    row("clDecimalPart leaves integers free", "N2.1 cl2", "12|", "'3", "123|", "");
    row("clDecimalPart limits decimals", "N2.1 cl2", "1,2|", "'3", "1,2|", "beep msg8(1)");
    row("AutoTab only at the end", "N4.2 at", "1|,23", "'4", "14|,23", "");
    row("AutoTab on the last integer place", "N3.0 at", "12|", "'3", "123|", "tab");
    row("number: Backspace leaves a real selection", "N4.2", "1[23]", "BS", "1[23]", "");
    row("Delete removes the selection", "N4.2", "1[23]", "Del", "1|", "");
    row("deleting the separator is undone", "N2.2", "12,|34", "BS", "12,|34", "beep msg9(2)");
    row("deleting it forwards is undone", "N2.2", "12|,34", "Del", "12|,34", "beep msg9(2)");
    row("deleting the separator where it fits", "N4.2", "12,|3", "BS", "12|3", "");
    row("number: landable refuses typing", "N4.2 dm1", "12|", "'3", "12|", "beep");
    row("sign, zeros and decimals", "N4.2", "-00,5", "", "|-0,5", "");
    row("zeros before a digit go", "N4.2", "+0012", "", "|+12", "");
    // Dates: calendar checks while typing, separators, deletion, the three layouts.
    const char *empty = "  .  .    ";
    row("31 February is refused", "Ddmy", empty, "'3102", "31.0[ ].    ", "beep");
    row("a year without 29 February", "Ddmy", empty, "'29022001", "29.02.200[ ]", "beep");
    row("a leap year", "Ddmy", empty, "'29022004", "29.02.2004|", "");
    row("after the last separator the tone", "Ddmy", empty, "'1...", "1 .  .[ ]   ", "beep");
    row("date: landable refuses digits", "Ddmy dm1", empty, "'1", "|  .  .    ", "beep");
    row("Backspace pulls the part left", "Ddmy", "1[2].05.2005", "BS", "[2] .05.2005", "");
    row("Backspace over a separator", "Ddmy", "12.[0]5.2005", "BS", "1[ ].05.2005", "");
    row("date: Backspace leaves a selection", "Ddmy", "12.[05].2005", "BS", "12.[05].2005", "");
    row("Delete pulls the part left", "Ddmy", "[1]2.05.2005", "Del", "[2] .05.2005", "");
    row("month first: month 13", "Dmdy", "  /  /    ", "'13", "1[ ]/  /    ", "beep");
    row("year first: 29 February 2001", "Dymd", "    -  -  ", "'20010229", "2001-02-2[ ]", "beep");
    // Texts and booleans.
    const QByteArray full = "|" + QByteArray(32767, 'a'); // the longest text there is
    row("full text, no MaxLength", "A", full.constData(), "'b", full.constData(), "beep");
    row("MaxLength: a selected char is replaced", "A max5", "abcd[e]", "'f", "abcdf|", "");
    row("MaxLength refusal keeps deletion", "A max3", "abc[d]e", "'f", "abc|e", "beep msg14(3)");
    row("MaxLength 0: no limit, no AutoTab", "A at", "abc|", "'d", "abcd|", "");
    row("no AutoTab when filled in the middle", "A max3 at", "a|b", "'c", "ac|b", "");
    row("upper case", "A>", "|", "'žluť", "ŽLUŤ|", "");
    row("a control character is refused", "A", "ab|", "'\t", "ab|", "beep");
    row("text: landable refuses typing", "A dm1", "ab|", "'c", "ab|", "beep");
    row("landable refuses Backspace", "A dm1", "ab|", "BS", "ab|", "beep");
    row("Backspace removes before the caret", "A", "ab|c", "BS", "a|c", "");
    row("Backspace over the overwrite caret", "A ins", "ab[c]", "BS", "a[c]", "");
    row("Delete re-renders the text", "A1>", "|aBC", "Del", "|Bc", "");
    row("overwrite mode types over", "A ins", "[a]bc", "'xy", "xy[c]", "");
    row("boolean landable", "B dm1", "|", "'a", "|", "beep");
    row("boolean: a shared first letter is true", "B tf=Ja/Jein", "|", "'j", "|Ja", "list0");
    row("boolean Delete needs EnableEmpty", "B", "|ANO", "Del", "|ANO", "beep");
    row("boolean Delete empties", "B ee", "|ANO", "Del", "|", "list2");
    // Cut, paste and undo.
    row("Ctrl+Shift+X cuts too", "A", "a[b]", "C-S-X", "a|", "clip=b");
    row("cut of a date blanks", "Ddmy", "1[2.0]5.2005", "S-Del", "1[ ]. 5.2005", "clip=2.0");
    row("cut that breaks the places", "N2.2", "12[,]34", "C-X", "12[,]34", "beep beep msg9(2)");
    row("cut of digits", "N2.2", "1[2],34", "C-X", "1|,34", "clip=2");
    row("cut on a landable field", "A dm1", "a[b]", "C-X", "a[b]", "beep");
    row("paste a date in another form", "Dmdy at", "  /  /    ", "S-Ins", "12/24/2005|", "tab",
        "2005-12-24");
    row("paste an impossible date", "Ddmy", empty, "C-V", "[ ] .  .    ", "beep", "31.02.2005");
    row("paste digits into a date", "Ddmy", "12.05.200[5]", "C-V", "12.05.2007|", "", "7");
    row("paste a whole number", "N4.2", "|", "C-V", "1234,50|", "", "1 234,50");
    row("paste a number over all", "N4.2 at", "[12]", "C-V", "12,34|", "tab", "12.34");
    row("paste digits", "N4.2", "1|", "C-V", "123|", "", "23");
    row("paste over MaxLength", "A max5", "ab|", "C-V", "ab|", "beep", "cdef");
    row("paste in overwrite mode", "A ins", "[a]bc", "C-V", "xy[c]", "", "xy");
    row("paste up to AutoTab", "A max3 at", "a|", "C-V", "abc|", "tab", "bc");
    row("paste into a boolean: the last decides", "B", "|", "C-V", "|NE", "list1", "an");
    row("paste into a boolean refused", "B", "|", "C-V", "|", "beep", "ax");
    row("paste on a landable field", "A dm1", "a|", "C-V", "a|", "beep", "x");
    row("nothing left to undo", "A", "|", "'a C-Z C-Z", "|", "beep");
    row("a new edit forgets redo", "A", "|", "'ab C-Z 'c C-S-Z", "ac|", "beep");
    row("a caret move is no step", "A", "ab|", "Left C-Z", "a|b", "beep");
    row("undo on a landable field", "A dm1", "ab|", "C-Z", "ab|", "beep");
    row("undo restores the boolean state", "B", "|", "'a 'n C-Z", "|ANO", "list0 list1 list0");
    row("a paste is one step", "A", "|", "C-V C-Z", "|", "", "xyz");
    row("undo a date digit", "Ddmy", "  .  .    ", "'1 C-Z", "[ ] .  .    ", "");
    const QByteArray many = "'" + QByteArray(105, 'a') + QByteArray(" C-Z").repeated(101);
    row("a hundred steps are kept", "A", "|", many.constData(), "aaaaa|", "beep");
}

VELMORA_TEST(TestKeyEngine)
#include "tst_keyengine.moc"
