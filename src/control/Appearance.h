#pragma once

// The look of a field's inner controls: frame, colours, fonts, alignment and the
// placement of the edit box, label, list button and cross line for each display mode.

#include <velmora/FieldFont.h>
#include <velmora/Types.h>

#include <QtCore/QPointer>
#include <QtGui/QPalette>

#include <functional>

class QFrame;
class QLabel;
class QLineEdit;
class QToolButton;
class QWidget;

namespace velmora::detail {

class Appearance
{
public:
    // Creates the frame and the cross line on the field and styles the other controls.
    void setup(QWidget *field, QLineEdit *edit, QLabel *label, QToolButton *listButton);

    void layout(bool withListButton);
    void applyDisplayState(DisplMode mode, bool visibleByLabel, bool withListButton);
    // The focus highlight while a changeable field has the focus, else the normal colour.
    void setHighlight(bool on);

    quint32 backColor = 0x80000005u, foreColor = 0x80000008u;
    quint32 oriBC = 0x80000005u; // the normal back colour, restored on leaving
    AlignConst alignment = vbLeftJustify;
    SpecialEffectConst specialEffect = fmSpecialEffectSunken;
    void applyColors();

    // The font objects: the host's while it lives, else the field's own copy, which
    // follows every attribute of the host's object so that nothing changes when the
    // host's object goes away.
    FieldFont *textFont() { return m_textFont ? m_textFont.data() : &m_ownTextFont; }
    FieldFont *listFont() { return m_listFont ? m_listFont.data() : &m_ownListFont; }
    void followTextFont(FieldFont *font);
    void followListFont(FieldFont *font);
    // Copies the attributes into the font object the field follows, whose other
    // followers hear each attribute, and applies them to the field's controls once.
    void takeTextFont(const FieldFont &from);
    void takeListFont(const FieldFont &from);

    static QColor toQColor(quint32 color, QPalette::ColorRole systemRole);
    // Called after the list font changed (another object, or an attribute of it).
    std::function<void()> listFontChanged;

private:
    void applyTextFont(const QString &attribute);

    QWidget *m_field = nullptr;
    QLineEdit *m_edit = nullptr;
    QLabel *m_label = nullptr;
    QToolButton *m_listButton = nullptr;
    QFrame *m_frame = nullptr;
    QWidget *m_cross = nullptr;
    FieldFont m_ownTextFont, m_ownListFont;
    QPointer<FieldFont> m_textFont, m_listFont;
    QMetaObject::Connection m_textConnection, m_listConnection;
};

} // namespace velmora::detail
