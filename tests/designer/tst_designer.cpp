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
#include <QtCore/QRegularExpression>
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

const QString pluginFile = QString::fromUtf8(VELMORA_DESIGNER_PLUGIN);

// Design mode shows in what a type change does: in run mode a text field holding
// letters refuses to become numeric, in design mode the type is only stored.
bool inDesignMode(Velmora *field)
{
    field->setInputType(itAlfaNum);
    field->setValue(u"abc"_s);
    field->setInputType(itNum);
    return field->InputType() == itNum;
}

// A form loaded at run time, as a program that only loads forms does it.
std::unique_ptr<QWidget> load(QByteArray text)
{
    QUiLoader loader;
    loader.addPluginPath(QFileInfo(pluginFile).absolutePath());
    QBuffer buffer(&text);
    return std::unique_ptr<QWidget>(loader.load(&buffer));
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

    // The header a saved form includes and the icon; the text properties the template gives
    // editing hints for are writable strings, and the enumerations are listed by name.
    void describesTheField()
    {
        QVERIFY(QFileInfo::exists(QStringLiteral(VELMORA_INCLUDE_DIR "/") + plugin->includeFile()));
        QVERIFY(!plugin->icon().pixmap(16, 16).isNull());
        const QMetaObject &meta = Velmora::staticMetaObject;
        const QRegularExpression hint(u"stringpropertyspecification name=\"(\\w+)\""_s);
        int hints = 0, enums = 0;
        for (const auto &m : hint.globalMatch(plugin->domXml())) {
            const QMetaProperty p = meta.property(meta.indexOfProperty(m.captured(1).toLatin1()));
            QVERIFY2(p.isWritable() && p.metaType() == QMetaType::fromType<QString>(),
                     qPrintable(m.captured(1)));
            ++hints;
        }
        QVERIFY(hints > 0);
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty p = meta.property(i);
            const QByteArray type = p.typeName();
            if (type.startsWith("velmora::") && !type.endsWith('*') && ++enums)
                QVERIFY2(p.isEnumType() && p.enumerator().keyCount() > 1, p.name());
        }
        QCOMPARE(enums, 8);
    }

    // Each field of the saved form, with what it was given in the designer, in run mode.
    void loadedForm_data()
    {
        columns<QString, QString, QVariant>({"field", "property", "expected"});
        row("code: label", "code", "Label", QVariant(u"Customer code"_s));
        row("code: auto tab", "code", "AutoTab", QVariant(true));
        row("code: max length", "code", "MaxLength", QVariant::fromValue(qint16(7)));
        row("amount: type", "amount", "InputType", QVariant::fromValue(itNum));
        row("amount: colour", "amount", "BackColor", QVariant::fromValue(quint32(0x0080FFFF)));
        row("amount: format after the type", "amount", "FormatStr", QVariant(u"#,##0.00"_s));
        row("due: display mode", "due", "DisplayMode", QVariant::fromValue(dmLandable));
    }
    void loadedForm()
    {
        const std::unique_ptr<QWidget> form = load(formText());
        QVERIFY(form);
        auto *f = form->findChild<Velmora *>(VFETCH(QString, field));
        QVERIFY(f);
        QCOMPARE(f->Error(), qint16(0));
        QTEST(f->property(VFETCH(QString, property).toLatin1()), "expected");
        QVERIFY(!inDesignMode(f));
    }

    // Inside the designer a field is in design mode, and a form it saves carries nothing
    // of that, while the properties given to a field survive being saved in the order the
    // designer writes them. This initializes the plugin for the rest of the process: last.
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
        QVERIFY(fw && fw->setContents(QString::fromUtf8(formText())));
        const QString saved = fw->contents();
        QVERIFY2(!saved.contains("UserMode"_L1), qPrintable(saved));
        const auto fields = fw->mainContainer()->findChildren<Velmora *>();
        QCOMPARE(fields.size(), 3);
        for (Velmora *f : fields)
            QVERIFY2(inDesignMode(f), qPrintable(f->objectName()));

        const std::unique_ptr<QWidget> before = load(formText()), after = load(saved.toUtf8());
        QVERIFY(before && after);
        const QMetaObject &meta = Velmora::staticMetaObject;
        for (const auto *f : before->findChildren<Velmora *>()) {
            const auto *g = after->findChild<Velmora *>(f->objectName());
            QVERIFY2(g, qPrintable(f->objectName()));
            for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
                if (const QMetaProperty p = meta.property(i);
                    p.isWritable() && !QByteArray(p.typeName()).endsWith('*'))
                    QVERIFY2(p.read(f) == p.read(g), p.name());
        }
        QCOMPARE(after->findChild<Velmora *>(u"code"_s)->MaxLength(), qint16(7));
        delete core;
#endif
    }
};

VELMORA_TEST(TestDesigner)
#include "tst_designer.moc"
