// Keystroke benchmark: what a user waits for after each typed key, for each input type,
// against the Qt control that does the same job, both measured in the same process.
//
// Every key is a real press and release (QTest::sendKeyEvent, the path the widget tests
// use) sent to the focus widget of a shown form. Two figures per key:
//   keys        press + release, nothing else: the key as the widget handles it.
//   keys+paint  press, then the form paints what the key changed, then release. The
//               paint is the window's update request sent at once, as Qt sends it when
//               the posted one comes round: only the widgets the key dirtied are painted,
//               as on screen. (QWidget::repaint() of the window would paint every widget
//               of the form, the same for field and anchor, and hide the difference.)
// Between words the box is emptied and pending events are processed, outside the timing,
// so the text stays short as in real entry.
//
// Pairs: numeric against a QLineEdit with a QDoubleValidator, date against a QDateEdit and
// against a QLineEdit with the input mask 99.99.9999, text against a plain QLineEdit and
// boolean against a QComboBox holding the two truth texts (a letter picks the item, as
// it does in the field). Every widget is measured in short blocks, in an order that turns
// with each block, so that load from elsewhere on the machine falls on all of them alike.
// Rounds repeat until the medians of the last few rounds agree within 5 % for every
// widget and figure, up to a cap; otherwise the result says "noisy". On a busy machine the
// time slices of other processes show up as 4 ms keys; pinned to one core at a real-time
// priority (taskset, chrt) the p99 means something again.

#include "BenchStats.h"

#include <velmora/Platform.h>
#include <velmora/Types.h>
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
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

using velmora::bench::medianOf;
using velmora::bench::spreadOf;

namespace {

using Clock = std::chrono::steady_clock;

constexpr double TargetP99Us = 200.0;
constexpr double TargetMedianRatio = 1.0;
constexpr double StableSpread = 0.05;

enum Figure { KeysOnly = 0, KeysAndPaint = 1 };
constexpr int FigureCount = 2;
const char *const figureNames[FigureCount] = {"keys", "keys+paint"};

// Czech regional settings, read from a Czech QLocale on every call as the default platform
// reads the system locale, so that a field pays what it pays in an application. Tones and
// message boxes are only counted, never shown.
class BenchPlatform : public velmora::Platform
{
public:
    BenchPlatform() : m_locale(QLocale::Czech, QLocale::Czechia) { install(this); }
    ~BenchPlatform() override { install(nullptr); }

    void beep(int, int) override { ++beeps; }
    void messageBox(const QString &, const QString &, QWidget *) override { ++boxes; }
    QDate today() const override { return QDate(2026, 5, 17); }
    QDateTime now() const override { return QDateTime(today(), QTime(10, 0)); }
    velmora::RegionalSettings regionalSettings() const override
    {
        return velmora::RegionalSettings::fromLocale(m_locale);
    }

    int beeps = 0;
    int boxes = 0;

private:
    QLocale m_locale;
};

// The field paints its frame with a QFrame (sunken styled panel) behind its frameless
// QLineEdit, which sits inside it by the frame's width. Each anchor is built the same way:
// its editor with its own frame switched off, inside a QFrame of that style, at the
// field's size, with the field's font and its colours while it has the focus (the focus
// highlight as background). Field and anchor then paint the same pixels around the text.
class Framed final : public QWidget
{
public:
    static constexpr int FrameWidth = 2;

    Framed(QWidget *editor, QWidget *parent) : QWidget(parent), m_editor(editor)
    {
        m_frame = new QFrame(this);
        m_frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        m_frame->lower();
        editor->setParent(this);
        setFocusProxy(editor);
        setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        m_frame->setGeometry(rect());
        m_editor->setGeometry(rect().adjusted(FrameWidth, FrameWidth, -FrameWidth, -FrameWidth));
    }

private:
    QFrame *m_frame;
    QWidget *m_editor;
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

// One letter of the default truth texts (ANO / NE) per entry, in both cases. A combo box
// searches letters typed in quick succession as one prefix, so two in a row would make it
// do less than the field, which takes each letter on its own.
QStringList boolWords()
{
    return {QStringLiteral("a"), QStringLiteral("n"), QStringLiteral("N"), QStringLiteral("A"),
            QStringLiteral("n"), QStringLiteral("a"), QStringLiteral("A"), QStringLiteral("N")};
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
    QString title;
    bool isField = false;
    QWidget *outer = nullptr; // takes the focus; framed and sized like the others
    QWidget *keyTarget = nullptr; // the focus widget once outer has the focus
    std::function<void()> reset;
    std::function<QString()> shown;
    std::vector<Word> words;
    size_t next = 0;
    // Microseconds per key, per figure and round.
    std::array<std::vector<std::vector<double>>, FigureCount> rounds;
    std::array<std::vector<double>, FigureCount> medians; // per round
    std::array<Stats, FigureCount> stats; // over the rounds reported
    std::array<double, FigureCount> spread {};
    QString firstTyped, firstShown;
};

struct Pair
{
    QString type;
    size_t field;
    size_t anchor;
};

void sendKey(QWidget *target, const Key &k)
{
    QTest::sendKeyEvent(QTest::Press, target, k.code, k.text, Qt::NoModifier);
}

void releaseKey(QWidget *target, const Key &k)
{
    QTest::sendKeyEvent(QTest::Release, target, k.code, k.text, Qt::NoModifier);
}

// Paints what is dirty in the window now, as the window's next update request would.
void paintNow(QWidget *window)
{
    QEvent update(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(window, &update);
}

// The timed part of one key, kept out of line so that a profiler can be told to count
// only inside it (valgrind --tool=callgrind --toggle-collect='*timedKey*').
Q_NEVER_INLINE double timedKey(QWidget *target, QWidget *window, const Key &k, Figure figure)
{
    const auto t0 = Clock::now();
    sendKey(target, k);
    if (figure == KeysAndPaint)
        paintNow(window);
    releaseKey(target, k);
    const auto t1 = Clock::now();
    return std::chrono::duration<double, std::micro>(t1 - t0).count();
}

// Types one word; returns the number of keys sent. The reset and the event processing
// after the word are not timed.
size_t typeWord(Case &c, Figure figure, std::vector<double> *samples)
{
    const Word &w = c.words[c.next++ % c.words.size()];
    QWidget *window = c.outer->window();
    for (const Key &k : w) {
        const double us = timedKey(c.keyTarget, window, k, figure);
        if (samples)
            samples->push_back(us);
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
    c.outer->setFocus(Qt::OtherFocusReason);
    QApplication::processEvents();
    c.reset();
    QApplication::processEvents();
    c.keyTarget = QApplication::focusWidget();
    if (!c.keyTarget || (c.keyTarget != c.outer && !c.outer->isAncestorOf(c.keyTarget))) {
        std::fprintf(stderr, "bench_keys: %s did not get the focus\n", qPrintable(c.title));
        return false;
    }
    return true;
}

void typeKeys(Case &c, Figure figure, size_t keys, std::vector<double> *samples)
{
    size_t sent = 0;
    while (sent < keys)
        sent += typeWord(c, figure, samples);
}

// Counts paint events of the widgets inside one case.
class PaintCounter final : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
    int paints = 0;
};

// A key of the second figure must paint the widget typed into: otherwise that figure
// would time nothing more than the first.
bool paintsOnKey(Case &c)
{
    if (!focus(c))
        return false;
    PaintCounter counter;
    c.keyTarget->installEventFilter(&counter);
    const Word &w = c.words[c.next % c.words.size()];
    sendKey(c.keyTarget, w.front());
    paintNow(c.outer->window());
    releaseKey(c.keyTarget, w.front());
    c.keyTarget->removeEventFilter(&counter);
    c.reset();
    QApplication::processEvents();
    if (counter.paints == 0)
        std::fprintf(stderr, "bench_keys: a key into %s painted nothing\n", qPrintable(c.title));
    return counter.paints > 0;
}

struct Options
{
    QString json = QStringLiteral("bench-keys.json");
    size_t keys = 1200;
    size_t block = 200;
    size_t warmup = 1000;
    int window = 3;
    int maxRounds = 12;
    QStringList only; // types whose pairs are measured; empty for all
    std::vector<Figure> figures {KeysOnly, KeysAndPaint};
    bool strict = false;
};

void usage()
{
    std::printf("usage: bench_keys [--json FILE] [--keys N] [--block N] [--warmup N]\n"
                "                  [--window N] [--max-rounds N] [--only TYPES] [--figure F]\n"
                "                  [--strict]\n"
                "  --json FILE       write the results as JSON (default bench-keys.json)\n"
                "  --keys N          measured keys per widget and figure in a round (1200)\n"
                "  --block N         keys typed into one widget before the next takes over "
                "(200)\n"
                "  --warmup N        keys typed into each widget before measuring (1000)\n"
                "  --window N        rounds whose medians must agree within 5 %% (3)\n"
                "  --max-rounds N    rounds at most before giving up as noisy (12)\n"
                "  --only TYPES      measure only these types, comma-separated (numeric, date,\n"
                "                    text, boolean)\n"
                "  --figure F        measure only one figure: keys or keys+paint\n"
                "  --strict          exit with 1 when a pair is over target or noisy\n");
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
        else if (a == QLatin1String("--block") && hasValue)
            o.block = args.at(++i).toULong(&ok);
        else if (a == QLatin1String("--warmup") && hasValue)
            o.warmup = args.at(++i).toULong(&ok);
        else if (a == QLatin1String("--window") && hasValue)
            o.window = args.at(++i).toInt(&ok);
        else if (a == QLatin1String("--max-rounds") && hasValue)
            o.maxRounds = args.at(++i).toInt(&ok);
        else if (a == QLatin1String("--only") && hasValue)
            o.only = args.at(++i).split(QLatin1Char(','));
        else if (a == QLatin1String("--figure") && hasValue) {
            const QString name = args.at(++i);
            o.figures.clear();
            for (int f = 0; f < FigureCount; ++f)
                if (name == QLatin1String(figureNames[f]))
                    o.figures.push_back(Figure(f));
            ok = !o.figures.empty();
        } else if (a == QLatin1String("--strict"))
            o.strict = true;
        else
            ok = false;
        if (!ok)
            return false;
    }
    return o.keys > 0 && o.block > 0 && o.window > 0 && o.maxRounds >= o.window;
}

QJsonObject statsJson(const Stats &s)
{
    return {{QStringLiteral("keys"), qint64(s.n)}, {QStringLiteral("medianUs"), s.median},
            {QStringLiteral("p99Us"), s.p99},      {QStringLiteral("meanUs"), s.mean},
            {QStringLiteral("minUs"), s.min},      {QStringLiteral("maxUs"), s.max}};
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
    const QLocale czech(QLocale::Czech, QLocale::Czechia);

    QWidget form;
    form.setWindowTitle(QStringLiteral("bench_keys"));
    auto *layout = new QVBoxLayout(&form);
    std::vector<Case> cases;
    std::vector<Pair> pairs;

    // Every widget has the size of a numeric field with its default font.
    QSize size;
    QFont font;
    QPalette focusPalette;

    auto addCase = [&](const QString &id, const QString &title, bool isField, QWidget *outer,
                       std::function<void()> reset, std::function<QString()> shown,
                       const QStringList &words) {
        outer->setFixedSize(size);
        layout->addWidget(outer);
        Case c;
        c.id = id;
        c.title = title;
        c.isField = isField;
        c.outer = outer;
        c.reset = std::move(reset);
        c.shown = std::move(shown);
        c.words = wordsOf(words);
        cases.push_back(std::move(c));
        return cases.size() - 1;
    };
    auto addField = [&](const QString &id, velmora::InpType t, const QString &format,
                        const QStringList &words) {
        auto *f = new velmora::Velmora(&form);
        f->setInputType(t);
        if (!format.isEmpty())
            f->setFormatStr(format);
        const QString title
            = QStringLiteral("field %1 %2")
                  .arg(id, format.isEmpty() ? QStringLiteral("(default format)") : format);
        return addCase(
            id, title, true, f, [f] { f->Clear(); }, [f] { return f->FormValue(); }, words);
    };
    auto styled = [&](QWidget *editor) {
        editor->setFont(font);
        editor->setPalette(focusPalette);
        return new Framed(editor, &form);
    };
    auto addLineEdit
        = [&](const QString &id, const QString &title, QLineEdit *le, const QStringList &words) {
              le->setFrame(false);
              return addCase(
                  id, title, false, styled(le), [le] { le->clear(); },
                  [le] { return le->displayText(); }, words);
          };

    {
        // The field's look: its size with the default font, and the colours of its edit
        // box while it has the focus.
        velmora::Velmora probe;
        probe.setInputType(velmora::itNum);
        size = QSize(std::max(probe.sizeHint().width(), 160), probe.sizeHint().height());
        auto *box = probe.findChild<QLineEdit *>(QStringLiteral("txtInput"));
        font = box->font();
        focusPalette = box->palette();
        const velmora::OleColor c = velmora::FocusHighlightColor;
        focusPalette.setColor(QPalette::Base,
                              QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF)));
    }

    const QStringList numbers = numberWords(rng);
    const QStringList dates = dateWords();

    const size_t numField
        = addField(QStringLiteral("numeric"), velmora::itNum, QStringLiteral("#,##0.00"), numbers);
    auto *validated = new QLineEdit;
    auto *validator = new QDoubleValidator(0.0, 9999.99, 2, validated);
    validator->setNotation(QDoubleValidator::StandardNotation);
    validator->setLocale(czech);
    validated->setValidator(validator);
    const size_t numAnchor
        = addLineEdit(QStringLiteral("qdoublevalidator"),
                      QStringLiteral("QLineEdit QDoubleValidator"), validated, numbers);
    pairs.push_back({QStringLiteral("numeric"), numField, numAnchor});

    const size_t dateField = addField(QStringLiteral("date"), velmora::itDate, QString(), dates);
    auto *dateEdit = new QDateEdit;
    dateEdit->setLocale(czech);
    dateEdit->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    dateEdit->setFrame(false);
    dateEdit->setButtonSymbols(QAbstractSpinBox::NoButtons);
    const size_t dateEditAnchor = addCase(
        QStringLiteral("qdateedit"), QStringLiteral("QDateEdit dd.MM.yyyy"), false,
        styled(dateEdit),
        [dateEdit] {
            // Typing starts over the day, as in the field.
            dateEdit->setDate(QDate(2000, 1, 1));
            dateEdit->setSelectedSection(QDateTimeEdit::DaySection);
        },
        [dateEdit] { return dateEdit->text(); }, dates);
    auto *masked = new QLineEdit;
    masked->setInputMask(QStringLiteral("99.99.9999"));
    const size_t maskAnchor = addLineEdit(
        QStringLiteral("inputmask"), QStringLiteral("QLineEdit mask 99.99.9999"), masked, dates);
    pairs.push_back({QStringLiteral("date"), dateField, dateEditAnchor});
    pairs.push_back({QStringLiteral("date"), dateField, maskAnchor});

    const size_t textField
        = addField(QStringLiteral("alphanumeric"), velmora::itAlfaNum, QString(), textWords());
    const size_t textAnchor = addLineEdit(
        QStringLiteral("qlineedit"), QStringLiteral("QLineEdit plain"), new QLineEdit, textWords());
    pairs.push_back({QStringLiteral("text"), textField, textAnchor});

    const size_t boolField
        = addField(QStringLiteral("boolean"), velmora::itBool, QString(), boolWords());
    auto *combo = new QComboBox;
    combo->setFrame(false);
    combo->addItems({QStringLiteral("ANO"), QStringLiteral("NE")});
    const size_t boolAnchor = addCase(
        QStringLiteral("qcombobox"), QStringLiteral("QComboBox ANO/NE"), false, styled(combo),
        [combo] {
            // An empty search ends the one in progress, so the next letter starts anew.
            combo->view()->keyboardSearch(QString());
            combo->setCurrentIndex(-1);
        },
        [combo] { return combo->currentText(); }, boolWords());
    pairs.push_back({QStringLiteral("boolean"), boolField, boolAnchor});

    // The widgets of the pairs asked for; the others stay on the form, idle.
    pairs.erase(std::remove_if(pairs.begin(), pairs.end(),
                               [&](const Pair &p) {
                                   return !opt.only.isEmpty() && !opt.only.contains(p.type);
                               }),
                pairs.end());
    if (pairs.empty()) {
        usage();
        return 2;
    }
    std::vector<Case *> measured;
    for (const Pair &p : pairs)
        for (size_t i : {p.field, p.anchor})
            if (std::find(measured.begin(), measured.end(), &cases[i]) == measured.end())
                measured.push_back(&cases[i]);
    const std::vector<Figure> &figures = opt.figures;

    form.show();
    QApplication::setActiveWindow(&form);
    if (!QTest::qWaitForWindowActive(&form)) {
        std::fprintf(stderr, "bench_keys: the form did not become active\n");
        return 2;
    }

    const auto started = Clock::now();

    // Warm-up: every widget and figure, so that all code paths and caches are hot.
    for (Case *cp : measured) {
        Case &c = *cp;
        for (Figure f : figures) {
            if (!focus(c))
                return 2;
            typeKeys(c, f, opt.warmup / figures.size(), nullptr);
        }
        if (!paintsOnKey(c))
            return 2;
        if (c.firstShown.isEmpty()) {
            std::fprintf(stderr, "bench_keys: typing \"%s\" into %s showed nothing\n",
                         qPrintable(c.firstTyped), qPrintable(c.title));
            return 2;
        }
    }
    const int beepsAfterWarmup = platform.beeps;

    // Rounds of blocks: in each block every widget types a block of keys per figure, the
    // order of the widgets and of the figures turning from block to block.
    const size_t window = size_t(opt.window);
    const size_t blocks = (opt.keys + opt.block - 1) / opt.block;
    size_t rounds = 0;
    bool stable = false;
    while (!stable && rounds < size_t(opt.maxRounds)) {
        for (Case *c : measured)
            for (auto &r : c->rounds)
                r.emplace_back();
        for (size_t b = 0; b < blocks; ++b) {
            const size_t turn = rounds * blocks + b;
            for (size_t fi = 0; fi < figures.size(); ++fi) {
                const Figure f = figures[(fi + turn) % figures.size()];
                for (size_t i = 0; i < measured.size(); ++i) {
                    Case &c = *measured[(i + turn) % measured.size()];
                    if (!focus(c))
                        return 2;
                    std::vector<double> &samples = c.rounds[f].back();
                    typeKeys(c, f, std::min(opt.block, opt.keys - samples.size()), &samples);
                }
            }
        }
        ++rounds;
        for (Case *c : measured)
            for (Figure f : figures)
                c->medians[f].push_back(medianOf(c->rounds[f].back()));
        if (rounds >= window) {
            stable = true;
            for (const Case *c : measured)
                for (Figure f : figures)
                    stable
                        = stable && spreadOf(c->medians[f], rounds - window, rounds) < StableSpread;
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - started).count();

    // The rounds reported: the last ones when they agree, else the calmest run of them.
    size_t first = rounds - window;
    if (!stable) {
        double best = HUGE_VAL;
        for (size_t from = 0; from + window <= rounds; ++from) {
            double worst = 0;
            for (const Case *c : measured)
                for (Figure f : figures)
                    worst = std::max(worst, spreadOf(c->medians[f], from, from + window));
            if (worst < best) {
                best = worst;
                first = from;
            }
        }
    }
    for (Case *c : measured) {
        for (Figure f : figures) {
            std::vector<double> all;
            for (size_t r = first; r < first + window; ++r)
                all.insert(all.end(), c->rounds[f][r].begin(), c->rounds[f][r].end());
            c->stats[f] = statsOf(std::move(all));
            c->spread[f] = spreadOf(c->medians[f], first, first + window);
        }
    }

    std::printf("Keystrokes per input type against the matching Qt control, microseconds per key\n"
                "  keys        press + release\n"
                "  keys+paint  press, paint of what the key changed, release\n");
    std::printf("Qt %s, platform %s; %zu keys per widget and figure in a round, in blocks of "
                "%zu, after %zu warm-up keys\n",
                qVersion(), qPrintable(QGuiApplication::platformName()), opt.keys, opt.block,
                opt.warmup);
    std::printf("Rounds %zu to %zu of %zu reported: %s\n\n", first + 1, first + window, rounds,
                stable ? "their medians agree within 5 %" : "noisy, medians differ by 5 % or more");
    std::printf("%-8s %-10s %9s %8s  %-26s %9s %8s %7s %7s  %s\n", "type", "figure", "median",
                "p99", "anchor", "median", "p99", "ratio", "spread", "verdict");

    bool allOk = stable;
    QJsonArray jsonPairs;
    for (const Pair &p : pairs) {
        const Case &fc = cases[p.field];
        const Case &ac = cases[p.anchor];
        for (Figure f : figures) {
            const Stats &fs = fc.stats[f];
            const Stats &as = ac.stats[f];
            const double ratio = fs.median / as.median;
            const double spread = std::max(fc.spread[f], ac.spread[f]);
            const bool noisy = spread >= StableSpread;
            const bool ok = ratio <= TargetMedianRatio && fs.p99 <= TargetP99Us;
            allOk = allOk && ok && !noisy;
            const QString verdict = QString::fromLatin1(ok ? "ok" : "over")
                + QString::fromLatin1(noisy ? " noisy" : "");
            std::printf("%-8s %-10s %9.2f %8.2f  %-26s %9.2f %8.2f %6.2fx %6.1f%%  %s\n",
                        qPrintable(p.type), figureNames[f], fs.median, fs.p99, qPrintable(ac.title),
                        as.median, as.p99, ratio, spread * 100, qPrintable(verdict));
            jsonPairs.append(QJsonObject {
                {QStringLiteral("type"), p.type},
                {QStringLiteral("figure"), QString::fromLatin1(figureNames[f])},
                {QStringLiteral("field"), fc.id},
                {QStringLiteral("anchor"), ac.id},
                {QStringLiteral("medianRatio"), ratio},
                {QStringLiteral("fieldP99Us"), fs.p99},
                {QStringLiteral("spread"), spread},
                {QStringLiteral("verdict"), verdict},
            });
        }
    }

    std::printf("\nTargets: median ratio <= %.1f and field p99 <= %.0f us in both figures\n",
                TargetMedianRatio, TargetP99Us);
    std::printf("First word typed and shown:\n");
    for (const Case *c : measured)
        std::printf("  %-36s \"%s\" -> \"%s\"\n", qPrintable(c->title), qPrintable(c->firstTyped),
                    qPrintable(c->firstShown));
    std::printf("Warning tones while measuring: %d, message boxes: %d\n",
                platform.beeps - beepsAfterWarmup, platform.boxes);
    std::printf("Run took %.1f s\n", seconds);

    QJsonArray jsonCases;
    for (const Case *c : measured) {
        QJsonObject perFigure;
        for (Figure f : figures) {
            QJsonObject o = statsJson(c->stats[f]);
            o.insert(QStringLiteral("spread"), c->spread[f]);
            QJsonArray medians;
            for (double m : c->medians[f])
                medians.append(m);
            o.insert(QStringLiteral("roundMediansUs"), medians);
            perFigure.insert(QString::fromLatin1(figureNames[f]), o);
        }
        jsonCases.append(QJsonObject {
            {QStringLiteral("id"), c->id},
            {QStringLiteral("title"), c->title},
            {QStringLiteral("kind"),
             c->isField ? QStringLiteral("field") : QStringLiteral("anchor")},
            {QStringLiteral("figures"), perFigure},
            {QStringLiteral("firstTyped"), c->firstTyped},
            {QStringLiteral("firstShown"), c->firstShown},
        });
    }
    const QJsonObject root {
        {QStringLiteral("benchmark"), QStringLiteral("bench_keys")},
        {QStringLiteral("qtVersion"), QString::fromLatin1(qVersion())},
        {QStringLiteral("platform"), QGuiApplication::platformName()},
        {QStringLiteral("keysPerRound"), qint64(opt.keys)},
        {QStringLiteral("block"), qint64(opt.block)},
        {QStringLiteral("warmupKeys"), qint64(opt.warmup)},
        {QStringLiteral("rounds"), qint64(rounds)},
        {QStringLiteral("firstReportedRound"), qint64(first + 1)},
        {QStringLiteral("window"), opt.window},
        {QStringLiteral("stable"), stable},
        {QStringLiteral("target"),
         QJsonObject {{QStringLiteral("medianRatio"), TargetMedianRatio},
                      {QStringLiteral("p99Us"), TargetP99Us},
                      {QStringLiteral("spread"), StableSpread}}},
        {QStringLiteral("pairs"), jsonPairs},
        {QStringLiteral("cases"), jsonCases},
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
