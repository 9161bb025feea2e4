#pragma once

#include "korguibase_export.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Counts objects by the name of their class, to find those that are never destroyed.
///
/// Every participating class calls allocateObject in its constructors and deallocateObject in its
/// destructor with the same name. Counts are signed: a class whose copy constructor does not report
/// has a negative balance after its copies are gone.
///
/// All operations may be called from any thread and at any time, static destruction included.
/// A call with a name that is already known takes no lock and costs a few nanoseconds. Names are
/// copied; those passed in may be unloaded together with the library that holds them.
class KORGUIBASE_API MemLeakTracer
{
public:
    /// Counts one more object. `typeName` is not null and ends with a zero; UTF-8.
    static void allocateObject(const char* typeName);
    static void allocateObject(const QString& typeName);

    /// Counts one object less.
    static void deallocateObject(const char* typeName);
    static void deallocateObject(const QString& typeName);

    /// Number of objects reported as allocated minus those reported as deallocated; 0 for an
    /// unknown name.
    static qint64 getObjectCount(const QString& typeName);

    /// Number of calls of allocateObject with the name; 0 for an unknown one.
    static qint64 getTotalAllocations(const QString& typeName);

    /// Sorted names whose object count is not zero.
    static QStringList getUnbalancedNames();

    /// Sets all counts to zero. Calls of other threads during it may be counted or not.
    static void reset();

    MemLeakTracer() = delete;
};
