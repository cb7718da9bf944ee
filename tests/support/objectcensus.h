#pragma once

#include <QObject>
#include <QVector>

namespace TestSupport {

/// Knows every QObject that was made since and lives on the user-interface thread, whoever made it and whoever should
/// have deleted it. One at a time; to be asked on that thread.
class ObjectCensus
{
public:
    ObjectCensus();
    ~ObjectCensus();
    Q_DISABLE_COPY(ObjectCensus)

    /// Those of that class and of what inherits it, by the name that the meta-object gives (with namespaces).
    QVector<QObject *> living(const char *className) const;
};

} // namespace TestSupport
