#pragma once

#include "Journal.h"

#include <QString>

struct MemLeakTracer {
    static void allocateObject(const QString& name)
    {
        Journal::note("allocateObject " + name.toStdString());
    }
    static void deallocateObject(const QString& name)
    {
        Journal::note("deallocateObject " + name.toStdString());
    }
};
