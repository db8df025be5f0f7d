#pragma once

#include "fault.h"

#include <QTest>

namespace netvane::faults {

/// Columns of every table of faults: the call, and what the program says while it fails.
inline void addFaultColumns()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("published");
}

/// A row by the name of what fails.
inline void addFault(const Fault& fault, const QString& published)
{
    const QByteArray name = fault.call + ' ' + fault.subject + ' ' + QByteArray::number(fault.error)
        + (fault.spared ? " after " + QByteArray::number(fault.spared) : QByteArray());
    QTest::newRow(name.constData()) << fault << published;
}

} // namespace netvane::faults
