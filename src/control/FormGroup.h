#pragma once

// The form a field belongs to and the fields of a form (FormGroup.cpp says the rule).

#include <QtCore/QList>

class QWidget;
struct QMetaObject;

namespace velmora {
class Velmora;
}

namespace velmora::detail {

// The form of the widget; null for a widget without a form around it.
QWidget *hostForm(const QWidget *widget);
// The fields of exactly this class on the form, not those of forms nested in it, in the
// order they were created.
QList<Velmora *> formFields(const QWidget *form, const QMetaObject *type);

} // namespace velmora::detail
