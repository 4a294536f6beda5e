#pragma once

#include <QString>
#include <QStringList>

namespace app {

/** File dialog filters. */
class FileFilters
{
public:
    /**
     * Turns a filter written as "Text (*.x)|*.x|All Files (*.*)|*.*||" (description and pattern
     * pairs) into Qt's "Text (*.x);;All Files (*.*)".
     */
    static QString fromPairs(const QString& pairs)
    {
        const QStringList parts = pairs.split(QLatin1Char('|'));
        QStringList filters;
        for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
            if (parts[i].isEmpty())
                break;
            filters << parts[i];
        }
        return filters.join(QStringLiteral(";;"));
    }
};

} // namespace app
