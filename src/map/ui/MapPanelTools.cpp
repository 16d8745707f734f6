// The tool bar of a map.
#include "map/ui/CalibrationBar.h"
#include "map/ui/Cartographie.h"
#include "map/ui/MapPanel.h"
#include "platform/ui/Keyboard.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QToolButton>
#include <QWidgetAction>

namespace map {

using namespace Qt::StringLiterals;

namespace {

constexpr int largestSign = 60; ///< Pixels across.

const QList<QPair<PointType, QString>>& types()
{
    static const QList<QPair<PointType, QString>> all{{PointType::Circle, u"&Disques"_s},
                                                      {PointType::Square, u"&Carrés"_s},
                                                      {PointType::Triangle, u"&Triangles"_s},
                                                      {PointType::Diamond, u"L&osanges"_s},
                                                      {PointType::Cross, u"Croi&x"_s}};
    return all;
}

QWidgetAction* numberAction(const QString& name, const QString& caption, int value, QMenu* menu,
                            const std::function<void(int)>& take)
{
    auto* holder = new QWidget(menu);
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(10, 2, 10, 2);
    auto* label = new QLabel(caption, holder);
    auto* box = new QSpinBox(holder);
    box->setObjectName(name);
    box->setAccessibleName(caption);
    box->setRange(2, largestSign);
    box->setValue(value);
    box->setSuffix(u" px"_s);
    label->setBuddy(box);
    row->addWidget(label, 1);
    row->addWidget(box);
    auto* action = new QWidgetAction(menu);
    action->setDefaultWidget(holder);
    QObject::connect(box, &QSpinBox::valueChanged, menu, take);
    return action;
}

} // namespace

QAction* MapPanel::add(QMenu* menu, const QString& name, const QString& text, const std::function<void()>& run)
{
    QAction* action = menu->addAction(text);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, run);
    return action;
}

QAction* MapPanel::addTool(const QString& name, const QString& icon, const QString& text, MapTool tool)
{
    QAction* action = m_tools->addAction(QIcon::fromTheme(icon), text);
    action->setObjectName(name);
    action->setCheckable(true);
    action->setData(int(tool));
    m_toolGroup->addAction(action);
    connect(action, &QAction::triggered, this, [this, tool] {
        leaveCalibration();
        m_map->setTool(tool);
        m_map->setFocus();
    });
    return action;
}

QToolButton* MapPanel::addMenu(const QString& name, const QString& icon, const QString& text, QMenu* menu)
{
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setIcon(QIcon::fromTheme(icon));
    button->setText(text);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setFocusPolicy(Qt::TabFocus);
    button->setMenu(menu);
    m_tools->addWidget(button);
    return button;
}

void MapPanel::makeTools()
{
    m_tools->setObjectName(u"mapTools"_s);
    m_tools->setIconSize({18, 18});
    m_maps->setObjectName(u"cartes"_s);
    m_maps->setAccessibleName(u"Carte"_s);
    m_maps->setToolTip(u"Carte affichée ; entre parenthèses, les localités qu'elle contient"_s);
    m_maps->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_maps->setMaximumWidth(fontMetrics().averageCharWidth() * 52);
    m_tools->addWidget(m_maps);
    m_tools->addSeparator();
    makeToolActions();
    m_tools->addSeparator();
    makeZoomActions();
    m_tools->addSeparator();
    platform::reachByTab(*m_tools);
    makeShowMenu();
    makeMapMenu();
    makeExportMenu();
}

void MapPanel::makeToolActions()
{
    addTool(u"outilPoint"_s, u"edit-select"_s, u"Sélectionner un point, déplacer la carte"_s, MapTool::Point);
    addTool(u"outilCadre"_s, u"select-rectangular"_s, u"Sélectionner dans un cadre"_s, MapTool::Frame);
    addTool(u"outilLasso"_s, u"edit-select-lasso"_s, u"Sélectionner au lasso"_s, MapTool::Lasso);
    m_toolGroup->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
}

void MapPanel::makeZoomActions()
{
    const auto action = [this](const QString& name, const QString& icon, const QString& text, auto run) {
        QAction* made = m_tools->addAction(QIcon::fromTheme(icon), text);
        made->setObjectName(name);
        connect(made, &QAction::triggered, this, run);
        return made;
    };
    action(u"zoomPlus"_s, u"zoom-in"_s, u"Agrandir (+)"_s, [this] { m_map->Zoom(1); });
    action(u"zoomMoins"_s, u"zoom-out"_s, u"Réduire (-)"_s, [this] { m_map->Zoom(-1); });
    action(u"zoomCarte"_s, u"zoom-original"_s, u"Toute la carte (Origine)"_s, [this] { m_map->ZoomExtend(); });
    action(u"zoomPoints"_s, u"zoom-fit-best"_s, u"Tous les points"_s, [this] { m_map->ZoomRégion(); });
    m_zoomSelected = action(u"zoomSelection"_s, u"zoom-select"_s, u"Points sélectionnés"_s,
                            [this] { m_map->showSelected(); });
    m_tools->addSeparator();
    auto* caption = new QLabel(u"Effectif min. "_s, this);
    caption->setBuddy(m_effectif);
    m_effectif->setObjectName(u"effectifMin"_s);
    m_effectif->setAccessibleName(u"Effectif minimal"_s);
    m_effectif->setToolTip(u"Les points de moindre effectif ne sont pas affichés"_s);
    m_effectif->setRange(0, 1000000);
    m_effectif->setValue(m_map->EffectifMin());
    connect(m_effectif, &QSpinBox::valueChanged, this, [this](int count) { m_map->setEffectifMin(count); });
    m_tools->addWidget(caption);
    m_tools->addWidget(m_effectif);
}

void MapPanel::makeShowMenu()
{
    auto* menu = new QMenu(this);
    const auto flag = [&](const QString& name, const QString& text, bool on, auto set) {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        action->setCheckable(true);
        action->setChecked(on);
        connect(action, &QAction::toggled, this, set);
    };
    flag(u"afficherPoints"_s, u"&Points"_s, true, [this](bool on) { m_map->setPointVisible(on); });
    flag(u"afficherNoms"_s, u"&Noms des localités"_s, false, [this](bool on) {
        PointStyle style = m_map->style();
        style.labels = on;
        m_map->setStyle(style);
    });
    flag(u"afficherLegende"_s, u"&Légende"_s, true, [this](bool on) { m_map->setLegendShown(on); });
    flag(u"tailleFixe"_s, u"Points de taille &fixe"_s, false, [this](bool on) { m_map->setTailleFixe(on); });
    menu->addSeparator();
    auto* kinds = new QActionGroup(menu);
    for (const auto& [type, text] : types()) {
        QAction* action = kinds->addAction(menu->addAction(text));
        action->setCheckable(true);
        action->setChecked(type == m_map->pointType());
        connect(action, &QAction::triggered, this, [this, type] { m_map->setPointType(type); });
    }
    menu->addSeparator();
    menu->addAction(numberAction(u"tailleMin"_s, u"Taille minimale"_s, int(m_map->PointMinSize()), menu,
                                 [this](int size) { m_map->setPointMinSize(size); }));
    menu->addAction(numberAction(u"tailleMax"_s, u"Taille maximale"_s, int(m_map->PointMaxSize()), menu,
                                 [this](int size) { m_map->setPointMaxSize(size); }));
    menu->addSeparator();
    add(menu, u"couleurPoints"_s, u"Couleu&r des points…"_s, [this] { chooseColour(false); });
    add(menu, u"couleurSelection"_s, u"Couleur de la &sélection…"_s, [this] { chooseColour(true); });
    addMenu(u"menuAffichageCarte"_s, u"view-visible"_s, u"Affichage"_s, menu);
}

void MapPanel::chooseColour(bool selected)
{
    const QColor before = selected ? m_map->PointSelectedColor() : m_map->PointBackColor();
    const QColor colour = QColorDialog::getColor(before, this, selected ? u"Couleur de la sélection"_s : u"Couleur des points"_s);
    if (!colour.isValid())
        return;
    if (selected)
        m_map->setPointSelectedColor(colour);
    else
        m_map->setPointBackColor(colour);
}

void MapPanel::makeMapMenu()
{
    auto* menu = new QMenu(this);
    m_narrowSelection = add(menu, u"restreindreSelection"_s, QString(),
                            [this] { Q_EMIT narrowToPlaces(m_map->selectedLocalities()); });
    m_narrowRegion = add(menu, u"restreindreRegion"_s, QString(),
                         [this] { m_map->setModeAddRegion(!m_map->ModeAddRegion()); });
    m_narrowRegion->setCheckable(true);
    setNarrowing({}, {});
    menu->addSeparator();
    m_addPlace = add(menu, u"ajouterLocalite"_s, u"Ajouter une &localité d'un clic"_s,
                     [this] { m_map->setAllowAddLocalité(!m_map->AllowAddLocalité()); });
    m_addPlace->setCheckable(true);
    m_addMap = add(menu, u"ajouterCarte"_s, u"Ajouter une &carte…"_s, [this] { addMap(); });
    m_calibrate = add(menu, u"calibrerCarte"_s, u"Cali&brer la carte…"_s, [this] {
        if (m_map->tool() == MapTool::Calibrate)
            leaveCalibration();
        else
            startCalibration();
    });
    m_calibrate->setCheckable(true);
    addMenu(u"menuCarte"_s, u"document-edit"_s, u"Carte"_s, menu);
}

void MapPanel::makeExportMenu()
{
    auto* menu = new QMenu(this);
    add(menu, u"exporterCsv"_s, u"Texte &CSV…"_s, [this] { m_map->SaveToCSV(); });
    add(menu, u"exporterKml"_s, u"Google &Earth (KML)…"_s, [this] { m_map->SaveToKML(); });
    add(menu, u"exporterGtm"_s, u"&GPS Trackmaker (GTM)…"_s, [this] { m_map->SaveToGTM(); });
    add(menu, u"exporterScr"_s, u"Script &AutoCad (SCR)…"_s, [this] { m_map->SaveToAcadScr(); });
    add(menu, u"exporterBmp"_s, u"&Image de la carte (BMP)…"_s, [this] { m_map->SaveToBMP(); });
    addMenu(u"menuExporter"_s, u"document-export"_s, u"Exporter"_s, menu);
}

} // namespace map
