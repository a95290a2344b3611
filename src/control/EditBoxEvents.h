#pragma once

// The filter of the edit box's events: keys, input-method text, focus and mouse go to
// the field's private side, which decides what reaches the QLineEdit itself.

#include <QtCore/QObject>

namespace velmora {
class VelmoraPrivate;
}

namespace velmora::detail {

class EditBoxEvents final : public QObject
{
public:
    explicit EditBoxEvents(VelmoraPrivate &field) : m_field(field) { }

    // Hands an event to the edit box itself, past this filter.
    void passOn(QEvent *event);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    VelmoraPrivate &m_field;
    bool m_passing = false;
};

} // namespace velmora::detail
