#pragma once

#include <QTest>

#include <functional>

/// Registers a test class with the program of its folder. The class is made after the surroundings of
/// kelvatest.cpp stand: own settings, data, runtime and temporary directories, offscreen platform.
#define KELVA_TEST(Class)                                                                                    \
    static const bool registered##Class = kelvatest::add(#Class, []() -> QObject * { return new Class; });

namespace kelvatest {

bool add(const char *name, std::function<QObject *()> make);

/// The columns of a data table, type by type.
template<typename... Types, typename... Names>
void columns(const Names &...names)
{
    (QTest::addColumn<Types>(names), ...);
}

/// A row of a data table, value by value; a text literal is a QString.
template<typename... Values>
void row(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}

} // namespace kelvatest
