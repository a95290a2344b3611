#include <velmora/FieldFont.h>

#include <cmath>

namespace velmora {

FieldFont::FieldFont(QObject *parent) : QObject(parent)
{
    assign(QFont());
}

FieldFont::FieldFont(const QFont &font, QObject *parent) : QObject(parent)
{
    assign(font);
}

void FieldFont::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    Q_EMIT FontChanged(QStringLiteral("Name"));
}

void FieldFont::setSize(double size)
{
    if (!std::isfinite(size) || size <= 0)
        return; // a font has a positive size; anything else is ignored
    size = std::round(qMin(size, 2048.0) * 10000) / 10000;
    if (m_size == size)
        return;
    m_size = size;
    Q_EMIT FontChanged(QStringLiteral("Size"));
}

void FieldFont::setBold(bool bold)
{
    if (Bold() == bold)
        return;
    m_weight = bold ? 700 : 400;
    Q_EMIT FontChanged(QStringLiteral("Bold"));
}

void FieldFont::setItalic(bool italic)
{
    if (m_italic == italic)
        return;
    m_italic = italic;
    Q_EMIT FontChanged(QStringLiteral("Italic"));
}

void FieldFont::setUnderline(bool underline)
{
    if (m_underline == underline)
        return;
    m_underline = underline;
    Q_EMIT FontChanged(QStringLiteral("Underline"));
}

void FieldFont::setStrikethrough(bool strikethrough)
{
    if (m_strikethrough == strikethrough)
        return;
    m_strikethrough = strikethrough;
    Q_EMIT FontChanged(QStringLiteral("Strikethrough"));
}

void FieldFont::setWeight(qint16 weight)
{
    weight = qint16(qBound(1, int(weight), 1000));
    if (m_weight == weight)
        return;
    m_weight = weight;
    Q_EMIT FontChanged(QStringLiteral("Weight"));
}

void FieldFont::setCharset(qint16 charset)
{
    if (m_charset == charset)
        return;
    m_charset = charset;
    Q_EMIT FontChanged(QStringLiteral("Charset"));
}

void FieldFont::copyFrom(const FieldFont &source)
{
    setBold(source.Bold());
    setCharset(source.Charset());
    setItalic(source.Italic());
    setName(source.Name());
    setSize(source.Size());
    setStrikethrough(source.Strikethrough());
    setUnderline(source.Underline());
    setWeight(source.Weight());
}

void FieldFont::assign(const QFont &font)
{
    setName(font.family());
    setSize(font.pointSizeF() > 0 ? font.pointSizeF() : 9.0);
    setWeight(qint16(font.weight()));
    setItalic(font.italic());
    setUnderline(font.underline());
    setStrikethrough(font.strikeOut());
}

QFont FieldFont::toQFont(const QFont &base) const
{
    QFont f = base;
    applyAttribute(*this, f, QString());
    return f;
}

void FieldFont::applyAttribute(const FieldFont &from, QFont &to, const QString &attribute)
{
    const QString a = attribute.toUpper();
    const bool all = a.isEmpty();
    if (all || a == QLatin1String("NAME"))
        to.setFamily(from.Name());
    if (all || a == QLatin1String("SIZE"))
        to.setPointSizeF(from.Size());
    if (all || a == QLatin1String("BOLD") || a == QLatin1String("WEIGHT"))
        to.setWeight(QFont::Weight(qBound(1, int(from.Weight()), 1000)));
    if (all || a == QLatin1String("ITALIC"))
        to.setItalic(from.Italic());
    if (all || a == QLatin1String("UNDERLINE"))
        to.setUnderline(from.Underline());
    if (all || a == QLatin1String("STRIKETHROUGH"))
        to.setStrikeOut(from.Strikethrough());
    // The character set has no counterpart in Qt's Unicode fonts.
}

} // namespace velmora
