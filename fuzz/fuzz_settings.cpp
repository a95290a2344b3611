// libFuzzer entry: arbitrary bytes as the saved settings of a small form of fields. Loading
// must not crash or hang, and what the form then saves must load back with nothing
// ignored and save the same again; a broken check prints what broke and aborts.

#include <velmora/FormSettings.h>
#include <velmora/Velmora.h>

#include <QtCore/QJsonObject>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>

namespace {

QWidget *form = nullptr;

// Three named fields, one of them on a nested panel, and one without a name.
void makeForm()
{
    form = new QWidget;
    auto *panel = new QWidget(form);
    for (const char *name : {"a", "b"})
        (new velmora::Velmora(form))->setObjectName(QString::fromLatin1(name));
    (new velmora::Velmora(panel))->setObjectName(QStringLiteral("c"));
    new velmora::Velmora(panel);
}

void fail(const char *what, const QByteArray &detail)
{
    std::fprintf(stderr, "%s\n%s\n", what, detail.constData());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication app(*argc, *argv);
    makeForm();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace velmora;
    const QByteArray json
        = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const FormSettingsReport first = loadFormSettings(form, json);
    if (first.ok()) {
        // Every named field is loaded, has no entry, or has an entry that is no object.
        for (const char *name : {"a", "b", "c"}) {
            const QString n = QString::fromLatin1(name);
            if (!first.loaded.contains(n) && !first.withoutEntry.contains(n)
                && !first.ignored.contains(n))
                fail("a named field is neither loaded nor reported", json);
        }
        if (first.unnamed != 1)
            fail("the unnamed field is not counted", json);
    }
    const QJsonDocument saved = saveFormSettings(form);
    const FormSettingsReport again = loadFormSettings(form, saved);
    if (!again.ok() || again.loaded.size() != 3 || !again.ignored.isEmpty())
        fail("saved settings do not load back cleanly", saved.toJson());
    if (saveFormSettings(form) != saved)
        fail("saved settings change when loaded and saved again", saved.toJson());
    return 0;
}
