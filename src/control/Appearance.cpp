#include "Appearance.h"

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>

namespace velmora::detail {

namespace {

// Draws the cross line over a field shown crossed out.
class CrossLine final : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setPen(QPen(palette().color(QPalette::WindowText), 1));
        p.drawLine(rect().topLeft(), rect().bottomRight());
        p.drawLine(rect().bottomLeft(), rect().topRight());
    }
};

// The field's own copy takes every attribute without telling anybody.
void copySilently(FieldFont &to, const FieldFont &from)
{
    const QSignalBlocker quiet(&to);
    to.copyFrom(from);
}

} // namespace

void Appearance::setup(QWidget *field, QLineEdit *edit, QLabel *label, QToolButton *listButton)
{
    m_field = field;
    m_edit = edit;
    m_label = label;
    m_listButton = listButton;

    m_frame = new QFrame(field);
    m_frame->setObjectName(QStringLiteral("imgFrame"));
    m_frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    m_frame->lower();

    m_cross = new CrossLine(field);
    m_cross->setObjectName(QStringLiteral("shpMriz"));
    m_cross->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_cross->hide();

    m_ownTextFont.assign(edit->font());
    m_ownListFont.assign(label->font());
    followTextFont(nullptr);
    followListFont(nullptr);
    oriBC = backColor;
    applyColors();
}

void Appearance::followTextFont(FieldFont *font)
{
    QObject::disconnect(m_textConnection);
    m_textFont = font;
    if (font)
        copySilently(m_ownTextFont, *font);
    FieldFont *f = textFont();
    m_edit->setFont(f->toQFont(m_edit->font()));
    m_label->setFont(f->toQFont(m_label->font()));
    m_textConnection
        = QObject::connect(f, &FieldFont::FontChanged, m_field,
                           [this](const QString &attribute) { applyTextFont(attribute); });
}

void Appearance::applyTextFont(const QString &attribute)
{
    FieldFont *f = textFont();
    if (f != &m_ownTextFont)
        copySilently(m_ownTextFont, *f);
    QFont e = m_edit->font();
    FieldFont::applyAttribute(*f, e, attribute);
    m_edit->setFont(e);
    QFont l = m_label->font();
    FieldFont::applyAttribute(*f, l, attribute);
    m_label->setFont(l);
}

void Appearance::followListFont(FieldFont *font)
{
    QObject::disconnect(m_listConnection);
    m_listFont = font;
    if (font)
        copySilently(m_ownListFont, *font);
    m_listConnection = QObject::connect(listFont(), &FieldFont::FontChanged, m_field, [this] {
        if (m_listFont)
            copySilently(m_ownListFont, *m_listFont);
        if (listFontChanged)
            listFontChanged();
    });
}

void Appearance::takeTextFont(const FieldFont &from)
{
    QObject::disconnect(m_textConnection);
    textFont()->copyFrom(from);
    followTextFont(m_textFont);
}

void Appearance::takeListFont(const FieldFont &from)
{
    QObject::disconnect(m_listConnection);
    listFont()->copyFrom(from);
    followListFont(m_listFont);
    if (listFontChanged)
        listFontChanged();
}

void Appearance::layout(bool withListButton)
{
    const QRect r = m_field->rect();
    m_frame->setGeometry(r);
    const int frame = specialEffect == fmSpecialEffectFlat ? 1 : 2;
    QRect inner = r.adjusted(frame, frame, -frame, -frame);
    if (withListButton) {
        const int w = qMin(inner.height() + 2, inner.width() / 2);
        m_listButton->setGeometry(inner.right() - w + 1, inner.top(), w, inner.height());
        inner.setRight(inner.right() - w);
    }
    m_edit->setGeometry(inner);
    m_label->setGeometry(inner);
    m_cross->setGeometry(inner);
}

void Appearance::applyDisplayState(DisplMode mode, bool visibleByLabel, bool withListButton)
{
    // Changeable and landable fields edit in the box; a visible field shows its value,
    // in the label when VisibleByLbl is set; an invisible one shows nothing; a crossed
    // out one shows its value struck through.
    const bool editing = mode == dmChangeable || mode == dmLandable;
    const bool useLabel = (mode == dmVisible || mode == dmCrossline) && visibleByLabel;
    m_edit->setVisible(mode != dmInvisible && !useLabel);
    m_edit->setReadOnly(!editing);
    m_label->setVisible(useLabel);
    m_cross->setVisible(mode == dmCrossline);
    m_cross->raise();
    m_listButton->setVisible(withListButton && mode != dmInvisible);
    m_listButton->setEnabled(editing);
    m_frame->setVisible(mode != dmInvisible);
    switch (specialEffect) {
    case fmSpecialEffectFlat:
        m_frame->setFrameStyle(QFrame::Box | QFrame::Plain);
        break;
    case fmSpecialEffectRaised:
        m_frame->setFrameStyle(QFrame::Panel | QFrame::Raised);
        break;
    case fmSpecialEffectEtchel:
        m_frame->setFrameStyle(QFrame::Box | QFrame::Sunken);
        break;
    case fmSpecialEffectBump:
        m_frame->setFrameStyle(QFrame::Box | QFrame::Raised);
        break;
    default:
        m_frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        break;
    }
    const Qt::Alignment a = alignment == vbCenter ? Qt::AlignHCenter
        : alignment == vbRightJustify             ? Qt::AlignRight
                                                  : Qt::AlignLeft;
    m_edit->setAlignment(a | Qt::AlignVCenter);
    m_label->setAlignment(a | Qt::AlignVCenter);
    layout(withListButton);
}

void Appearance::setHighlight(bool on)
{
    backColor = on ? FocusHighlightColor : oriBC;
    applyColors();
}

QColor Appearance::toQColor(quint32 color, QPalette::ColorRole systemRole)
{
    if (color & SystemColorBit) {
        // System colours map onto the palette roles that play the same part.
        switch (color & 0xFFu) {
        case 5:
            return QApplication::palette().color(QPalette::Base);
        case 8:
            return QApplication::palette().color(QPalette::Text);
        case 15:
            return QApplication::palette().color(QPalette::Button);
        case 18:
            return QApplication::palette().color(QPalette::ButtonText);
        case 13:
            return QApplication::palette().color(QPalette::Highlight);
        case 14:
            return QApplication::palette().color(QPalette::HighlightedText);
        case 17:
            return QApplication::palette().color(QPalette::PlaceholderText);
        default:
            return QApplication::palette().color(systemRole);
        }
    }
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}

void Appearance::applyColors()
{
    QPalette p = m_edit->palette();
    p.setColor(QPalette::Base, toQColor(backColor, QPalette::Base));
    p.setColor(QPalette::Text, toQColor(foreColor, QPalette::Text));
    m_edit->setPalette(p);
    QPalette l = m_label->palette();
    l.setColor(QPalette::WindowText, toQColor(foreColor, QPalette::WindowText));
    m_label->setPalette(l);
}

} // namespace velmora::detail
