// Validating a form: DoValidateAll over a form of 1,000 fields (numbers, dates, texts
// and truth values, all holding valid values, spread over group boxes), against the
// same check done by hand on 1,000 QLineEdits with validators (hasAcceptableInput on
// each), in the same process. The target is an absolute one: at most 10 ms per call.

#include "BenchStats.h"

#include <velmora/Velmora.h>

#include <QtCore/QDate>
#include <QtCore/QRegularExpression>
#include <QtGui/QValidator>
#include <QtWidgets/QApplication>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int Fields = 1000;
constexpr double TargetMs = 10.0;

template<typename F>
double medianMs(F run, int rounds = 31)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const auto start = Clock::now();
        run();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    return velmora::bench::medianOf(std::move(times));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : "");
    QApplication app(argc, argv);
    using namespace velmora;

    QWidget form;
    QWidget anchorForm;
    std::vector<Velmora *> fields;
    std::vector<QLineEdit *> edits;
    QDoubleValidator number;
    QRegularExpressionValidator date(QRegularExpression(QStringLiteral(R"(\d\d\.\d\d\.\d{4})")));
    QGroupBox *box = nullptr;
    for (int i = 0; i < Fields; ++i) {
        if (i % 50 == 0)
            box = new QGroupBox(&form);
        auto *f = new Velmora(box);
        auto *e = new QLineEdit(&anchorForm);
        f->setEnableEmpty(false);
        f->setMessages(false); // a failure shows no box, so that the run cannot block
        switch (i % 4) {
        case 0:
            f->setInputType(itNum);
            f->setvarValue(1234.5);
            e->setValidator(&number);
            e->setText(QStringLiteral("1234.5"));
            break;
        case 1:
            f->setInputType(itDate);
            f->setvarValue(QDate(2026, 11, 22));
            e->setValidator(&date);
            e->setText(QStringLiteral("22.11.2026"));
            break;
        case 2:
            f->setValue(QStringLiteral("Novák"));
            e->setText(QStringLiteral("Novák"));
            break;
        default:
            f->setInputType(itBool);
            f->setvarValue(true);
            e->setText(QStringLiteral("ANO"));
            break;
        }
        fields.push_back(f);
        edits.push_back(e);
    }

    bool allValid = true;
    const double field = medianMs([&] { allValid = fields.front()->DoValidateAll() && allValid; });
    int acceptable = 0;
    const double anchor = medianMs([&] {
        acceptable = 0;
        for (QLineEdit *e : edits)
            acceptable += e->hasAcceptableInput() && !e->text().trimmed().isEmpty();
    });
    std::printf("DoValidateAll over %d fields: %.3f ms (target <= %.1f ms: %s)\n", Fields, field,
                TargetMs, field <= TargetMs ? "met" : "missed");
    std::printf("  anchor, %d QLineEdit validators: %.3f ms; ratio field/anchor %.1fx\n", Fields,
                anchor, field / anchor);
    std::printf("  all fields valid: %s, anchor acceptable: %d\n", allValid ? "yes" : "NO",
                acceptable);
    return allValid && field <= TargetMs ? 0 : 1;
}
