// The settings of all fields of a form in one JSON document, one entry per field.

#include <velmora/FormSettings.h>
#include <velmora/PropertyBag.h>
#include <velmora/Velmora.h>

#include <QtCore/QHash>
#include <QtCore/QJsonObject>

namespace velmora {

namespace {

// The fields under the form that own their name: the first one in tree order; the
// others and the unnamed ones are counted in the report.
QList<Velmora *> namedFields(const QWidget *form, FormSettingsReport &report)
{
    QList<Velmora *> fields;
    QHash<QString, bool> seen;
    if (!form)
        return fields;
    for (Velmora *f : form->findChildren<Velmora *>()) {
        const QString name = f->objectName();
        if (name.isEmpty()) {
            ++report.unnamed;
            continue;
        }
        auto it = seen.find(name);
        if (it != seen.end()) {
            if (!*it)
                report.duplicates.append(name);
            *it = true;
            continue;
        }
        seen.insert(name, false);
        fields.append(f);
    }
    return fields;
}

} // namespace

QJsonDocument saveFormSettings(const QWidget *form, FormSettingsReport *report)
{
    FormSettingsReport local;
    FormSettingsReport &r = report ? *report : local;
    QJsonObject all;
    for (Velmora *f : namedFields(form, r)) {
        JsonPropertyBag bag;
        f->WriteProperties(bag);
        all.insert(f->objectName(), bag.object());
    }
    return QJsonDocument(all);
}

FormSettingsReport loadFormSettings(QWidget *form, const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        FormSettingsReport r;
        r.parseError = QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset);
        return r;
    }
    return loadFormSettings(form, document);
}

FormSettingsReport loadFormSettings(QWidget *form, const QJsonDocument &document)
{
    FormSettingsReport r;
    if (!document.isObject()) {
        r.parseError = QStringLiteral("the document is not a JSON object");
        return r;
    }
    const QJsonObject all = document.object();
    QHash<QString, bool> used;
    for (Velmora *f : namedFields(form, r)) {
        const QString name = f->objectName();
        const auto entry = all.constFind(name);
        if (entry == all.constEnd()) {
            r.withoutEntry.append(name);
            continue;
        }
        used.insert(name, true);
        if (!entry->isObject()) {
            r.ignored[name].append(QStringLiteral("the entry is not an object; nothing loaded"));
            continue;
        }
        JsonPropertyBag bag(entry->toObject());
        f->ReadProperties(bag);
        r.loaded.append(name);
        if (!bag.ignored().isEmpty())
            r.ignored.insert(name, bag.ignored());
    }
    for (auto it = all.begin(); it != all.end(); ++it)
        if (!used.contains(it.key()))
            r.withoutField.append(it.key());
    return r;
}

} // namespace velmora
