#pragma once

#include <velmora/Global.h>

#include <QtCore/QObject>
#include <QtGui/QFont>

/// @file
/// The font object of a field's text and of its list.

namespace velmora {

/// A font object that reports which attribute changed, so that a field that shows
/// text in it follows each change. A field keeps a reference to the font object it is
/// given (Velmora::setFont, Velmora::setListFont) and follows it from then on.
///
/// Every setter raises FontChanged once, and only when the value really changes. A new
/// object takes the attributes of the application's default QFont.
class VELMORA_EXPORT FieldFont : public QObject
{
    Q_OBJECT
    /// The font family ("DejaVu Sans"); any text is taken.
    Q_PROPERTY(QString Name READ Name WRITE setName)
    /// The point size, kept to four decimal places and at most 2048; a size that is not
    /// a positive finite number is ignored. 9 when a font has no point size.
    Q_PROPERTY(double Size READ Size WRITE setSize)
    /// Whether the weight is bold (700 or more). Setting it sets Weight to 700 or 400.
    Q_PROPERTY(bool Bold READ Bold WRITE setBold)
    /// Whether the font is italic.
    Q_PROPERTY(bool Italic READ Italic WRITE setItalic)
    /// Whether the text is underlined.
    Q_PROPERTY(bool Underline READ Underline WRITE setUnderline)
    /// Whether the text is struck through.
    Q_PROPERTY(bool Strikethrough READ Strikethrough WRITE setStrikethrough)
    /// The weight from 1 to 1000 (100 thin, 400 normal, 700 bold, 900 black); values
    /// outside are clamped into that range.
    Q_PROPERTY(qint16 Weight READ Weight WRITE setWeight)
    /// The legacy character-set code, kept and saved but not applied: Qt's fonts are
    /// Unicode. 238 (Central European) by default.
    Q_PROPERTY(qint16 Charset READ Charset WRITE setCharset)

public:
    /// A font object with the attributes of the application's default font.
    explicit FieldFont(QObject *parent = nullptr);
    /// A font object with the attributes of @p font (see assign()).
    explicit FieldFont(const QFont &font, QObject *parent = nullptr);

    /// @{
    /// Reads and sets #Name.
    QString Name() const { return m_name; }
    void setName(const QString &name);
    /// @}
    /// @{
    /// Reads and sets #Size, the point size kept to four decimal places.
    double Size() const { return m_size; }
    void setSize(double size);
    /// @}
    /// @{
    /// Reads and sets #Bold; bold is a weight of 700 or more.
    bool Bold() const { return m_weight >= 700; }
    void setBold(bool bold);
    /// @}
    /// @{
    /// Reads and sets #Italic.
    bool Italic() const { return m_italic; }
    void setItalic(bool italic);
    /// @}
    /// @{
    /// Reads and sets #Underline.
    bool Underline() const { return m_underline; }
    void setUnderline(bool underline);
    /// @}
    /// @{
    /// Reads and sets #Strikethrough.
    bool Strikethrough() const { return m_strikethrough; }
    void setStrikethrough(bool strikethrough);
    /// @}
    /// @{
    /// Reads and sets #Weight: 100 (thin) to 900 (black); 400 normal, 700 bold.
    qint16 Weight() const { return m_weight; }
    void setWeight(qint16 weight);
    /// @}
    /// @{
    /// Reads and sets #Charset.
    qint16 Charset() const { return m_charset; }
    void setCharset(qint16 charset);
    /// @}

    /// Copies every attribute of @p source, one at a time in the fixed order Bold,
    /// Charset, Italic, Name, Size, Strikethrough, Underline, Weight (one notification
    /// each, for the attributes that change).
    void copyFrom(const FieldFont &source);
    /// Takes the family, point size (9 when the font has none), weight, italic,
    /// underline and strike-out of a QFont. The character set is kept.
    void assign(const QFont &font);
    /// A QFont: @p base with every attribute of this object applied.
    QFont toQFont(const QFont &base = QFont()) const;
    /// Applies one attribute of @p from to @p to, named as FontChanged names it in any
    /// case ("Bold" and "Weight" both apply the weight); an empty name applies all of
    /// them. Charset has no counterpart in a QFont and an unknown name changes nothing.
    static void applyAttribute(const FieldFont &from, QFont &to, const QString &attribute);

Q_SIGNALS:
    /// An attribute changed; @p attribute is its name ("Bold", "Size", ...). setBold
    /// reports "Bold" though it changes the weight.
    void FontChanged(const QString &attribute);

private:
    QString m_name;
    double m_size = 9;
    bool m_italic = false;
    bool m_underline = false;
    bool m_strikethrough = false;
    qint16 m_weight = 400;
    qint16 m_charset = 238; // Central European
};

} // namespace velmora
