#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

namespace netvane::bench {

/// One row of docs/figures.md.
struct Figure {
    QString name;
    QString unit;
    std::vector<double> values; ///< at least one; the table has their median and their ends
    std::optional<double> bound; ///< at most; a figure that is only compared has none
    QString rival; ///< what it is compared with
    std::vector<double> rivalValues;
};

inline double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Adds it to the file that $NETVANE_FIGURES names, which bench/figures.py makes the table of.
inline void record(const Figure& figure)
{
    const QByteArray path = qgetenv("NETVANE_FIGURES");
    if (path.isEmpty())
        return;
    const auto numbers = [](const std::vector<double>& values) {
        QByteArray text;
        for (const double value : values)
            text += (text.isEmpty() ? "" : " ") + QByteArray::number(value, 'g', 6);
        return text;
    };
    if (std::FILE* file = std::fopen(path.constData(), "a")) {
        std::fprintf(file, "%s\t%s\t%s\t%s\t%s\t%s\n", qPrintable(figure.name),
            qPrintable(figure.unit), numbers(figure.values).constData(),
            figure.bound ? QByteArray::number(*figure.bound).constData() : "",
            qPrintable(figure.rival), numbers(figure.rivalValues).constData());
        std::fclose(file);
    }
}

} // namespace netvane::bench
