// Keystroke benchmark: how long one typed key takes to be delivered to a field, for each
// input type, against plain Qt line edits typed the same way in the same process.
//
// Every key is a real press and release (QTest::sendKeyEvent, the path the widget tests
// use) sent to the field's inner QLineEdit on a shown form while the field has focus.
// Only that delivery is timed: nothing is processed inside the timed region, so no
// painting is measured. Between words the box is emptied and pending events (paint,
// timers) are processed, outside the timing, so the text stays short as in real entry.
//
// Cases are measured in interleaved rounds so that load from elsewhere on the machine
// falls on all of them alike. Results go to stdout and, as JSON, to --json FILE.

#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtCore/QDate>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>
#include <QtCore/QStringList>
#include <QtGui/QValidator>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double TargetP99Us = 1000.0;
constexpr double TargetMedianRatio = 1.5;

// Czech regional settings; tones and message boxes are only counted, never shown.
class BenchPlatform : public velmora::Platform
{
public:
    BenchPlatform() { install(this); }
    ~BenchPlatform() override { install(nullptr); }

    void beep(int, int) override { ++beeps; }
    void messageBox(const QString &, const QString &, QWidget *) override { ++boxes; }
    QDate today() const override { return QDate(2026, 5, 17); }
    QDateTime now() const override { return QDateTime(today(), QTime(10, 0)); }
    velmora::RegionalSettings regionalSettings() const override
    {
        return velmora::RegionalSettings::czech();
    }

    int beeps = 0;
    int boxes = 0;
};

struct Key
{
    Qt::Key code;
    QString text;
};
using Word = std::vector<Key>;

Key keyFor(QChar c)
{
    if (c == QLatin1Char(','))
        return {Qt::Key_Comma, QString(c)};
    if (c == QLatin1Char('.'))
        return {Qt::Key_Period, QString(c)};
    if (c.isDigit())
        return {Qt::Key(Qt::Key_0 + c.digitValue()), QString(c)};
    // Letters, national ones included, as a keyboard sends them: the upper-case code.
    return {Qt::Key(c.toUpper().unicode()), QString(c)};
}

std::vector<Word> wordsOf(const QStringList &texts)
{
    std::vector<Word> words;
    for (const QString &t : texts) {
        Word w;
        for (QChar c : t)
            w.push_back(keyFor(c));
        words.push_back(std::move(w));
    }
    return words;
}

QString textOf(const Word &w)
{
    QString s;
    for (const Key &k : w)
        s += k.text;
    return s;
}

// Names as a clerk types them: lower case, some with Czech letters.
QStringList textWords()
{
    return {QStringLiteral("praha"),     QStringLiteral("brno"),    QStringLiteral("ostrava"),
            QStringLiteral("plzeň"),     QStringLiteral("liberec"), QStringLiteral("olomouc"),
            QStringLiteral("ústí"),      QStringLiteral("hradec"),  QStringLiteral("pardubice"),
            QStringLiteral("zlín"),      QStringLiteral("havířov"), QStringLiteral("kladno"),
            QStringLiteral("most"),      QStringLiteral("opava"),   QStringLiteral("jihlava"),
            QStringLiteral("karviná"),   QStringLiteral("teplice"), QStringLiteral("děčín"),
            QStringLiteral("chomutov"),  QStringLiteral("přerov"),  QStringLiteral("novák"),
            QStringLiteral("dvořák"),    QStringLiteral("svoboda"), QStringLiteral("černý"),
            QStringLiteral("procházka"), QStringLiteral("kučera"),  QStringLiteral("veselý")};
}

// Amounts that fit "#,##0.00": one to four integer digits, none to two decimals.
QStringList numberWords(std::mt19937 &rng)
{
    std::uniform_int_distribution<int> digits(1, 4), decimals(0, 2), digit(0, 9), lead(1, 9);
    QStringList out;
    for (int i = 0; i < 500; ++i) {
        QString s = QString::number(lead(rng));
        for (int n = digits(rng) - 1; n > 0; --n)
            s += QString::number(digit(rng));
        const int d = decimals(rng);
        if (d > 0) {
            s += QLatin1Char(',');
            for (int n = 0; n < d; ++n)
                s += QString::number(digit(rng));
        }
        out << s;
    }
    return out;
}

// Valid dates typed as eight digits, day first.
QStringList dateWords()
{
    QStringList out;
    QDate d(1998, 1, 3);
    for (int i = 0; i < 500; ++i, d = d.addDays(37))
        out << d.toString(QStringLiteral("ddMMyyyy"));
    return out;
}

// Letters of the default truth texts (ANO / NE), in both cases.
QStringList boolWords()
{
    return {QStringLiteral("a"),  QStringLiteral("n"), QStringLiteral("an"), QStringLiteral("N"),
            QStringLiteral("na"), QStringLiteral("A"), QStringLiteral("nA"), QStringLiteral("aN")};
}

struct Stats
{
    size_t n = 0;
    double median = 0, p99 = 0, mean = 0, min = 0, max = 0;
};

Stats statsOf(std::vector<double> v)
{
    Stats s;
    s.n = v.size();
    if (v.empty())
        return s;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    s.median = n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
    const size_t i99 = size_t(std::ceil(0.99 * double(n))) - 1;
    s.p99 = v[std::min(i99, n - 1)];
    double sum = 0;
    for (double x : v)
        sum += x;
    s.mean = sum / double(n);
    s.min = v.front();
    s.max = v.back();
    return s;
}

struct Case
{
    QString id; // key in the JSON output
    QString title; // row of the table
    QString type; // input type a field case stands for; empty for the anchors
    QWidget *focusTarget = nullptr;
    QLineEdit *box = nullptr; // receives the key events
    std::function<void()> reset;
    std::function<QString()> shown;
    std::vector<Word> words;
    size_t next = 0;
    std::vector<double> samples; // microseconds per key, press + release
    QString firstTyped, firstShown;
    Stats stats;
};

// Types one word; returns the number of keys sent. Only the delivery of each key is
// timed; the reset and the event processing after the word are not.
size_t typeWord(Case &c, bool record)
{
    const Word &w = c.words[c.next++ % c.words.size()];
    for (const Key &k : w) {
        const auto t0 = Clock::now();
        QTest::sendKeyEvent(QTest::Press, c.box, k.code, k.text, Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, c.box, k.code, k.text, Qt::NoModifier);
        const auto t1 = Clock::now();
        if (record)
            c.samples.push_back(std::chrono::duration<double, std::micro>(t1 - t0).count());
    }
    if (c.firstShown.isNull()) {
        c.firstTyped = textOf(w);
        c.firstShown = c.shown();
    }
    c.reset();
    QApplication::processEvents();
    return w.size();
}

bool focus(Case &c)
{
    c.focusTarget->setFocus(Qt::OtherFocusReason);
    QApplication::processEvents();
    c.reset();
    QApplication::processEvents();
    if (QApplication::focusWidget() != c.box) {
        std::fprintf(stderr, "bench_keys: %s did not get the focus\n", qPrintable(c.title));
        return false;
    }
    return true;
}

void typeKeys(Case &c, size_t keys, bool record)
{
    size_t sent = 0;
    while (sent < keys)
        sent += typeWord(c, record);
}

struct Options
{
    QString json = QStringLiteral("bench-keys.json");
    size_t keys = 20000;
    size_t warmup = 2000;
    int rounds = 5;
    bool updates = true;
    bool strict = false;
};

void usage()
{
    std::printf("usage: bench_keys [--json FILE] [--keys N] [--warmup N] [--rounds N]\n"
                "                  [--no-updates] [--strict]\n"
                "  --json FILE    write the results as JSON (default bench-keys.json)\n"
                "  --keys N       measured keys per case (default 20000)\n"
                "  --warmup N     keys typed into each case before measuring (default 2000)\n"
                "  --rounds N     interleaved rounds the measured keys are split into (5)\n"
                "  --no-updates   switch updatesEnabled off on every measured widget\n"
                "  --strict       exit with 1 when an input type is over target\n");
}

bool parse(const QStringList &args, Options &o)
{
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString &a = args.at(i);
        const bool hasValue = i + 1 < args.size();
        bool ok = true;
        if (a == QLatin1String("--json") && hasValue)
            o.json = args.at(++i);
        else if (a == QLatin1String("--keys") && hasValue)
            o.keys = args.at(++i).toULong(&ok);
        else if (a == QLatin1String("--warmup") && hasValue)
            o.warmup = args.at(++i).toULong(&ok);
        else if (a == QLatin1String("--rounds") && hasValue)
            o.rounds = args.at(++i).toInt(&ok);
        else if (a == QLatin1String("--no-updates"))
            o.updates = false;
        else if (a == QLatin1String("--strict"))
            o.strict = true;
        else
            ok = false;
        if (!ok)
            return false;
    }
    return o.keys > 0 && o.rounds > 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    Options opt;
    if (!parse(app.arguments(), opt)) {
        usage();
        return 2;
    }

    BenchPlatform platform;
    std::mt19937 rng(20260517);

    QWidget form;
    form.setWindowTitle(QStringLiteral("bench_keys"));
    auto *layout = new QVBoxLayout(&form);
    std::vector<Case> cases;

    // One measured case: the widget that takes the focus, the line edit the keys go to,
    // how to empty it between words and how to read what it shows.
    auto addCase = [&](const QString &id, const QString &title, QWidget *focusTarget,
                       QLineEdit *box, std::function<void()> reset, std::function<QString()> shown,
                       const QStringList &words) {
        Case c;
        c.id = id;
        c.title = title;
        c.focusTarget = focusTarget;
        c.box = box;
        c.reset = std::move(reset);
        c.shown = std::move(shown);
        c.words = wordsOf(words);
        cases.push_back(std::move(c));
    };
    auto addField = [&](const QString &id, const QString &title, velmora::InpType t,
                        const QString &format, const QStringList &words) {
        auto *f = new velmora::Velmora(&form);
        f->setInputType(t);
        if (!format.isEmpty())
            f->setFormatStr(format);
        layout->addWidget(f);
        addCase(
            id, title, f, f->findChild<QLineEdit *>(QStringLiteral("txtInput")),
            [f] { f->Clear(); }, [f] { return f->FormValue(); }, words);
        cases.back().type = id; // the anchors have no type
    };
    auto addAnchor = [&](const QString &id, const QString &title, QLineEdit *le,
                         const QStringList &words) {
        layout->addWidget(le);
        addCase(
            id, title, le, le, [le] { le->clear(); }, [le] { return le->displayText(); }, words);
    };

    const QStringList numbers = numberWords(rng);
    const QStringList dates = dateWords();
    addField(QStringLiteral("alphanumeric"), QStringLiteral("field alphanumeric \"1>\""),
             velmora::itAlfaNum, QStringLiteral("1>"), textWords());
    addField(QStringLiteral("numeric"), QStringLiteral("field numeric \"#,##0.00\""),
             velmora::itNum, QStringLiteral("#,##0.00"), numbers);
    addField(QStringLiteral("date"), QStringLiteral("field date (default format)"), velmora::itDate,
             QString(), dates);
    addField(QStringLiteral("boolean"), QStringLiteral("field boolean (default format)"),
             velmora::itBool, QString(), boolWords());

    addAnchor(QStringLiteral("qlineedit"), QStringLiteral("QLineEdit plain"), new QLineEdit(&form),
              textWords());
    auto *validated = new QLineEdit(&form);
    auto *validator = new QDoubleValidator(0.0, 9999.99, 2, validated);
    validator->setNotation(QDoubleValidator::StandardNotation);
    validator->setLocale(QLocale(QLocale::Czech, QLocale::Czechia));
    validated->setValidator(validator);
    addAnchor(QStringLiteral("qdoublevalidator"), QStringLiteral("QLineEdit QDoubleValidator"),
              validated, numbers);
    auto *masked = new QLineEdit(&form);
    masked->setInputMask(QStringLiteral("99.99.9999"));
    addAnchor(QStringLiteral("inputmask"), QStringLiteral("QLineEdit mask 99.99.9999"), masked,
              dates);
    const size_t reference = 5; // the QDoubleValidator line edit

    form.show();
    QApplication::setActiveWindow(&form);
    if (!QTest::qWaitForWindowActive(&form)) {
        std::fprintf(stderr, "bench_keys: the form did not become active\n");
        return 2;
    }
    if (!opt.updates)
        for (Case &c : cases)
            c.focusTarget->setUpdatesEnabled(false);

    const auto started = Clock::now();

    // Warm-up: every case once, so that all code paths and caches are hot.
    for (Case &c : cases) {
        if (!focus(c))
            return 2;
        typeKeys(c, opt.warmup, false);
    }
    for (Case &c : cases) {
        if (c.firstShown.isEmpty()) {
            std::fprintf(stderr, "bench_keys: typing \"%s\" into %s showed nothing\n",
                         qPrintable(c.firstTyped), qPrintable(c.title));
            return 2;
        }
    }
    const int beepsAfterWarmup = platform.beeps;

    // Measured rounds, the order of the cases rotated each round.
    const size_t perRound = (opt.keys + size_t(opt.rounds) - 1) / size_t(opt.rounds);
    for (int r = 0; r < opt.rounds; ++r) {
        for (size_t i = 0; i < cases.size(); ++i) {
            Case &c = cases[(i + size_t(r)) % cases.size()];
            if (!focus(c))
                return 2;
            typeKeys(c, std::min(perRound, opt.keys - std::min(opt.keys, c.samples.size())), true);
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - started).count();

    for (Case &c : cases) {
        c.samples.resize(std::min(c.samples.size(), opt.keys)); // the last word may overrun
        c.stats = statsOf(c.samples);
    }
    const double refMedian = cases[reference].stats.median;

    std::printf("Keystroke delivery, press + release per key, no repaint in the timed region\n");
    std::printf("Qt %s, platform %s, %zu keys per case after %zu warm-up keys, %d rounds, "
                "updates %s\n\n",
                qVersion(), qPrintable(QGuiApplication::platformName()), opt.keys, opt.warmup,
                opt.rounds, opt.updates ? "on" : "off");
    std::printf("%-32s %6s %10s %10s %10s %12s %9s\n", "case", "keys", "median us", "p99 us",
                "max us", "median/QDV", "p99/1ms");
    for (const Case &c : cases) {
        const Stats &s = c.stats;
        std::printf("%-32s %6zu %10.2f %10.2f %10.1f %11.2fx %9.3f\n", qPrintable(c.title), s.n,
                    s.median, s.p99, s.max, s.median / refMedian, s.p99 / TargetP99Us);
    }
    std::printf("\nFirst word typed and shown:\n");
    for (const Case &c : cases)
        std::printf("  %-32s \"%s\" -> \"%s\"\n", qPrintable(c.title), qPrintable(c.firstTyped),
                    qPrintable(c.firstShown));
    std::printf("Warning tones while measuring: %d, message boxes: %d\n",
                platform.beeps - beepsAfterWarmup, platform.boxes);

    std::printf("\nVerdict (median/QDV <= %.1f and p99 <= %.0f us):\n", TargetMedianRatio,
                TargetP99Us);
    bool allOk = true;
    QJsonArray jsonCases;
    QJsonObject verdicts;
    for (const Case &c : cases) {
        const Stats &s = c.stats;
        const double ratio = s.median / refMedian;
        QJsonObject o {
            {QStringLiteral("id"), c.id},
            {QStringLiteral("title"), c.title},
            {QStringLiteral("kind"),
             c.type.isEmpty() ? QStringLiteral("anchor") : QStringLiteral("field")},
            {QStringLiteral("keys"), qint64(s.n)},
            {QStringLiteral("medianUs"), s.median},
            {QStringLiteral("p99Us"), s.p99},
            {QStringLiteral("meanUs"), s.mean},
            {QStringLiteral("minUs"), s.min},
            {QStringLiteral("maxUs"), s.max},
            {QStringLiteral("medianRatioVsDoubleValidator"), ratio},
            {QStringLiteral("p99VsTarget"), s.p99 / TargetP99Us},
            {QStringLiteral("firstTyped"), c.firstTyped},
            {QStringLiteral("firstShown"), c.firstShown},
        };
        if (!c.type.isEmpty()) {
            const bool ok = ratio <= TargetMedianRatio && s.p99 <= TargetP99Us;
            allOk = allOk && ok;
            const QString verdict = ok ? QStringLiteral("ok") : QStringLiteral("over target");
            o.insert(QStringLiteral("verdict"), verdict);
            verdicts.insert(c.type, verdict);
            std::printf("  %-13s %s (median ratio %.2f, p99 %.1f us)\n",
                        qPrintable(c.type + QLatin1Char(':')), qPrintable(verdict), ratio, s.p99);
        }
        jsonCases.append(o);
    }
    std::printf("Run took %.1f s\n", seconds);

    const QJsonObject root {
        {QStringLiteral("benchmark"), QStringLiteral("bench_keys")},
        {QStringLiteral("qtVersion"), QString::fromLatin1(qVersion())},
        {QStringLiteral("platform"), QGuiApplication::platformName()},
        {QStringLiteral("keysPerCase"), qint64(opt.keys)},
        {QStringLiteral("warmupKeys"), qint64(opt.warmup)},
        {QStringLiteral("rounds"), opt.rounds},
        {QStringLiteral("updatesEnabled"), opt.updates},
        {QStringLiteral("target"),
         QJsonObject {{QStringLiteral("medianRatioVsDoubleValidator"), TargetMedianRatio},
                      {QStringLiteral("p99Us"), TargetP99Us}}},
        {QStringLiteral("cases"), jsonCases},
        {QStringLiteral("verdicts"), verdicts},
        {QStringLiteral("beepsWhileMeasuring"), platform.beeps - beepsAfterWarmup},
        {QStringLiteral("messageBoxes"), platform.boxes},
        {QStringLiteral("seconds"), seconds},
    };
    QFile out(opt.json);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::fprintf(stderr, "bench_keys: cannot write %s\n", qPrintable(opt.json));
        return 2;
    }
    out.write(QJsonDocument(root).toJson(QJsonDocument::Indented));
    std::printf("Results written to %s\n", qPrintable(opt.json));

    return opt.strict && !allOk ? 1 : 0;
}
