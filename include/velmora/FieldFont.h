#pragma once

#include <velmora/Global.h>

#include <QtCore/QObject>
#include <QtGui/QFont>

namespace velmora {

// A font object that reports which attribute changed, so that a field that shows
// text in it follows each change. A field keeps a reference to the font object it is
// given and follows it from then on.
class VELMORA_EXPORT FieldFont : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE setName)
    Q_PROPERTY(double Size READ Size WRITE setSize)
    Q_PROPERTY(bool Bold READ Bold WRITE setBold)
    Q_PROPERTY(bool Italic READ Italic WRITE setItalic)
    Q_PROPERTY(bool Underline READ Underline WRITE setUnderline)
    Q_PROPERTY(bool Strikethrough READ Strikethrough WRITE setStrikethrough)
    Q_PROPERTY(qint16 Weight READ Weight WRITE setWeight)
    Q_PROPERTY(qint16 Charset READ Charset WRITE setCharset)

public:
    explicit FieldFont(QObject *parent = nullptr);
    explicit FieldFont(const QFont &font, QObject *parent = nullptr);

    QString Name() const { return m_name; }
    void setName(const QString &name);
    // Point size, kept to four decimal places.
    double Size() const { return m_size; }
    void setSize(double size);
    bool Bold() const { return m_weight >= 700; }
    void setBold(bool bold);
    bool Italic() const { return m_italic; }
    void setItalic(bool italic);
    bool Underline() const { return m_underline; }
    void setUnderline(bool underline);
    bool Strikethrough() const { return m_strikethrough; }
    void setStrikethrough(bool strikethrough);
    // 100 (thin) to 900 (black); 400 normal, 700 bold.
    qint16 Weight() const { return m_weight; }
    void setWeight(qint16 weight);
    qint16 Charset() const { return m_charset; }
    void setCharset(qint16 charset);

    // Copies every attribute of source, one at a time in the fixed order Bold, Charset,
    // Italic, Name, Size, Strikethrough, Underline, Weight (one notification each).
    void copyFrom(const FieldFont &source);
    // Takes the attributes of a QFont / applies one attribute (or all) to a QFont.
    void assign(const QFont &font);
    QFont toQFont(const QFont &base = QFont()) const;
    static void applyAttribute(const FieldFont &from, QFont &to, const QString &attribute);

Q_SIGNALS:
    // The name of the attribute that changed ("Bold", "Size", ...).
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
