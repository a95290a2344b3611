// The form designer plugin: what it tells the designer about the field, that a field it
// creates inside the designer is in design mode, and that a form saved with fields loads
// at run time with their properties and in run mode.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include <velmora/Velmora.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMetaProperty>
#include <QtCore/QPluginLoader>
#include <QtCore/QXmlStreamReader>
#ifdef VELMORA_HAVE_DESIGNER_COMPONENTS
#    include <QtDesigner/QDesignerComponents>
#endif
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtGui/QIcon>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <QtUiTools/QUiLoader>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Design mode shows in what a type change does: in run mode a text field holding
// letters refuses to become numeric, in design mode the type is only stored.
bool inDesignMode(Velmora *field)
{
    const bool messages = field->Messages();
    field->setMessages(false);
    field->setInputType(itAlfaNum);
    field->setValue(u"abc"_s);
    field->setInputType(itNum);
    const bool design = field->InputType() == itNum;
    field->setError(0);
    field->setMessages(messages);
    return design;
}

QByteArray formText()
{
    QFile file(u":/tests/designer/form.ui"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestDesigner : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> platform;
    QDesignerCustomWidgetInterface *plugin = nullptr;
    const QString pluginFile = QString::fromUtf8(VELMORA_DESIGNER_PLUGIN);

private Q_SLOTS:
    void initTestCase()
    {
        platform = std::make_unique<TestPlatform>(czechSpace());
        QPluginLoader loader(pluginFile);
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        QCOMPARE(loader.metaData().value("IID"_L1).toString(),
                 "org.qt-project.Qt.QDesignerCustomWidgetInterface"_L1);
        plugin = qobject_cast<QDesignerCustomWidgetInterface *>(loader.instance());
        QVERIFY(plugin);
    }
    void cleanupTestCase() { platform.reset(); }

    // The name is the class a saved form names, the header one that declares it.
    void describesTheField()
    {
        QCOMPARE(plugin->name(), QString::fromLatin1(Velmora::staticMetaObject.className()));
        QCOMPARE(plugin->group(), "Velmora"_L1);
        QVERIFY(QFileInfo::exists(QStringLiteral(VELMORA_INCLUDE_DIR "/") + plugin->includeFile()));
        QVERIFY(!plugin->icon().pixmap(16, 16).isNull());
    }

    // The template of a new field: the class, a name, a size that fits the field, and
    // editing hints for text properties that exist and are writable.
    void templateOfANewField()
    {
        QXmlStreamReader xml(plugin->domXml());
        QString widgetClass, objectName, element, property;
        QSize size;
        QStringList specified;
        int depth = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            const auto name = xml.name();
            const auto attrs = xml.attributes();
            if (name == "widget"_L1 && ++depth == 1) {
                widgetClass = attrs.value("class"_L1).toString();
                objectName = attrs.value("name"_L1).toString();
            } else if (name == "property"_L1) {
                property = attrs.value("name"_L1).toString();
            } else if (property == "geometry"_L1 && (name == "width"_L1 || name == "height"_L1)) {
                const int v = xml.readElementText().toInt();
                name == "width"_L1 ? size.setWidth(v) : size.setHeight(v);
            } else if (name == "stringpropertyspecification"_L1) {
                specified << attrs.value("name"_L1).toString();
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(widgetClass, plugin->name());
        QVERIFY(!objectName.isEmpty());

        Velmora field;
        QVERIFY2(size.height() >= field.minimumSizeHint().height() && size.width() > 0,
                 qPrintable(u"%1x%2"_s.arg(size.width()).arg(size.height())));
        QVERIFY(!specified.isEmpty());
        for (const QString &name : std::as_const(specified)) {
            const QMetaObject &meta = Velmora::staticMetaObject;
            const int index = meta.indexOfProperty(name.toLatin1().constData());
            QVERIFY2(index >= 0, qPrintable(name));
            QCOMPARE(meta.property(index).metaType(), QMetaType::fromType<QString>());
            QVERIFY2(meta.property(index).isWritable(), qPrintable(name));
        }
    }

    // The designer offers a list of names for a property only when its type is an
    // enumeration the meta-object system knows.
    void enumPropertiesAreListed()
    {
        const QMetaObject &meta = Velmora::staticMetaObject;
        int enums = 0;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty p = meta.property(i);
            const QByteArray type = p.typeName();
            if (!type.startsWith("velmora::") || type.endsWith('*'))
                continue;
            QVERIFY2(p.isEnumType() && p.enumerator().isValid(), p.name());
            QVERIFY2(p.enumerator().keyCount() > 1, p.name());
            ++enums;
        }
        QCOMPARE(enums, 8);
    }

    // A field made by the plugin of a program that only loads forms is in run mode.
    void createdOutsideTheDesigner()
    {
        QVERIFY(!plugin->isInitialized());
        QWidget parent;
        QWidget *w = plugin->createWidget(&parent);
        auto *field = qobject_cast<Velmora *>(w);
        QVERIFY(field);
        QCOMPARE(field->parentWidget(), &parent);
        QVERIFY(!inDesignMode(field));
    }

    // Each field of the saved form, with what it was given in the designer.
    void loadedForm_data()
    {
        columns<QString, QString, QVariant>({"field", "property", "expected"});
        row("code: label", "code", "Label", QVariant(u"Customer code"_s));
        row("code: auto tab", "code", "AutoTab", QVariant(true));
        row("code: max length", "code", "MaxLength", QVariant::fromValue(qint16(7)));
        row("code: format", "code", "FormatStr", QVariant(u">@@@-@@@"_s));
        row("code: type untouched", "code", "InputType", QVariant::fromValue(itAlfaNum));
        row("amount: type", "amount", "InputType", QVariant::fromValue(itNum));
        row("amount: alignment", "amount", "Alignment", QVariant::fromValue(vbRightJustify));
        row("amount: nullable", "amount", "Nullable", QVariant(true));
        row("amount: colour", "amount", "BackColor", QVariant::fromValue(quint32(0x0080FFFF)));
        row("amount: format", "amount", "FormatStr", QVariant(u"#,##0.00"_s));
        row("due: type", "due", "InputType", QVariant::fromValue(itDate));
        row("due: display mode", "due", "DisplayMode", QVariant::fromValue(dmLandable));
        // Choosing the date type makes a field nullable.
        row("due: nullable by type", "due", "Nullable", QVariant(true));
    }
    void loadedForm()
    {
        QUiLoader loader;
        loader.addPluginPath(QFileInfo(pluginFile).absolutePath());
        QVERIFY(loader.availableWidgets().contains(plugin->name()));
        QByteArray text = formText();
        QBuffer buffer(&text);
        std::unique_ptr<QWidget> form(loader.load(&buffer));
        QVERIFY2(form, qPrintable(loader.errorString()));

        QFETCH(QString, field);
        auto *f = form->findChild<Velmora *>(field);
        QVERIFY(f);
        QCOMPARE(f->Error(), qint16(0));
        QFETCH(QString, property);
        QTEST(f->property(property.toLatin1().constData()), "expected");
        QVERIFY(!inDesignMode(f));
    }

    // Everything from here on initializes the plugin, which has one instance in the
    // process: these run last.

    // Inside the designer a field is in design mode, and a form it saves carries nothing
    // of that, while every property given to a field survives: saved in the order the
    // designer writes them and loaded again, each reads back as before.
    void designerRoundTrip()
    {
#ifndef VELMORA_HAVE_DESIGNER_COMPONENTS
        QSKIP("built without the designer's form editor library");
#else
        QWidget window;
        QCoreApplication::addLibraryPath(QFileInfo(pluginFile).absolutePath() + "/.."_L1);
        QDesignerFormEditorInterface *core = QDesignerComponents::createFormEditor(&window);
        QDesignerComponents::initializePlugins(core);
        new QDesignerIntegration(core, &window);
        QVERIFY(plugin->isInitialized());

        QDesignerFormWindowInterface *fw = core->formWindowManager()->createFormWindow(&window);
        QVERIFY(fw);
        QVERIFY(fw->setContents(QString::fromUtf8(formText())));
        const QString saved = fw->contents();
        QVERIFY2(!saved.contains("UserMode"_L1), qPrintable(saved));

        const auto fields = fw->mainContainer()->findChildren<Velmora *>();
        QCOMPARE(fields.size(), 3);
        for (Velmora *f : fields)
            QVERIFY2(inDesignMode(f), qPrintable(f->objectName()));

        QUiLoader loader;
        loader.addPluginPath(QFileInfo(pluginFile).absolutePath());
        QByteArray original = formText(), again = saved.toUtf8();
        QBuffer originalBuffer(&original), againBuffer(&again);
        const std::unique_ptr<QWidget> before(loader.load(&originalBuffer));
        const std::unique_ptr<QWidget> after(loader.load(&againBuffer));
        QVERIFY2(before && after, qPrintable(loader.errorString()));
        const QMetaObject &meta = Velmora::staticMetaObject;
        for (const auto *f : before->findChildren<Velmora *>()) {
            const auto *g = after->findChild<Velmora *>(f->objectName());
            QVERIFY2(g, qPrintable(f->objectName()));
            for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
                const QMetaProperty p = meta.property(i);
                if (p.isWritable() && !QByteArray(p.typeName()).endsWith('*'))
                    QVERIFY2(p.read(f) == p.read(g),
                             qPrintable(f->objectName() + u'.' + QLatin1String(p.name())));
            }
        }
        QCOMPARE(after->findChild<Velmora *>(u"code"_s)->MaxLength(), qint16(7));
        delete core;
#endif
    }
};

VELMORA_TEST(TestDesigner)
#include "tst_designer.moc"
