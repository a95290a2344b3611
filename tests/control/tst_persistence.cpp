// Saved settings: every key through both bags and back, the keys whose loading differs
// from a new field, and damaged documents loaded into a form of fields.

#include "common/TestForm.h"
#include "common/TestRegistry.h"

#include <velmora/FormSettings.h>

#include <QtCore/QJsonObject>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QToolButton>

using namespace velmora;
using namespace velmora::test;

namespace {

// A saved set with a value no new field has for every key (VisibleByLbl, at its default,
// is not saved; OriBC is the BackColor the field saves beside it). The apostrophe is
// written \u0027: moc reads a bare one as the start of a character literal.
const char AllKeys[]
    = R"({"AlfaNumTrim":3,"Alignment":3,"ArrowAction":3,"AutoTab":true,"BackColor":1122867,)"
      R"("CheckValues":false,"ControlLength":3,"Crrr":false,"DisplayMode":2,)"
      R"("EnableEmpty":false,"EnterAction":2,"Font":{"Bold":false,"Charset":161,)"
      R"("Italic":true,"Name":"Serif","Size":13.5,"Strikethrough":false,"Underline":false,)"
      R"("Weight":600},"ForeColor":7833753,"FormatDatOddel":"-","FormatDesOddel":"x",)"
      R"("FormatStr":"#,##0.00","FormatTisOddel":"\u0027","Group":-3,"HideCol":"1,2",)"
      R"("InputType":78,"InsMode":true,"Label":"Cena","ListAddNewItem":true,)"
      R"("ListBackColor":2147483666,"ListCheckValue":false,"ListFont":{"Bold":true,)"
      R"("Charset":238,"Italic":false,"Name":"Mono","Size":8,"Strikethrough":true,)"
      R"("Underline":true,"Weight":700},"ListForeColor":11189196,)"
      R"("ListFormatString":"A10;N5","ListNewItemText":"nová","MatchCol":2,"MaxLength":12,)"
      R"("Messages":false,"Nullable":true,"OriBC":1122867,"RefreshInt":30,)"
      R"("SQLConnect":"DSN=x;UID=y","SQLList":"select a, b from t","SelectText":false,)"
      R"("SetList":true,"SpecialEffect":6,"TextCol":2,"ValueCol":1})";

QJsonObject saved(Velmora *f)
{
    JsonPropertyBag bag;
    f->WriteProperties(bag);
    return bag.object();
}

} // namespace

class TestPersistence : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<QWidget> form;

    Velmora *newField(const QString &name = {})
    {
        auto *f = new Velmora(form.get());
        f->setObjectName(name);
        return f;
    }

private Q_SLOTS:
    void init()
    {
        platform = std::make_unique<TestPlatform>(czechSpace());
        form = std::make_unique<QWidget>();
        form->setProperty("UserMode", false); // setters only store
    }
    void cleanup()
    {
        form.reset();
        platform.reset();
    }

    // Every key comes back, and saves the same again; loading tells the host nothing.
    void roundTrip_data()
    {
        columns<bool>({"ini"});
        row("json", false);
        row("settings", true);
    }
    void roundTrip()
    {
        const QJsonObject all = QJsonDocument::fromJson(AllKeys).object();
        Velmora *loaded = newField();
        const QJsonObject fresh = saved(newField());
        for (auto it = all.begin(); it != all.end(); ++it)
            QVERIFY2(fresh.value(it.key()) != it.value(), qPrintable(it.key()));
        QSignalSpy told(loaded, &Velmora::PropertyChanged), changed(loaded, &Velmora::Change);
        JsonPropertyBag json(all);
        if (VFETCH(bool, ini)) {
            Velmora *source = newField();
            source->ReadProperties(json);
            QTemporaryDir dir;
            QSettings settings(dir.filePath(QStringLiteral("form.ini")), QSettings::IniFormat);
            SettingsPropertyBag out(settings, QStringLiteral("forms/f1"));
            source->WriteProperties(out);
            settings.sync();
            QSettings again(settings.fileName(), QSettings::IniFormat); // values come back as text
            SettingsPropertyBag in(again, QStringLiteral("forms/f1"));
            loaded->ReadProperties(in);
            QCOMPARE(in.ignored(), QStringList());
        } else {
            loaded->ReadProperties(json);
        }
        QCOMPARE(json.ignored(), QStringList());
        QCOMPARE(told.size() + changed.size(), 0);
        const QJsonObject back = saved(loaded);
        for (auto it = all.begin(); it != all.end(); ++it)
            QVERIFY2(back.value(it.key()) == it.value(), qPrintable(it.key()));
        QCOMPARE(back.size(), all.size());
        QVERIFY(!loaded->Changed());
    }

    // Keys whose loading differs from what a new field starts with, or from what was
    // stored. "new" stands for the saved set of a new, unchanged field.
    void loading_data()
    {
        columns<QByteArray, QString, QVariant>({"stored", "property", "expected"});
        row("new field keeps VisibleByLbl", QByteArray("new"), "VisibleByLbl", QVariant(true));
        row("no VisibleByLbl", QByteArray("{}"), "VisibleByLbl", QVariant(false));
        row("blanks around FormatStr", QByteArray(R"({"InputType":78,"FormatStr":"  0.00  "})"),
            "FormatStr", QVariant("0.00"));
        row("two-character separator", QByteArray(R"({"FormatDesOddel":"xy"})"), "FormatDesOddel",
            QVariant("x"));
        row("no Font", QByteArray("{}"), "Font", QVariant());
        row("no ListFont", QByteArray(R"({"Font":{"Name":"Serif"}})"), "ListFont", QVariant());
        row("date shows its empty mask", QByteArray(R"({"InputType":68})"), "FormValue",
            QVariant("  .  .    "));
        row("unknown type parses nothing", QByteArray(R"({"InputType":7,"FormatStr":"dd/mm"})"),
            "FormValue", QVariant(""));
        row("OriBC of its own", QByteArray(R"({"OriBC":255})"), "BackColor", QVariant(0x80000005u));
    }
    void loading()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QString, property);
        Velmora *f = newField();
        const QJsonObject set
            = stored == "new" ? saved(newField()) : QJsonDocument::fromJson(stored).object();
        JsonPropertyBag bag(set);
        f->ReadProperties(bag);
        QCOMPARE(bag.ignored(), QStringList());
        if (property.contains(QLatin1String("Font"))) {
            // No font saved: the list button's font.
            const QFont button = f->findChild<QToolButton *>(QStringLiteral("cmdList"))->font();
            const FieldFont *font = f->property(property.toLatin1()).value<FieldFont *>();
            QCOMPARE(font->Name(), button.family());
            QCOMPARE(font->Size(), button.pointSizeF());
        } else {
            QTEST(f->property(property.toLatin1()), "expected");
        }
        QCOMPARE(saved(f).value(QStringLiteral("OriBC")).toDouble(), set.value("OriBC").toDouble());
    }

    // A damaged document loads what it can: the form holds fields a, b and c set up alike.
    void damaged_data()
    {
        columns<QByteArray, QStringList, QStringList, int, QString, QVariant>(
            {"json", "loaded", "withoutEntry", "ignoredA", "property", "expected"});
        const QByteArray huge = QByteArray(100000, 'x');
        row("invalid JSON", QByteArray(R"({"a":{"Label":"z"})"), QStringList(), QStringList(), 0,
            "Label", QVariant("Cena"));
        row("not an object", QByteArray("[1,2]"), QStringList(), QStringList(), 0, "Label",
            QVariant("Cena"));
        row("wrong types",
            QByteArray(R"({"a":{"Nullable":"yes","Group":40000,"MaxLength":2.5,"Label":{"x":1},)"
                       R"("BackColor":"red","Font":[1],"InputType":true},"b":{},"c":{}})"),
            QStringList {"a", "b", "c"}, QStringList(), 7, "Group", QVariant::fromValue(qint16(0)));
        row("unknown type code", QByteArray(R"({"a":{"InputType":7},"b":{},"c":{}})"),
            QStringList {"a", "b", "c"}, QStringList(), 0, "InputType",
            QVariant::fromValue(InpType(7)));
        row("huge text", R"({"a":{"Label":")" + huge + R"("},"b":{},"c":{}})",
            QStringList {"a", "b", "c"}, QStringList(), 1, "Label", QVariant(QString(32767, 'x')));
        row("missing keys and fields", QByteArray(R"({"a":{},"zz":{"Label":"q"}})"),
            QStringList {"a"}, QStringList {"b", "c"}, 0, "Label", QVariant(""));
        row("entry not an object", QByteArray(R"({"a":5,"b":{},"c":{}})"), QStringList {"b", "c"},
            QStringList(), 1, "Label", QVariant("Cena"));
    }
    void damaged()
    {
        QFETCH(QByteArray, json);
        QFETCH(QStringList, loaded);
        for (const char *name : {"a", "b", "c"}) {
            Velmora *f = newField(QString::fromLatin1(name));
            f->setLabel(QStringLiteral("Cena"));
        }
        const FormSettingsReport r = loadFormSettings(form.get(), json);
        QCOMPARE(r.ok(), !loaded.isEmpty());
        QCOMPARE(r.loaded, loaded);
        QTEST(r.withoutEntry, "withoutEntry");
        QCOMPARE(r.withoutField,
                 QStringList(json.contains("zz") ? QStringList {"zz"} : QStringList()));
        QTEST(int(r.ignored.value(QStringLiteral("a")).size()), "ignoredA");
        Velmora *a = form->findChild<Velmora *>(QStringLiteral("a"));
        QFETCH(QString, property);
        QTEST(a->property(property.toLatin1()), "expected");
    }

    // The first of two fields named alike owns the name; an unnamed field is only counted.
    void duplicateNames()
    {
        Velmora *first = newField(QStringLiteral("a")), *second = newField(QStringLiteral("a"));
        newField();
        first->setLabel(QStringLiteral("one"));
        FormSettingsReport saving;
        const QJsonDocument doc = saveFormSettings(form.get(), &saving);
        QCOMPARE(saving.duplicates, QStringList {"a"});
        QCOMPARE(saving.unnamed, 1);
        first->setLabel({});
        const FormSettingsReport r = loadFormSettings(form.get(), doc);
        QCOMPARE(r.loaded, QStringList {"a"});
        QCOMPARE(first->Label(), QStringLiteral("one"));
        QCOMPARE(second->Label(), QString());
    }
};

VELMORA_TEST(TestPersistence)
#include "tst_persistence.moc"
