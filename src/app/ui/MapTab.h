// The places of the project on a map.
#pragma once

#include "platform/ui/DocumentTab.h"

#include <memory>

namespace map {
class MapPanel;
struct LoadedPoints;
}

namespace app {

class Workplace;

/// Every place that has coordinates, sized by the individuals that grow there.
class MapTab : public platform::DocumentTab {
    Q_OBJECT
public:
    explicit MapTab(Workplace& place, QWidget* parent = nullptr);
    ~MapTab() override;

    static QString tabKey() { return QStringLiteral("Carte-map"); }
    QString key() const override { return tabKey(); }
    QString title() const override;
    QIcon icon() const override;
    QString statusText() const override;
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;
    void recordsWritten(const QStringList& modules) override;

    map::MapPanel& panel() { return *m_panel; }
    bool isLoading() const { return m_loading > 0; }

private:
    void load();
    void adopt(const map::LoadedPoints& loaded);
    void print(); ///< The map as it is seen.
    void showIndividuals(const QList<qint32>& localities);

    Workplace& m_place;
    map::MapPanel* m_panel;
    int m_loading = 0;
};

} // namespace app
