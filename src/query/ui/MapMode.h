// A result as points on a map.
#pragma once

#include "map/ui/MapPanel.h"
#include "platform/ui/TaskRunner.h"
#include "query/ui/ResultMode.h"
#ifndef Q_MOC_RUN // which reads plain letters only
#include "map/PointLoading.h"
#include "map/ui/Cartographie.h"
#endif

namespace query {

/// The mode "map". Points are read beside the windows when the result is complete or was asked for again; they are
/// places, their count is that of the individuals found there.
class MapMode : public ResultMode {
    Q_OBJECT
public:
#ifndef Q_MOC_RUN
    MapMode(ResultSource& source, const map::MapWorld& world, platform::TaskRunner& runner, QWidget* parent = nullptr);
#endif
    ~MapMode() override;

    QString key() const override;
    void rowsReplaced() override;
    void valuesChanged(const QStringList& modules) override;
    void setSelection(const ResultSelection& selection) override;
    /// The individuals of the places selected.
    ResultSelection selection() const override;
    QString statusText() const override { return m_panel->statusText(); }
    bool can(platform::TabCommand command) const override;
    void run(platform::TabCommand command) override;

    map::MapPanel& panel() { return *m_panel; }
    bool isLoading() const { return m_loading > 0; }

private:
    struct Loaded;
    void load();
    void adopt(std::shared_ptr<Loaded> loaded);
    void select(const ResultSelection& selection);
    void activate(qint32 locality);
    void print();

    platform::Dialogues& m_dialogues;
    const platform::Clock& m_clock;
    platform::TaskRunner& m_runner;
    map::MapPanel* m_panel;
    std::shared_ptr<Loaded> m_loaded; ///< Null before anything was read.
    ResultSelection m_wanted;         ///< To be selected as soon as the points are there.
    int m_generation = 0;             ///< Points of an earlier run are dropped.
    int m_loading = 0;
};

} // namespace query
