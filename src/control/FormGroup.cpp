// The operations a field runs over the fields of its group on its form.
//
// The form of a field is its nearest ancestor that is a window, that carries the
// dynamic property "VelmoraForm" set to true, or that is an instance of one of the
// application's own widget classes (a class whose name does not follow Qt's own
// "Q" + capital letter pattern) and does not carry "VelmoraForm" set to false. Group
// boxes, tab pages, stacked pages, splitters and scroll areas are Qt's own classes, so
// the fields inside them belong to the form around them; two forms of the
// application's classes embedded in one window each keep their own fields. A form
// loaded from a .ui file at run time is a plain QWidget: mark it with "VelmoraForm".
//
// The members are taken afresh at every call, in the order the fields were created.

#include "FormGroup.h"
#include "Velmora_p.h"

#include <QtCore/QPointer>

#include <algorithm>
#include <optional>

namespace velmora {

using namespace detail;

namespace detail {

namespace {

bool isQtClass(const QMetaObject *meta)
{
    const char *name = meta->className();
    return name[0] == 'Q' && name[1] >= 'A' && name[1] <= 'Z';
}

bool isForm(const QWidget *w)
{
    if (w->isWindow())
        return true;
    const QVariant mark = w->property("VelmoraForm");
    if (mark.isValid())
        return mark.toBool();
    return !isQtClass(w->metaObject());
}

void collect(const QObject *parent, const QMetaObject *type, QList<Velmora *> &out)
{
    for (QObject *child : parent->children()) {
        if (!child->isWidgetType())
            continue;
        auto *w = static_cast<QWidget *>(child);
        if (auto *field = qobject_cast<Velmora *>(w)) {
            if (w->metaObject() == type)
                out.append(field);
            continue;
        }
        if (!isForm(w))
            collect(w, type, out);
    }
}

} // namespace

QWidget *hostForm(const QWidget *widget)
{
    for (QWidget *w = widget->parentWidget(); w; w = w->parentWidget())
        if (isForm(w))
            return w;
    return nullptr;
}

QList<Velmora *> formFields(const QWidget *form, const QMetaObject *type)
{
    QList<Velmora *> fields;
    collect(form, type, fields);
    std::stable_sort(fields.begin(), fields.end(), [](const Velmora *a, const Velmora *b) {
        return VelmoraPrivate::get(a)->serial < VelmoraPrivate::get(b)->serial;
    });
    return fields;
}

} // namespace detail

namespace {

// The fields of the caller's group, the caller included; guarded, since a member's
// handler may delete fields while the walk goes on.
QList<QPointer<Velmora>> groupOf(Velmora *caller)
{
    const QWidget *form = hostForm(caller);
    const QList<Velmora *> fields
        = form ? formFields(form, caller->metaObject()) : QList<Velmora *> {caller};
    QList<QPointer<Velmora>> members;
    const qint16 group = caller->Group();
    for (Velmora *field : fields)
        if (field->Group() == group)
            members.append(field);
    return members;
}

template<typename Action>
void forEachMember(Velmora *caller, Action action)
{
    for (const QPointer<Velmora> &member : groupOf(caller))
        if (member && !action(member.data()))
            return;
}

} // namespace

void Velmora::setFormCheckValues(bool on)
{
    forEachMember(this, [on](Velmora *m) {
        m->setCheckValues(on);
        return true;
    });
}

bool Velmora::FormChanged()
{
    bool changed = false;
    forEachMember(this, [&changed](Velmora *m) {
        changed = m->Changed();
        return !changed;
    });
    return changed;
}

void Velmora::setFormChanged(bool changed)
{
    forEachMember(this, [changed](Velmora *m) {
        m->setChanged(changed);
        return true;
    });
}

bool Velmora::DoValidateAll()
{
    bool passed = true;
    forEachMember(this, [&passed](Velmora *m) {
        if (m->DisplayMode() == dmChangeable)
            passed = m->DoValidate();
        return passed;
    });
    return passed;
}

QVariant Velmora::ControlAll()
{
    QPointer<Velmora> failed;
    qint16 code = 0;
    forEachMember(this, [&](Velmora *m) {
        code = m->VystupniKontrola(m->Value());
        if (code != 0 && m->DisplayMode() == dmChangeable)
            failed = m;
        return !failed;
    });
    if (!failed)
        return true;
    QString value = failed->Value();
    failed->VystupniKontrolaMsg(code, value);
    return false;
}

void Velmora::ClearAll()
{
    forEachMember(this, [](Velmora *m) {
        m->Clear();
        return true;
    });
}

void Velmora::ChangeConnectAll(QString &sConnect)
{
    d->set.sqlConnect = sConnect;
    const QString connect = sConnect; // a handler may change the caller's text
    forEachMember(this, [&connect](Velmora *m) {
        if (m->SQLConnect().isEmpty())
            m->setSQLConnect(connect);
        return true;
    });
}

void Velmora::InitListAll()
{
    // Every member with a list loads, also after one failed; the first failure is
    // then passed on.
    std::optional<DatabaseError> first;
    forEachMember(this, [&first](Velmora *m) {
        if (m->SetList()) {
            try {
                m->InitList();
            } catch (const DatabaseError &e) {
                if (!first)
                    first = e;
            }
        }
        return true;
    });
    if (first)
        throw *first;
}

} // namespace velmora
