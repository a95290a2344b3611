// Form loading benchmark: a form of 1,000 fields created and given their saved settings
// from one JSON document, against 1,000 plain QLineEdits created on a form and given 43
// properties each from a QVariantMap (real properties where a QLineEdit has one, dynamic
// ones elsewhere), in the same process. Neither form is shown. Each side runs in turns,
// several rounds, and the medians are compared; the target is a ratio of at most 2.0.

#include "BenchStats.h"

#include <velmora/FieldFont.h>
#include <velmora/FormSettings.h>
#include <velmora/Velmora.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonObject>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

using namespace velmora;

namespace {

constexpr int Fields = 1000;
constexpr int Rounds = 7;
constexpr double TargetRatio = 2.0;

// A field with a setting off its default for nearly every key, saved once.
QJsonObject savedField()
{
    QWidget form;
    form.setProperty("UserMode", false);
    auto *f = new Velmora(&form);
    f->setInputType(itNum);
    f->setFormatStr(QStringLiteral("#,##0.00"));
    f->setLabel(QStringLiteral("Cena"));
    f->setMaxLength(12);
    f->setAlignment(vbRightJustify);
    f->setNullable(true);
    f->setCheckValues(false);
    f->setEnterAction(eaClearRest);
    f->setGroup(3);
    f->setSetList(true);
    f->setSQLList(QStringLiteral("select a, b from t"));
    f->setListFormatString(QStringLiteral("A10;N5"));
    f->setHideCol(QStringLiteral("1"));
    f->setMatchCol(1);
    f->setBackColor(0x00EEEEEEu);
    f->setForeColor(0x00202020u);
    f->setFormatDesOddel(QStringLiteral(","));
    f->Font()->setName(QStringLiteral("Serif"));
    f->Font()->setSize(10);
    f->ListFont()->setItalic(true);
    JsonPropertyBag bag;
    f->WriteProperties(bag);
    return bag.object();
}

// The same 43 settings as a plain control would take them.
QVariantMap lineEditSettings()
{
    QVariantMap m;
    const char *const dynamic[] = {"ListNewItemText", "ListAddNewItem", "CheckValues",
                                   "Nullable",        "InsMode",        "VisibleByLbl",
                                   "ListCheckValue",  "InputType",      "EnterAction",
                                   "ArrowAction",     "AutoTab",        "ControlLength",
                                   "SetList",         "SQLList",        "SQLConnect",
                                   "Group",           "EnableEmpty",    "ListFormatString",
                                   "MatchCol",        "HideCol",        "ValueCol",
                                   "TextCol",         "Crrr",           "Label",
                                   "Messages",        "AlfaNumTrim",    "RefreshInt",
                                   "SelectText",      "FormatDesOddel", "FormatTisOddel",
                                   "FormatDatOddel",  "ListFont",       "BackColor",
                                   "OriBC",           "ListBackColor",  "ForeColor",
                                   "ListForeColor",   "FormatStr"};
    for (const char *name : dynamic)
        m.insert(QString::fromLatin1(name), QStringLiteral("x"));
    m.insert(QStringLiteral("maxLength"), 12);
    m.insert(QStringLiteral("alignment"), QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter));
    m.insert(QStringLiteral("frame"), false);
    m.insert(QStringLiteral("readOnly"), false);
    QFont font(QStringLiteral("Serif"), 10);
    m.insert(QStringLiteral("font"), font);
    return m;
}

double loadShare = 0; // of the last round of fields, the part that loadFormSettings took

double fieldsRound(const QByteArray &json)
{
    QElapsedTimer t;
    t.start();
    auto form = std::make_unique<QWidget>();
    for (int i = 0; i < Fields; ++i)
        (new Velmora(form.get()))->setObjectName(QStringLiteral("f%1").arg(i));
    const qint64 created = t.nsecsElapsed();
    const FormSettingsReport r = loadFormSettings(form.get(), json);
    const double ms = t.nsecsElapsed() / 1e6;
    loadShare = 1 - created / 1e6 / ms;
    if (r.loaded.size() != Fields || !r.ignored.isEmpty())
        std::fprintf(stderr, "load incomplete: %d loaded, %d with ignored values\n",
                     int(r.loaded.size()), int(r.ignored.size()));
    QCoreApplication::sendPostedEvents(); // not left for the destructors to search through
    return ms;
}

double lineEditsRound(const QVariantMap &settings)
{
    QElapsedTimer t;
    t.start();
    auto form = std::make_unique<QWidget>();
    for (int i = 0; i < Fields; ++i) {
        auto *e = new QLineEdit(form.get());
        e->setObjectName(QStringLiteral("f%1").arg(i));
        for (auto it = settings.begin(); it != settings.end(); ++it)
            e->setProperty(it.key().toLatin1().constData(), it.value());
    }
    const double ms = t.nsecsElapsed() / 1e6;
    QCoreApplication::sendPostedEvents();
    return ms;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QJsonObject all;
    const QJsonObject one = savedField();
    for (int i = 0; i < Fields; ++i)
        all.insert(QStringLiteral("f%1").arg(i), one);
    const QByteArray json = QJsonDocument(all).toJson(QJsonDocument::Compact);
    const QVariantMap settings = lineEditSettings();
    std::printf("%d fields, %d saved keys each, document %.1f KiB; %d plain settings each\n",
                Fields, int(one.size()), json.size() / 1024.0, int(settings.size()));

    fieldsRound(json); // warm-up: fonts, styles, plugins
    lineEditsRound(settings);
    std::vector<double> fields, edits;
    for (int r = 0; r < Rounds; ++r) {
        if (r % 2) {
            fields.push_back(fieldsRound(json));
            edits.push_back(lineEditsRound(settings));
        } else {
            edits.push_back(lineEditsRound(settings));
            fields.push_back(fieldsRound(json));
        }
    }
    const double f = velmora::bench::medianOf(fields), e = velmora::bench::medianOf(edits);
    const double ratio = f / e;
    std::printf("Velmora create + loadFormSettings: %8.1f ms (median of %d)\n", f, Rounds);
    std::printf("  of which loading (last round): %.0f %%\n", loadShare * 100);
    std::printf("QLineEdit create + 43 properties:  %8.1f ms\n", e);
    std::printf("ratio %.2f (target <= %.1f): %s\n", ratio, TargetRatio,
                ratio <= TargetRatio ? "met" : "NOT met");
    return 0;
}
