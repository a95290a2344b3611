#pragma once

// Several Qt Test classes share one executable per subsystem: each test file
// registers its class with VELMORA_TEST(Class), and the common main runs them all.

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <vector>

namespace velmora::test {

struct Registration
{
    const char *name;
    std::function<std::unique_ptr<QObject>()> make;
};

std::vector<Registration> &registry();

struct Registrar
{
    Registrar(const char *name, std::function<std::unique_ptr<QObject>()> make)
    {
        registry().push_back({name, std::move(make)});
    }
};

} // namespace velmora::test

#define VELMORA_TEST(Class)                                                                        \
    static velmora::test::Registrar registrar_##Class(                                             \
        #Class, [] { return std::unique_ptr<QObject>(new Class); });

#include <QtTest/QTest>

// QFETCH as an expression: the current row's value of a column.
#define VFETCH(Type, name) (*static_cast<Type *>(QTest::qData(#name, ::qMetaTypeId<Type>())))
