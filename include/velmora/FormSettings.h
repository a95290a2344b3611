#pragma once

#include <velmora/Global.h>

#include <QtCore/QByteArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QMap>
#include <QtCore/QStringList>

class QWidget;

/// @file
/// Saving and loading the settings of every field of a form as one JSON document.

namespace velmora {

/// What saving or loading the fields of a form did. Names are objectNames.
struct VELMORA_EXPORT FormSettingsReport
{
    /// Fields whose settings were loaded.
    QStringList loaded;
    /// Entries of the document that no field of the form carries the name of.
    QStringList withoutField;
    /// Fields of the form that the document has no entry for; they keep their settings.
    QStringList withoutEntry;
    /// Per field, what its bag passed over (wrong types, values out of range, cut texts),
    /// and an entry that is no object.
    QMap<QString, QStringList> ignored;
    /// Fields without an objectName: neither saved nor loaded. Counted, as they have no
    /// name to list.
    int unnamed = 0;
    /// Names carried by more than one field: the first field in the form's tree order
    /// takes the entry, the others are neither saved nor loaded.
    QStringList duplicates;
    /// Set when the document is not a JSON object; nothing is loaded then.
    QString parseError;

    /// True unless the document could not be read (parseError is empty).
    bool ok() const { return parseError.isEmpty(); }
};

/// The settings of every field under @p form (children at any depth) as one JSON object
/// with an entry per field, keyed by objectName; the entry is the field's
/// JsonPropertyBag (Velmora::WriteProperties). @p report, when given, receives the
/// unnamed and duplicated fields.
VELMORA_EXPORT QJsonDocument saveFormSettings(const QWidget *form,
                                              FormSettingsReport *report = nullptr);

/// Loads each field under @p form from the entry of its objectName
/// (Velmora::ReadProperties) in the JSON text @p json, and says what it did.
VELMORA_EXPORT FormSettingsReport loadFormSettings(QWidget *form, const QByteArray &json);
/// Loads each field under @p form from the entry of its objectName in @p document.
VELMORA_EXPORT FormSettingsReport loadFormSettings(QWidget *form, const QJsonDocument &document);

} // namespace velmora
