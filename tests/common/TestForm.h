#pragma once

// A shown form holding a field between two line edits, on a test platform: for tests
// that type into the field, click it and watch where the focus goes.

#include "common/TestPlatform.h"

#include <velmora/Velmora.h>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

#include <functional>

namespace velmora::test {

// Sets up a field; table rows carry one.
using Setup = std::function<void(Velmora *)>;

// One property: set(&Velmora::setMaxLength, 3).
template<typename T>
Setup set(void (Velmora::*setter)(T), std::type_identity_t<std::decay_t<T>> value)
{
    return [=](Velmora *f) {
        (f->*setter)(value);
    };
}

// The input type, the format ("" keeps the type's default) and more settings in turn.
inline Setup type(InpType t, const QString &format = {}, const QList<Setup> &more = {})
{
    return [=](Velmora *f) {
        f->setInputType(t);
        if (!format.isEmpty())
            f->setFormatStr(format);
        for (const Setup &m : more)
            m(f);
    };
}

// Keys as text: characters are typed, {Name} is a named key or a letter, with ^ for
// Ctrl, + for Shift and % for Alt in front: "ab{Home}{^Z}{^+Z}{%A}".
inline QTestEventList keys(const QString &text)
{
    static const QHash<QString, Qt::Key> named {{"Home", Qt::Key_Home},   {"Left", Qt::Key_Left},
                                                {"Right", Qt::Key_Right}, {"Up", Qt::Key_Up},
                                                {"Enter", Qt::Key_Enter}, {"Bs", Qt::Key_Backspace},
                                                {"Ins", Qt::Key_Insert}};
    QTestEventList list;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != u'{') {
            list.addKeyClick(text.at(i).toLatin1());
            continue;
        }
        const qsizetype end = text.indexOf(u'}', i);
        QString name = text.mid(i + 1, end - i - 1);
        Qt::KeyboardModifiers mods;
        for (; name.size() > 1 && QStringLiteral("^+%").contains(name.at(0)); name.remove(0, 1))
            mods |= name.at(0) == u'^' ? Qt::ControlModifier
                : name.at(0) == u'+'   ? Qt::ShiftModifier
                                       : Qt::AltModifier;
        list.addKeyClick(name.size() == 1 ? Qt::Key(name.at(0).unicode()) : named.value(name),
                         mods);
        i = end;
    }
    return list;
}

struct TestForm
{
    explicit TestForm(const RegionalSettings &rs = czechSpace()) : platform(rs)
    {
        auto *layout = new QVBoxLayout(&form);
        for (QWidget *w : std::initializer_list<QWidget *> {before, field, after})
            layout->addWidget(w);
        form.show();
        QApplication::setActiveWindow(&form);
    }

    QLineEdit *box() const { return field->findChild<QLineEdit *>(QStringLiteral("txtInput")); }

    QString focusName() const
    {
        const QWidget *w = QApplication::focusWidget();
        return w == before                ? QStringLiteral("before")
            : w == after                  ? QStringLiteral("after")
            : w && field->isAncestorOf(w) ? QStringLiteral("field")
                                          : QStringLiteral("none");
    }

    TestPlatform platform;
    QWidget form;
    QLineEdit *before = new QLineEdit(&form);
    Velmora *field = new Velmora(&form);
    QLineEdit *after = new QLineEdit(&form);
};

} // namespace velmora::test

Q_DECLARE_METATYPE(velmora::test::Setup)
