#pragma once

#include <velmora/Global.h>

#include <QtCore/QJsonObject>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <memory>
#include <vector>

class QSettings;

/// @file
/// Property bags: where a field's settings are saved and loaded.

namespace velmora {

class FieldFont;

/// A keyed store of a field's saved properties, supplied by the form host
/// (Velmora::ReadProperties, Velmora::WriteProperties). The type of the default says
/// what a key holds: bool (a truth value), int (a 32-bit integer or an enumeration),
/// qint16, quint32 (a colour), QString (a text) or FieldFont * (a font). Keys are the
/// property names ("FormatStr", "Font", ...).
class VELMORA_EXPORT PropertyBag
{
public:
    virtual ~PropertyBag();

    /// The stored value of the key @p name, of the type of @p defaultValue, or the
    /// default when the key is missing or holds nothing usable.
    virtual QVariant ReadProperty(const QString &name, const QVariant &defaultValue) = 0;
    /// Stores @p value under @p name; a value equal to @p defaultValue is left out (and
    /// a stored one removed).
    virtual void WriteProperty(const QString &name, const QVariant &value,
                               const QVariant &defaultValue)
        = 0;
};

/// What the two bags below share: the checks a stored value passes before it is read,
/// and the list of what was ignored. A font read from a bag is an object the bag owns;
/// it lives as long as the bag.
class VELMORA_EXPORT CheckedPropertyBag : public PropertyBag
{
public:
    /// A bag that takes truth values and numbers only in their own types.
    CheckedPropertyBag();
    ~CheckedPropertyBag() override;

    /// What reading passed over, one human-readable line each ("Group: 40000 is outside
    /// -32768..32767"): values of the wrong type or out of range, which read as their
    /// default, and texts cut to 32767 characters. A missing or unknown key is no fault.
    QStringList ignored() const { return m_ignored; }

protected:
    /// @p textScalars: whether textual forms of truth values and numbers are taken
    /// ("true", "12"), as a store that keeps everything as text gives them back.
    explicit CheckedPropertyBag(bool textScalars);
    /// The @p stored value of key @p name checked against the type (and range) of
    /// @p defaultValue; the default, with a line in ignored(), when it fails.
    QVariant checked(const QString &name, const QVariant &stored, const QVariant &defaultValue);
    /// A new font owned by the bag: the attributes of @p base with the @p stored ones
    /// that pass the checks over them (the others are noted under @p name).
    FieldFont *readFont(const QString &name, const QVariantMap &stored, const FieldFont *base);
    /// Whether @p v holds a FieldFont pointer, the type of a font key's default.
    static bool isFont(const QVariant &v);
    /// Whether two fonts have equal attributes; two null pointers are the same font.
    static bool sameFont(const FieldFont *a, const FieldFont *b);
    /// The eight attributes of @p font by name (Name, Size, Bold, Italic, Underline,
    /// Strikethrough, Weight, Charset), as a bag stores them.
    static QVariantMap fontAttributes(const FieldFont &font);
    /// Adds the line "name: what" to ignored().
    void note(const QString &name, const QString &what);

private:
    QStringList m_ignored;
    std::vector<std::unique_ptr<FieldFont>> m_fonts;
    bool m_textScalars = false;
};

/// A bag on a JSON object: truth values as JSON booleans, numbers and colours as JSON
/// numbers, texts as strings, a font as a nested object with the members Name, Size,
/// Bold, Italic, Underline, Strikethrough, Weight and Charset.
class VELMORA_EXPORT JsonPropertyBag : public CheckedPropertyBag
{
public:
    /// A bag that reads @p object and writes into a copy of it.
    explicit JsonPropertyBag(const QJsonObject &object = {});

    /// The object with everything written so far.
    QJsonObject object() const { return m_object; }

    QVariant ReadProperty(const QString &name, const QVariant &defaultValue) override;
    void WriteProperty(const QString &name, const QVariant &value,
                       const QVariant &defaultValue) override;

private:
    QJsonObject m_object;
};

/// A bag on a QSettings under a group prefix ("" for the top level): a key is
/// "prefix/Name", a font a subgroup "prefix/Font" with one key per attribute. Stores that
/// give every value back as text (INI files) are read as well: "true"/"false" and whole
/// numbers in text form are taken.
class VELMORA_EXPORT SettingsPropertyBag : public CheckedPropertyBag
{
public:
    /// A bag on @p settings, which must outlive it, under @p prefix.
    SettingsPropertyBag(QSettings &settings, const QString &prefix = {});

    QVariant ReadProperty(const QString &name, const QVariant &defaultValue) override;
    void WriteProperty(const QString &name, const QVariant &value,
                       const QVariant &defaultValue) override;

private:
    QString key(const QString &name) const;

    QSettings &m_settings;
    QString m_prefix;
};

} // namespace velmora
