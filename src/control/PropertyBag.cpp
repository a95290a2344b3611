// The two property bags: one on a JSON object, one on QSettings. Every stored value is
// checked against the type of its default before a field sees it, so that a damaged
// saved set loads with defaults where it is damaged.

#include <velmora/FieldFont.h>
#include <velmora/PropertyBag.h>

#include <QtCore/QJsonValue>
#include <QtCore/QSettings>

#include <cmath>
#include <limits>
#include <optional>

namespace velmora {

namespace {

constexpr int MaxStoredText = 32767;

QString kindOf(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Bool:
        return QStringLiteral("a truth value");
    case QMetaType::QString:
        return QStringLiteral("a text");
    case QMetaType::QVariantMap:
        return QStringLiteral("an object");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QStringLiteral("a list");
    case QMetaType::Nullptr:
    case QMetaType::UnknownType:
        return QStringLiteral("null");
    default:
        return v.canConvert<double>() ? QStringLiteral("a number") : QStringLiteral("a value");
    }
}

bool isNumber(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

// A whole number held by a number (or, for a textual store, by a text). The double
// limits keep the conversion to qint64 defined; anything past them is out of every range.
std::optional<double> wholeNumber(const QVariant &v, bool textScalars, bool *fraction)
{
    double d;
    if (isNumber(v)) {
        d = v.toDouble();
    } else if (textScalars && v.typeId() == QMetaType::QString) {
        bool ok = false;
        d = v.toString().trimmed().toDouble(&ok);
        if (!ok)
            return std::nullopt;
    } else {
        return std::nullopt;
    }
    if (!std::isfinite(d))
        return std::nullopt;
    if (d != std::floor(d)) {
        *fraction = true;
        return std::nullopt;
    }
    return d;
}

std::optional<bool> truthValue(const QVariant &v, bool textScalars)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    if (textScalars && v.typeId() == QMetaType::QString) {
        const QString t = v.toString().trimmed();
        if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return false;
    }
    return std::nullopt;
}

QVariant jsonToVariant(const QJsonValue &v)
{
    // Numbers stay doubles: a whole-number check needs to see a fraction.
    return v.isDouble() ? QVariant(v.toDouble()) : v.toVariant();
}

const char *const FontAttributes[]
    = {"Name", "Size", "Bold", "Italic", "Underline", "Strikethrough", "Weight", "Charset"};

} // namespace

PropertyBag::~PropertyBag() = default;

CheckedPropertyBag::CheckedPropertyBag() = default;
CheckedPropertyBag::CheckedPropertyBag(bool textScalars) : m_textScalars(textScalars) { }
CheckedPropertyBag::~CheckedPropertyBag() = default;

void CheckedPropertyBag::note(const QString &name, const QString &what)
{
    m_ignored.append(name + QStringLiteral(": ") + what);
}

bool CheckedPropertyBag::isFont(const QVariant &v)
{
    return v.metaType() == QMetaType::fromType<FieldFont *>();
}

bool CheckedPropertyBag::sameFont(const FieldFont *a, const FieldFont *b)
{
    if (!a || !b)
        return a == b;
    return a->Name() == b->Name() && a->Size() == b->Size() && a->Italic() == b->Italic()
        && a->Underline() == b->Underline() && a->Strikethrough() == b->Strikethrough()
        && a->Weight() == b->Weight() && a->Charset() == b->Charset();
}

QVariantMap CheckedPropertyBag::fontAttributes(const FieldFont &f)
{
    return {{QStringLiteral("Name"), f.Name()},
            {QStringLiteral("Size"), f.Size()},
            {QStringLiteral("Bold"), f.Bold()},
            {QStringLiteral("Italic"), f.Italic()},
            {QStringLiteral("Underline"), f.Underline()},
            {QStringLiteral("Strikethrough"), f.Strikethrough()},
            {QStringLiteral("Weight"), int(f.Weight())},
            {QStringLiteral("Charset"), int(f.Charset())}};
}

QVariant CheckedPropertyBag::checked(const QString &name, const QVariant &stored,
                                     const QVariant &defaultValue)
{
    const auto ignore = [&](const QString &why) {
        note(name, why);
        return defaultValue;
    };
    const auto integer = [&](double lo, double hi, auto make) -> QVariant {
        bool fraction = false;
        const std::optional<double> n = wholeNumber(stored, m_textScalars, &fraction);
        if (!n)
            return ignore(
                fraction
                    ? QStringLiteral("%1 is not a whole number").arg(stored.toString().left(40))
                    : QStringLiteral("a whole number was expected, found %1").arg(kindOf(stored)));
        if (*n < lo || *n > hi)
            return ignore(QStringLiteral("%1 is outside %2..%3")
                              .arg(QString::number(*n, 'g', 17).left(40))
                              .arg(qint64(lo))
                              .arg(qint64(hi)));
        return make(*n);
    };
    switch (defaultValue.typeId()) {
    case QMetaType::Bool:
        if (const std::optional<bool> b = truthValue(stored, m_textScalars))
            return *b;
        return ignore(QStringLiteral("a truth value was expected, found %1").arg(kindOf(stored)));
    case QMetaType::Short:
        return integer(-32768, 32767, [](double n) { return QVariant::fromValue(qint16(n)); });
    case QMetaType::Int:
        return integer(std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(),
                       [](double n) { return QVariant(int(n)); });
    case QMetaType::UInt:
        // A colour may come signed from a store of 32-bit integers: the same 32 bits.
        return integer(std::numeric_limits<qint32>::min(), std::numeric_limits<quint32>::max(),
                       [](double n) { return QVariant(quint32(qint64(n))); });
    case QMetaType::Double:
        if (isNumber(stored) && std::isfinite(stored.toDouble()))
            return stored.toDouble();
        if (m_textScalars && stored.typeId() == QMetaType::QString) {
            bool ok = false;
            const double d = stored.toString().trimmed().toDouble(&ok);
            if (ok && std::isfinite(d))
                return d;
        }
        return ignore(QStringLiteral("a number was expected, found %1").arg(kindOf(stored)));
    case QMetaType::QString: {
        if (stored.typeId() != QMetaType::QString)
            return ignore(QStringLiteral("a text was expected, found %1").arg(kindOf(stored)));
        QString text = stored.toString();
        if (text.size() > MaxStoredText) {
            note(name,
                 QStringLiteral("a text of %1 characters was cut to %2")
                     .arg(text.size())
                     .arg(MaxStoredText));
            text.truncate(MaxStoredText);
            // A pair of surrogates is not split.
            if (text.back().isHighSurrogate())
                text.chop(1);
        }
        return text;
    }
    default:
        if (stored.metaType() == defaultValue.metaType())
            return stored;
        if (QVariant v = stored; v.convert(defaultValue.metaType()))
            return v;
        return ignore(QStringLiteral("%1 was expected, found %2")
                          .arg(QString::fromLatin1(defaultValue.typeName()), kindOf(stored)));
    }
}

FieldFont *CheckedPropertyBag::readFont(const QString &name, const QVariantMap &stored,
                                        const FieldFont *base)
{
    auto font = std::make_unique<FieldFont>();
    if (base)
        font->copyFrom(*base);
    const auto attribute = [&](const char *key, const QVariant &fallback) {
        const QString k = QString::fromLatin1(key);
        const auto it = stored.constFind(k);
        return it == stored.constEnd() ? fallback
                                       : checked(name + QLatin1Char('.') + k, *it, fallback);
    };
    // Bold before Weight: a stored weight is the finer of the two.
    font->setBold(attribute("Bold", font->Bold()).toBool());
    font->setWeight(attribute("Weight", QVariant::fromValue(font->Weight())).value<qint16>());
    font->setName(attribute("Name", font->Name()).toString());
    const QVariant size = attribute("Size", font->Size());
    if (size.toDouble() > 0 && std::isfinite(size.toDouble()))
        font->setSize(size.toDouble());
    else
        note(name + QStringLiteral(".Size"), QStringLiteral("a font size is a positive number"));
    font->setItalic(attribute("Italic", font->Italic()).toBool());
    font->setUnderline(attribute("Underline", font->Underline()).toBool());
    font->setStrikethrough(attribute("Strikethrough", font->Strikethrough()).toBool());
    font->setCharset(attribute("Charset", QVariant::fromValue(font->Charset())).value<qint16>());
    m_fonts.push_back(std::move(font));
    return m_fonts.back().get();
}

// --- JSON ----------------------------------------------------------------------------

JsonPropertyBag::JsonPropertyBag(const QJsonObject &object) : m_object(object) { }

QVariant JsonPropertyBag::ReadProperty(const QString &name, const QVariant &defaultValue)
{
    const auto it = m_object.constFind(name);
    if (it == m_object.constEnd())
        return defaultValue;
    const QJsonValue v = *it;
    if (isFont(defaultValue)) {
        if (!v.isObject()) {
            note(name,
                 QStringLiteral("a font object was expected, found %1")
                     .arg(kindOf(jsonToVariant(v))));
            return defaultValue;
        }
        QVariantMap attributes;
        const QJsonObject o = v.toObject();
        for (auto a = o.begin(); a != o.end(); ++a)
            attributes.insert(a.key(), jsonToVariant(a.value()));
        return QVariant::fromValue(readFont(name, attributes, defaultValue.value<FieldFont *>()));
    }
    return checked(name, jsonToVariant(v), defaultValue);
}

void JsonPropertyBag::WriteProperty(const QString &name, const QVariant &value,
                                    const QVariant &defaultValue)
{
    if (isFont(value)) {
        const FieldFont *f = value.value<FieldFont *>();
        if (!f || (isFont(defaultValue) && sameFont(f, defaultValue.value<FieldFont *>())))
            m_object.remove(name);
        else
            m_object.insert(name, QJsonObject::fromVariantMap(fontAttributes(*f)));
        return;
    }
    if (value == defaultValue)
        m_object.remove(name);
    else
        m_object.insert(name, QJsonValue::fromVariant(value));
}

// --- QSettings -----------------------------------------------------------------------

SettingsPropertyBag::SettingsPropertyBag(QSettings &settings, const QString &prefix)
    : CheckedPropertyBag(true), m_settings(settings), m_prefix(prefix)
{ }

QString SettingsPropertyBag::key(const QString &name) const
{
    return m_prefix.isEmpty() ? name : m_prefix + QLatin1Char('/') + name;
}

QVariant SettingsPropertyBag::ReadProperty(const QString &name, const QVariant &defaultValue)
{
    const QString k = key(name);
    if (isFont(defaultValue)) {
        if (m_settings.contains(k)) {
            note(name,
                 QStringLiteral("a font group was expected, found %1")
                     .arg(kindOf(m_settings.value(k))));
            return defaultValue;
        }
        QVariantMap attributes;
        for (const char *a : FontAttributes) {
            const QString ak = k + QLatin1Char('/') + QLatin1String(a);
            if (m_settings.contains(ak))
                attributes.insert(QLatin1String(a), m_settings.value(ak));
        }
        if (attributes.isEmpty())
            return defaultValue;
        return QVariant::fromValue(readFont(name, attributes, defaultValue.value<FieldFont *>()));
    }
    if (!m_settings.contains(k))
        return defaultValue;
    return checked(name, m_settings.value(k), defaultValue);
}

void SettingsPropertyBag::WriteProperty(const QString &name, const QVariant &value,
                                        const QVariant &defaultValue)
{
    const QString k = key(name);
    if (isFont(value)) {
        m_settings.remove(k);
        const FieldFont *f = value.value<FieldFont *>();
        if (!f || (isFont(defaultValue) && sameFont(f, defaultValue.value<FieldFont *>())))
            return;
        const QVariantMap attributes = fontAttributes(*f);
        for (auto a = attributes.begin(); a != attributes.end(); ++a)
            m_settings.setValue(k + QLatin1Char('/') + a.key(), a.value());
        return;
    }
    if (value == defaultValue)
        m_settings.remove(k);
    else
        m_settings.setValue(k, value);
}

} // namespace velmora
