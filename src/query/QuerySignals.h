// The signals of a query, in a header of plain names for the meta-object compiler.
#pragma once

#include <QObject>

namespace query {

class QuerySignals : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void Query_Change();
};

} // namespace query
